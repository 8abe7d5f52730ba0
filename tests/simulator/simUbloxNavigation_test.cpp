#include "tests/simulator/host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using testing::ElementsAre;

constexpr int64_t Noon = 1'795'262'400'000'000'000;  // 2026-11-21 12:00:00, a Saturday

// All seven messages of a receiver with keys, at a moment of its own.
class listening
{
public:
    explicit listening(simModel model, unsigned rate = 1) : Host(OptionsOf(model, rate))
    {
        hostBytes pairs;
        for (const uint32_t key :
             {0x20910038u, 0x20910029u, 0x20910015u, 0x20910345u, 0x2091005Bu, 0x20910042u, 0x2091017Du})
            pairs = pairs + ubxPair(key + 1, 1);
        EXPECT_THAT(ubxHear(Host.Ask(ubxValSet(pairs))), ElementsAre(ubxAck(0x8A)));
    }

    static simOptions OptionsOf(simModel model, unsigned rate)
    {
        simOptions options;
        options.Model = model;
        options.StartUtcNs = Noon + 250'000'000;
        options.Rate = rate;
        return options;
    }

    host Host;
};

int64_t SignedAt(const hostBytes& bytes, size_t offset)
{
    return static_cast<int32_t>(littleAt(bytes, offset, 4));
}

TEST(simUbloxNavigation, TellsASolutionInItsMessagesOnceASecond)
{
    listening to(simModel::M9);
    EXPECT_THAT(ubxNames(to.Host.Wait(1)),
                ElementsAre(0x0102, 0x0104, 0x0112, 0x0121, 0x0135, 0x0143, 0x0D01));
    EXPECT_EQ(ubxNames(to.Host.Wait(10)).size(), 70u);
}

TEST(simUbloxNavigation, SolvesAtEveryRate)
{
    for (unsigned rate = 1; rate <= 25; ++rate) {
        listening to(simModel::M9, rate);
        const std::vector<ubxSaid> said = ubxHear(to.Host.Wait(4));
        std::set<uint64_t> times;
        unsigned pulses = 0;
        for (const ubxSaid& message : said) {
            if (message.Name == 0x0102)
                times.insert(littleAt(message.Payload, 0, 4));
            pulses += message.Name == 0x0D01 ? 1 : 0;
        }
        const unsigned milliseconds = (1000 + rate / 2) / rate;
        const unsigned whole = (1000 + milliseconds / 2) / milliseconds;
        EXPECT_EQ(times.size(), 4 * whole) << rate;
        EXPECT_EQ(pulses, 4u) << rate;
    }
}

TEST(simUbloxNavigation, TellsThePlaceOfTheTruth)
{
    listening to(simModel::M9);
    const hostBytes payload = ubxFind(to.Host.Wait(1), 0x0102);
    const simTruth truth = to.Host.Receiver->Truth();
    ASSERT_EQ(payload.size(), 28u);
    EXPECT_EQ(SignedAt(payload, 4), std::llround(truth.Place.Longitude * 1e7));
    EXPECT_EQ(SignedAt(payload, 8), std::llround(truth.Place.Latitude * 1e7));
    EXPECT_EQ(SignedAt(payload, 12), std::llround((truth.Place.Altitude + truth.Place.Separation) * 1e3));
    EXPECT_EQ(SignedAt(payload, 16), std::llround(truth.Place.Altitude * 1e3));
    EXPECT_LT(littleAt(payload, 20, 4), 10'000u);
    EXPECT_LT(littleAt(payload, 24, 4), 10'000u);
    EXPECT_NEAR(truth.Place.Latitude, 47.3769, 5e-5);
    EXPECT_NEAR(truth.Place.Longitude, 8.5417, 5e-5);
    EXPECT_NEAR(truth.Place.Altitude, 408, 5);
}

TEST(simUbloxNavigation, WandersABelievableDistance)
{
    host host(listening::OptionsOf(simModel::M9, 10));
    double farthest = 0;
    double nearest = 1e9;
    for (int second = 0; second < 600; ++second) {
        host.Wait(1);
        const double off = std::fabs(host.Receiver->Truth().Place.Latitude - 47.3769) * 111'195;
        farthest = std::max(farthest, off);
        nearest = std::min(nearest, off);
    }
    EXPECT_LT(farthest, 5);
    EXPECT_GT(farthest, 0.2);
    EXPECT_LT(nearest, 0.2);
}

TEST(simUbloxNavigation, TellsTheDilutionsOfTheTruth)
{
    listening to(simModel::M9);
    const hostBytes payload = ubxFind(to.Host.Wait(1), 0x0104);
    const simTruth truth = to.Host.Receiver->Truth();
    ASSERT_EQ(payload.size(), 18u);
    const double dilutions[] = {truth.GDOP, truth.PDOP, truth.TDOP, truth.VDOP,
                                truth.HDOP, truth.NDOP, truth.EDOP};
    for (size_t number = 0; number < std::size(dilutions); ++number) {
        EXPECT_EQ(littleAt(payload, 4 + 2 * number, 2),
                  static_cast<uint64_t>(std::lround(dilutions[number] * 100)));
        EXPECT_GT(dilutions[number], 0.1);
        EXPECT_LT(dilutions[number], 5);
    }
}

TEST(simUbloxNavigation, TellsTheTimeInAllItsForms)
{
    listening to(simModel::M9);
    const hostBytes said = to.Host.Wait(1);
    const hostBytes utc = ubxFind(said, 0x0121);
    ASSERT_EQ(utc.size(), 20u);
    // Saturday noon and a second, in milliseconds of the week, 18 leap seconds on.
    constexpr uint64_t Itow = (6 * 86'400 + 12 * 3600 + 1 + 18) * 1000;
    EXPECT_EQ(littleAt(utc, 0, 4), Itow);
    EXPECT_EQ(littleAt(utc, 12, 2), 2026u);
    EXPECT_THAT(hostBytes(utc.begin() + 14, utc.end()), ElementsAre(11, 21, 12, 0, 1, 7));
    EXPECT_EQ(to.Host.Receiver->Truth().UtcNs, Noon + 1'000'000'000);
    const hostBytes pulse = ubxFind(said, 0x0D01);
    ASSERT_EQ(pulse.size(), 16u);
    EXPECT_EQ(littleAt(pulse, 0, 4), Itow + 1000) << "of the next second";
    EXPECT_EQ(littleAt(pulse, 12, 2), 2445u);
    EXPECT_LT(std::abs(SignedAt(pulse, 8)), 20'000);
}

TEST(simUbloxNavigation, MovesTheErrorOfThePulse)
{
    listening to(simModel::M9);
    std::set<int64_t> errors;
    for (int second = 0; second < 10; ++second)
        errors.insert(SignedAt(ubxFind(to.Host.Wait(1), 0x0D01), 8));
    EXPECT_EQ(errors.size(), 10u);
}

TEST(simUbloxNavigation, TellsTheSatellitesOfTheTruth)
{
    listening to(simModel::ZedF9R);
    const hostBytes said = to.Host.Wait(1);
    const simTruth truth = to.Host.Receiver->Truth();
    const hostBytes payload = ubxFind(said, 0x0135);
    ASSERT_EQ(payload[4], 1u);
    ASSERT_EQ(payload[5], truth.Sats.size());
    ASSERT_EQ(payload.size(), 8 + 12 * truth.Sats.size());
    EXPECT_GT(truth.Sats.size(), 15u);
    EXPECT_LE(truth.Sats.size(), 40u);
    unsigned used = 0;
    for (size_t number = 0; number < truth.Sats.size(); ++number) {
        const simSat& sat = truth.Sats[number];
        const size_t at = 8 + 12 * number;
        EXPECT_EQ(payload[at], static_cast<unsigned>(sat.System));
        EXPECT_EQ(payload[at + 1], sat.Svid);
        EXPECT_EQ(payload[at + 2], static_cast<unsigned>(std::lround(sat.SNR)));
        EXPECT_EQ(payload[at + 3], static_cast<unsigned>(std::lround(sat.Elevation)));
        EXPECT_EQ(littleAt(payload, at + 4, 2), static_cast<uint64_t>(std::lround(sat.Azimuth) % 360));
        const uint64_t flags = littleAt(payload, at + 8, 4);
        EXPECT_EQ((flags & 8) != 0, sat.Used);
        EXPECT_EQ((flags >> 4 & 3) == 1 && (flags & 7) >= 4, sat.SNR > 0);
        used += sat.Used ? 1 : 0;
    }
    EXPECT_GT(used, 10u);
}

TEST(simUbloxNavigation, TellsTheSignalsOfTheTruth)
{
    listening to(simModel::NeoF10N);
    const hostBytes payload = ubxFind(to.Host.Wait(1), 0x0143);
    ASSERT_EQ(payload[4], 0u);
    ASSERT_EQ(payload.size(), 8u + 16u * payload[5]);
    std::set<std::array<unsigned, 3>> told;
    for (size_t at = 8; at < payload.size(); at += 16)
        told.insert({payload[at], payload[at + 1], payload[at + 2]});
    std::set<std::array<unsigned, 3>> expected;
    for (const simSat& sat : to.Host.Receiver->Truth().Sats) {
        for (const simSignal& signal : sat.Signals) {
            if (sat.SNR > 0)
                expected.insert({static_cast<unsigned>(sat.System), sat.Svid, signal.Id});
        }
    }
    EXPECT_EQ(told, expected);
    EXPECT_GT(told.size(), to.Host.Receiver->Truth().Sats.size());
}

TEST(simUbloxNavigation, TellsTheSatellitesTheOldWay)
{
    host host(simModel::UBlox7);
    host.Ask(ubxSay(0x0601, {0x01, 0x30, 1}));
    const hostBytes payload = ubxFind(host.Wait(1), 0x0130);
    const simTruth truth = host.Receiver->Truth();
    ASSERT_EQ(payload[4], truth.Sats.size());
    ASSERT_EQ(payload.size(), 8 + 12 * truth.Sats.size());
    for (size_t number = 0; number < truth.Sats.size(); ++number) {
        const simSat& sat = truth.Sats[number];
        const size_t at = 8 + 12 * number;
        EXPECT_EQ(payload[at + 1], sat.Svid) << "GPS and SBAS keep their numbers";
        EXPECT_EQ((payload[at + 2] & 1) != 0, sat.Used);
        EXPECT_EQ(payload[at + 4], static_cast<unsigned>(std::lround(sat.SNR)));
        EXPECT_EQ(payload[at + 5], static_cast<unsigned>(std::lround(sat.Elevation)));
    }
}

TEST(simUbloxNavigation, SaysThatThereIsNoSolutionWhileItSearches)
{
    listening to(simModel::M9);
    to.Host.Ask(ubxSay(0x068A, hostBytes{0, 2, 0, 0} + ubxPair(0x2091002A, 1) + ubxPair(0x2091005C, 1)));
    to.Host.Ask(ubxSay(0x0604, {0xFF, 0xFF, 0, 0}));
    const hostBytes said = to.Host.Wait(2);
    EXPECT_EQ(littleAt(ubxFind(said, 0x0102), 20, 4), 0xFFFFFFFFu);
    EXPECT_EQ(ubxFind(said, 0x0121)[19], 3u);
    for (const simSat& sat : to.Host.Receiver->Truth().Sats)
        EXPECT_FALSE(sat.Used);
    const hostBytes found = to.Host.Wait(3);
    EXPECT_EQ(littleAt(ubxHear(found).back().Payload, 0, 4) % 1000, 0u);
    EXPECT_TRUE(to.Host.Receiver->Truth().Fixed);
}

TEST(simUbloxNavigation, IsTheSameInEveryRun)
{
    for (const simModel model : {simModel::M9, simModel::M8}) {
        simOptions options = listening::OptionsOf(model, 5);
        options.NMEA = true;
        host one(options);
        host two(options);
        EXPECT_EQ(one.Wait(7), two.Wait(7));
        options.Seed = 2;
        host other(options);
        EXPECT_NE(one.Wait(1), other.Wait(8));
    }
}

TEST(simUbloxNavigation, DoesNotDependOnHowOftenItIsAsked)
{
    simOptions options = listening::OptionsOf(simModel::M9, 5);
    options.NMEA = true;
    host often(options);
    host once(options);
    hostBytes all;
    for (int step = 0; step < 500; ++step)
        all = all + often.Wait(0.01);
    EXPECT_EQ(all, once.Wait(5));
}

}  // namespace
