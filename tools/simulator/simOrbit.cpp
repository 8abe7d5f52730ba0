#include "tools/simulator/simOrbit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double Degree = std::numbers::pi / 180;
constexpr double Gravitation = 3.986004418e14;  // of the earth, m^3/s^2
constexpr double EarthTurn = 7.2921151467e-5;   // rad/s
constexpr double GeostationaryRadius = 42'164e3;
constexpr int64_t EpochNs = 1'767'225'600'000'000'000;  // 2026-01-01
constexpr double EpochAngle = 100.5;                    // of Greenwich at the epoch, degrees

constexpr uint8_t GpsSvids[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16,
                                17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32};
constexpr uint8_t GlonassSvids[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12,
                                    13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24};
constexpr uint8_t GalileoSvids[] = {1,  2,  3,  4,  5,  7,  8,  9,  10, 11, 12, 13,
                                    15, 19, 21, 24, 25, 26, 27, 30, 31, 33, 34, 36};
constexpr uint8_t BeiDouSvids[] = {11, 12, 14, 19, 20, 21, 22, 23, 24, 25, 26, 27,
                                   28, 29, 30, 32, 33, 34, 35, 36, 37, 41, 42, 43};

constexpr simConstellation Constellations[] = {
    {simSystem::GPS, 26'560e3, 55.0, 6, 20.0, 21.0, GpsSvids},
    {simSystem::Galileo, 29'600e3, 56.0, 3, 35.0, 15.0, GalileoSvids},
    {simSystem::BeiDou, 27'906e3, 55.0, 3, 75.0, 15.0, BeiDouSvids},
    {simSystem::GLONASS, 25'510e3, 64.8, 3, 5.0, 15.0, GlonassSvids},
};

// What hangs over the equator, and the points over which the inclined ones linger.
constexpr simFixedSat FixedSats[] = {
    {simSystem::SBAS, 123, 0, 31.5},   {simSystem::SBAS, 127, 0, 55.0},   {simSystem::SBAS, 128, 0, 83.0},
    {simSystem::SBAS, 131, 0, -117.0}, {simSystem::SBAS, 133, 0, -129.0}, {simSystem::SBAS, 135, 0, -125.0},
    {simSystem::SBAS, 136, 0, 5.0},    {simSystem::SBAS, 137, 0, 127.0},  {simSystem::QZSS, 1, 40.0, 136.0},
    {simSystem::QZSS, 2, 20.0, 135.0}, {simSystem::QZSS, 3, 0, 127.0},    {simSystem::QZSS, 4, 35.0, 138.0},
    {simSystem::NavIC, 2, 25.0, 55.0}, {simSystem::NavIC, 3, 0, 83.0},    {simSystem::NavIC, 6, 0, 32.5},
    {simSystem::NavIC, 7, 0, 129.5},
};

constexpr simSignal GpsSignals[] = {{0, "L1C/A"}, {3, "L2C"}, {6, "L5"}};
constexpr simSignal SbasSignals[] = {{0, "L1C/A"}};
constexpr simSignal GalileoSignals[] = {{0, "E1"}, {3, "E5a"}, {5, "E5b"}};
constexpr simSignal BeiDou2Signals[] = {{0, "B1I"}, {2, "B2I"}};
constexpr simSignal BeiDou3Signals[] = {{0, "B1I"}, {5, "B1C"}, {7, "B2a"}};
constexpr simSignal QzssSignals[] = {{0, "L1C/A"}, {1, "L1S"}, {5, "L2C"}, {8, "L5"}};
constexpr simSignal GlonassSignals[] = {{0, "L1"}, {2, "L2"}};
constexpr simSignal NavicSignals[] = {{0, "L5"}};

// Satellites of GPS that are too old for the third frequency, and for the second.
constexpr uint8_t WithoutL5[] = {2, 5, 7, 12, 13, 15, 16, 17, 19, 20, 21, 22, 29, 31};
constexpr uint8_t WithoutL2C[] = {2, 13, 16, 19, 20, 21, 22};
constexpr uint8_t LastOfBeiDou2 = 18;

std::span<const simSignal> GpsSignalsOf(uint8_t svid)
{
    const std::span<const simSignal> all = GpsSignals;
    if (std::ranges::find(WithoutL2C, svid) != std::end(WithoutL2C))
        return all.first(1);
    return std::ranges::find(WithoutL5, svid) != std::end(WithoutL5) ? all.first(2) : all;
}

simVector Turned(const simVector& inertial, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * inertial.X + s * inertial.Y, c * inertial.Y - s * inertial.X, inertial.Z};
}

}  // namespace

std::span<const simConstellation> simConstellations()
{
    return Constellations;
}

std::span<const simFixedSat> simFixedSats()
{
    return FixedSats;
}

simVector simOrbitPosition(const simConstellation& constellation, size_t index, int64_t utcNs)
{
    const double seconds = static_cast<double>(utcNs - EpochNs) * 1e-9;
    const size_t plane = index % constellation.Planes;
    const size_t slot = index / constellation.Planes;
    const size_t count = constellation.Svids.size();
    // A plane that got one less than another is as evenly filled.
    const size_t inPlane = (count - plane + constellation.Planes - 1) / constellation.Planes;
    const double node =
        (constellation.FirstNode + 360.0 * static_cast<double>(plane) / constellation.Planes) * Degree;
    const double start = 360.0 * static_cast<double>(slot) / static_cast<double>(inPlane) +
                         constellation.PlanePhase * static_cast<double>(plane);
    const double radius = constellation.Radius;
    const double motion = std::sqrt(Gravitation / (radius * radius * radius));
    const double along = start * Degree + motion * seconds;
    const double tilt = constellation.Inclination * Degree;
    const double x = radius * std::cos(along);
    const double y = radius * std::sin(along);
    const simVector inertial = {x * std::cos(node) - y * std::cos(tilt) * std::sin(node),
                                x * std::sin(node) + y * std::cos(tilt) * std::cos(node), y * std::sin(tilt)};
    return Turned(inertial, EpochAngle * Degree + EarthTurn * seconds);
}

simVector simFixedPosition(const simFixedSat& sat)
{
    const double latitude = sat.Latitude * Degree;
    const double longitude = sat.Longitude * Degree;
    return {GeostationaryRadius * std::cos(latitude) * std::cos(longitude),
            GeostationaryRadius * std::cos(latitude) * std::sin(longitude),
            GeostationaryRadius * std::sin(latitude)};
}

std::span<const simSignal> simSignalsOf(simSystem system, uint8_t svid)
{
    switch (system) {
    case simSystem::GPS:
        return GpsSignalsOf(svid);
    case simSystem::SBAS:
        return SbasSignals;
    case simSystem::Galileo:
        return GalileoSignals;
    case simSystem::BeiDou:
        return svid <= LastOfBeiDou2 ? std::span<const simSignal>(BeiDou2Signals) : BeiDou3Signals;
    case simSystem::QZSS:
        return QzssSignals;
    case simSystem::GLONASS:
        return GlonassSignals;
    case simSystem::NavIC:
        return NavicSignals;
    case simSystem::IMES:
        break;
    }
    return {};
}
