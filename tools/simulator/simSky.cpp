#include "tools/simulator/simSky.h"

#include "tools/simulator/simNoise.h"
#include "tools/simulator/simOrbit.h"
#include "tools/simulator/simTime.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

constexpr double Degree = std::numbers::pi / 180;
constexpr double EarthRadius = 6'378'137.0;  // WGS 84
constexpr double Flattening = 1 / 298.257223563;
constexpr double Horizon = 5;  // degrees: what is lower is hidden by houses and trees

constexpr std::array<int8_t, 24> GlonassChannels = {1,  -4, 5, 6,  1, -4, 5, 6, -2, -7, 0, -1,
                                                    -2, -7, 0, -1, 4, -3, 3, 2, 4,  -3, 3, 2};

// How a satellite is seen from a place.
struct direction {
    double Elevation;  // degrees
    double Azimuth;    // degrees
};

direction DirectionOf(const simPlace& place, const simVector& from, const simVector& to)
{
    const double latitude = place.Latitude * Degree;
    const double longitude = place.Longitude * Degree;
    const simVector way = {to.X - from.X, to.Y - from.Y, to.Z - from.Z};
    const double outward = std::cos(longitude) * way.X + std::sin(longitude) * way.Y;
    const double east = std::cos(longitude) * way.Y - std::sin(longitude) * way.X;
    const double north = std::cos(latitude) * way.Z - std::sin(latitude) * outward;
    const double up = std::cos(latitude) * outward + std::sin(latitude) * way.Z;
    const double azimuth = std::atan2(east, north) / Degree;
    return {std::atan2(up, std::hypot(east, north)) / Degree, azimuth < 0 ? azimuth + 360 : azimuth};
}

// A low satellite is heard less well, each has its own strength, and all of them flicker a little.
double LevelOf(simSystem system, uint8_t svid, double elevation, int64_t utcNs)
{
    constexpr double Weakest = 31;
    constexpr double Gain = 17;
    const uint64_t name = static_cast<uint64_t>(system) << 8 | svid;
    const auto second = static_cast<uint64_t>(utcNs / simSecond);
    const double own = 5 * simNoise::Of(name, 0) - 3;
    const double flicker = 1.5 * simNoise::Of(name, second);
    return Weakest + Gain * std::sin(elevation * Degree) + own + flicker;
}

void AddIfSeen(std::vector<simSat>& sats, const simPlace& place, simSystem system, uint8_t svid,
               const simVector& position, int64_t utcNs)
{
    const direction seen = DirectionOf(place, simEarthFixed(place), position);
    if (seen.Elevation < Horizon)
        return;
    simSat sat;
    sat.System = system;
    sat.Svid = svid;
    sat.Elevation = seen.Elevation;
    sat.Azimuth = seen.Azimuth;
    sat.SNR = LevelOf(system, svid, seen.Elevation, utcNs);
    const std::span<const simSignal> signals = simSignalsOf(system, svid);
    sat.Signals.assign(signals.begin(), signals.end());
    sats.push_back(std::move(sat));
}

}  // namespace

simVector simEarthFixed(const simPlace& place)
{
    const double latitude = place.Latitude * Degree;
    const double longitude = place.Longitude * Degree;
    const double height = place.Altitude + place.Separation;
    const double squared = Flattening * (2 - Flattening);
    const double sine = std::sin(latitude);
    const double curve = EarthRadius / std::sqrt(1 - squared * sine * sine);
    return {(curve + height) * std::cos(latitude) * std::cos(longitude),
            (curve + height) * std::cos(latitude) * std::sin(longitude),
            (curve * (1 - squared) + height) * sine};
}

std::vector<simSat> simSatsOver(const simPlace& place, int64_t utcNs)
{
    std::vector<simSat> sats;
    for (const simConstellation& constellation : simConstellations()) {
        for (size_t index = 0; index < constellation.Svids.size(); ++index)
            AddIfSeen(sats, place, constellation.System, constellation.Svids[index],
                      simOrbitPosition(constellation, index, utcNs), utcNs);
    }
    for (const simFixedSat& sat : simFixedSats())
        AddIfSeen(sats, place, sat.System, sat.Svid, simFixedPosition(sat), utcNs);
    const auto before = [](const simSat& one, const simSat& two) {
        return one.System != two.System ? one.System < two.System : one.Svid < two.Svid;
    };
    std::ranges::sort(sats, before);
    return sats;
}

int simChannelOf(uint8_t svid)
{
    return svid >= 1 && svid <= GlonassChannels.size() ? GlonassChannels[svid - 1] : 0;
}
