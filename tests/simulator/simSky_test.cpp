#include "tools/simulator/simSky.h"

#include "tools/simulator/simOrbit.h"
#include "tools/simulator/simTime.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>

namespace {

constexpr int64_t Noon = 1'795'262'400 * simSecond;  // 2026-11-21 12:00

double Distance(const simVector& one, const simVector& two)
{
    return std::hypot(one.X - two.X, one.Y - two.Y, one.Z - two.Z);
}

const simConstellation& Of(simSystem system)
{
    return *std::ranges::find(simConstellations(), system, &simConstellation::System);
}

TEST(simOrbit, KeepsItsRadiusAndItsInclination)
{
    for (const simConstellation& constellation : simConstellations()) {
        double highest = 0;
        for (int64_t minute = 0; minute < 24 * 60; minute += 5) {
            const simVector at = simOrbitPosition(constellation, 3, Noon + minute * 60 * simSecond);
            EXPECT_NEAR(std::hypot(at.X, at.Y, at.Z), constellation.Radius, 1);
            highest = std::max(highest, std::asin(at.Z / constellation.Radius) * 180 / std::numbers::pi);
        }
        EXPECT_NEAR(highest, constellation.Inclination, 0.2);
    }
}

TEST(simOrbit, BringsGpsBackOverTheSamePlaceAfterASiderealDay)
{
    const double day = 86'164.0905;
    const int64_t later = Noon + static_cast<int64_t>(day * 1e9);
    const simVector before = simOrbitPosition(Of(simSystem::GPS), 0, Noon);
    const simVector after = simOrbitPosition(Of(simSystem::GPS), 0, later);
    // The nominal radius gives a period a few seconds off half a sidereal day.
    EXPECT_LT(Distance(before, after), 200e3);
    // A quarter of it later it is on the other side.
    EXPECT_GT(Distance(before, simOrbitPosition(Of(simSystem::GPS), 0,
                                                Noon + later / 2 - Noon / 2 + 10'770 * simSecond)),
              10'000e3);
}

TEST(simOrbit, KeepsSatellitesOfAConstellationApart)
{
    for (const simConstellation& constellation : simConstellations()) {
        for (size_t one = 0; one < constellation.Svids.size(); ++one) {
            for (size_t two = 0; two < one; ++two)
                EXPECT_GT(Distance(simOrbitPosition(constellation, one, Noon),
                                   simOrbitPosition(constellation, two, Noon)),
                          100e3)
                    << one << " and " << two;
        }
    }
}

TEST(simSky, PutsZurichWhereItIs)
{
    const simVector at = simEarthFixed({47.3769, 8.5417, 408.0, 47.3});
    EXPECT_NEAR(at.X, 4'278'990, 1500);
    EXPECT_NEAR(at.Y, 642'700, 1500);
    EXPECT_NEAR(at.Z, 4'670'250, 1500);
}

// The direction of a geostationary satellite has a formula of its own.
TEST(simSky, SeesAFixedSatelliteWhereTheFormulaSays)
{
    const simPlace place;
    const double latitude = place.Latitude * std::numbers::pi / 180;
    const double apart = (31.5 - place.Longitude) * std::numbers::pi / 180;
    const double azimuth = 180 - std::atan2(std::tan(apart), std::sin(latitude)) * 180 / std::numbers::pi;
    const double angle = std::acos(std::cos(latitude) * std::cos(apart));
    const double elevation =
        std::atan2(std::cos(angle) - 6371.0 / 42164.0, std::sin(angle)) * 180 / std::numbers::pi;
    const std::vector<simSat> sats = simSatsOver(place, Noon);
    const auto found = std::ranges::find(sats, 123, &simSat::Svid);
    ASSERT_NE(found, sats.end());
    EXPECT_NEAR(found->Azimuth, azimuth, 0.2);
    EXPECT_NEAR(found->Elevation, elevation, 0.3);
}

TEST(simSky, ShowsABelievableSkyAtAnyHour)
{
    for (int hour = 0; hour < 24; ++hour) {
        const std::vector<simSat> sats = simSatsOver({}, Noon + hour * 3600 * simSecond);
        for (const simSystem system :
             {simSystem::GPS, simSystem::Galileo, simSystem::GLONASS, simSystem::BeiDou}) {
            const auto count = std::ranges::count(sats, system, &simSat::System);
            EXPECT_GE(count, 4) << hour;
            EXPECT_LE(count, 16) << hour;
        }
        for (const simSat& sat : sats) {
            EXPECT_GE(sat.Elevation, 5);
            EXPECT_LE(sat.Elevation, 90);
            EXPECT_GE(sat.Azimuth, 0);
            EXPECT_LT(sat.Azimuth, 360);
            EXPECT_GT(sat.SNR, 20);
            EXPECT_LT(sat.SNR, 56);
            EXPECT_FALSE(sat.Signals.empty());
        }
    }
}

TEST(simSky, ListsEachSatelliteOnceAndBySystem)
{
    const std::vector<simSat> sats = simSatsOver({}, Noon);
    std::set<std::pair<simSystem, uint8_t>> names;
    for (const simSat& sat : sats)
        EXPECT_TRUE(names.insert({sat.System, sat.Svid}).second);
    const auto before = [](const simSat& one, const simSat& two) {
        return std::pair(one.System, one.Svid) < std::pair(two.System, two.Svid);
    };
    EXPECT_TRUE(std::ranges::is_sorted(sats, before));
}

TEST(simSky, MovesWithTime)
{
    const std::vector<simSat> now = simSatsOver({}, Noon);
    const std::vector<simSat> later = simSatsOver({}, Noon + 600 * simSecond);
    const auto same = std::ranges::find(later, now[0].Svid, &simSat::Svid);
    ASSERT_NE(same, later.end());
    EXPECT_GT(std::fabs(same->Elevation - now[0].Elevation) + std::fabs(same->Azimuth - now[0].Azimuth), 1);
}

TEST(simSky, HasJapaneseSatellitesOverJapanAlone)
{
    const simPlace tokyo{35.68, 139.77, 40, 36};
    EXPECT_EQ(std::ranges::count(simSatsOver({}, Noon), simSystem::QZSS, &simSat::System), 0);
    EXPECT_EQ(std::ranges::count(simSatsOver(tokyo, Noon), simSystem::QZSS, &simSat::System), 4);
}

TEST(simTime, CountsWeeksFromTheFirstOne)
{
    EXPECT_EQ(simGpsOf(315'964'800 * simSecond - 18 * simSecond).Week, 0);
    EXPECT_EQ(simGpsOf(315'964'800 * simSecond - 18 * simSecond).TowNs, 0);
    // 2019-04-07 00:00:00 GPS time: the second rollover.
    EXPECT_EQ(simGpsOf(1'554'595'200 * simSecond - 18 * simSecond).Week, 2048);
    EXPECT_EQ(simGpsOf(1'554'595'200 * simSecond).TowNs, 18 * simSecond);
    EXPECT_EQ(simGpsOf(1'554'595'200 * simSecond - 19 * simSecond).Week, 2047);
}

TEST(simTime, ReadsWhatPeopleWrite)
{
    struct row {
        const char* Text;
        std::optional<int64_t> Seconds;
    };
    const row Rows[] = {
        {"2026-11-21T12:00:00", 1'795'262'400},
        {"2026-11-21T12:00:00Z", 1'795'262'400},
        {"2026-11-21", 1'795'219'200},
        {"2024-02-29T23:59:59", 1'709'251'199},
        {"2026-02-29", {}},
        {"2026-13-01", {}},
        {"2026-11-21T24:00:00", {}},
        {"2026-11-21T12:60:00", {}},
        {"2026-11-21 12:00:00", {}},
        {"", {}},
        {"1979-01-01", {}},
        {"9999-01-01", {}},
        {"2026-11-21T12:00:00ZZ", {}},
    };
    for (const row& each : Rows) {
        const std::optional<int64_t> read = simUtcOfText(each.Text);
        EXPECT_EQ(read.has_value(), each.Seconds.has_value()) << each.Text;
        if (read && each.Seconds) {
            EXPECT_EQ(*read, *each.Seconds * simSecond) << each.Text;
        }
    }
}

TEST(simTime, TellsTheDate)
{
    const simDate date = simDateOf(1'709'251'199 * simSecond + 250'000'000);
    EXPECT_EQ(date.Year, 2024);
    EXPECT_EQ(date.Month, 2);
    EXPECT_EQ(date.Day, 29);
    EXPECT_EQ(date.Hour, 23);
    EXPECT_EQ(date.Minute, 59);
    EXPECT_EQ(date.Second, 59);
    EXPECT_EQ(date.Nanosecond, 250'000'000);
}

}  // namespace
