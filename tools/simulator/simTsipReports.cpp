// What a Trimble receiver tells.
#include "tools/simulator/simTsip.h"

#include "tools/simulator/simTime.h"

#include <algorithm>
#include <numbers>

namespace {

constexpr double Degree = std::numbers::pi / 180;

uint8_t CountUsed(const simEpoch& epoch)
{
    return static_cast<uint8_t>(std::min<int64_t>(std::ranges::count_if(epoch.Sats, &simSat::Used), 12));
}

// Levels in the receivers' own measure, about a fifth of a dB-Hz.
double LevelOf(const simSat& sat)
{
    return sat.SNR > 0 ? (sat.SNR - 20) * 0.6 : 0;
}

}  // namespace

double simTsip::SecondsOfWeek() const
{
    return static_cast<double>(simGpsOf(Current().UtcNs).TowNs) / simSecond;
}

// The options choose GPS time or UTC.
double simTsip::TimeOfFix() const
{
    const bool utc = (IoOptions[2] & 1) != 0;
    const int64_t moment = Current().UtcNs - (utc ? simLeapSeconds * simSecond : 0);
    return static_cast<double>(simGpsOf(moment).TowNs) / simSecond;
}

// Above the ellipsoid, or above mean sea level where the options say so.
double simTsip::ReportedAltitude() const
{
    constexpr uint8_t SeaLevel = 1 << 2;
    const simPlace& place = Current().Place;
    return (IoOptions[0] & SeaLevel) != 0 ? place.Altitude : place.Altitude + place.Separation;
}

uint8_t simTsip::DecodingStatus() const
{
    constexpr uint8_t DoingFixes = 0x00;
    constexpr uint8_t NoGpsTime = 0x01;
    return Current().Fixed ? DoingFixes : NoGpsTime;
}

// 0x45: versions and dates of the two processors' software.
simBytes simTsip::SoftwareData() const
{
    constexpr uint8_t Year = 107;  // since 1900
    return simWriter(std::endian::big)
        .U1(Model.Major)
        .U1(Model.Minor)
        .U1(6)
        .U1(16)
        .U1(Year)
        .U1(1)
        .U1(20)
        .U1(2)
        .U1(28)
        .U1(Year)
        .Data;
}

// 0x41: time of week, week, offset to UTC.
simBytes simTsip::TimeData() const
{
    return simWriter(std::endian::big)
        .F4(SecondsOfWeek())
        .U2(static_cast<uint64_t>(simGpsOf(Current().UtcNs).Week % simTsipWeeks))
        .F4(simLeapSeconds)
        .Data;
}

// 0x6D: mode and count, four dilutions, the satellites in the solution.
simBytes simTsip::UsedData() const
{
    constexpr uint8_t Mode3D = 4;
    constexpr uint8_t ModeNone = 1;
    const simEpoch& epoch = Current();
    const uint8_t count = CountUsed(epoch);
    simWriter data(std::endian::big);
    data.U1(uint64_t{count} << 4 | (epoch.Fixed ? Mode3D : ModeNone));
    data.F4(epoch.Dop.P).F4(epoch.Dop.H).F4(epoch.Dop.V).F4(epoch.Dop.T);
    unsigned told = 0;
    for (const simSat& sat : epoch.Sats) {
        if (sat.Used && told++ < count)
            data.U1(sat.Svid);
    }
    return data.Data;
}

// 0x46: status and error code.
simBytes simTsip::HealthData() const
{
    return {DecodingStatus(), 0};
}

// 0x4B: machine code, and whether all is well.
simBytes simTsip::MachineData() const
{
    constexpr uint8_t AlmanacMissing = 1 << 3;
    return {Model.MachineCode, Current().Fixed ? uint8_t{0} : AlmanacMissing, 0};
}

// 0x47: the level of each satellite.
simBytes simTsip::LevelsData() const
{
    const simEpoch& epoch = Current();
    simWriter data(std::endian::big);
    data.U1(epoch.Sats.size());
    for (const simSat& sat : epoch.Sats)
        data.U1(sat.Svid).F4(LevelOf(sat));
    return data.Data;
}

// 0x5C: how a satellite is tracked.
simBytes simTsip::TrackingData(const simSat& sat, unsigned channel) const
{
    const bool heard = sat.SNR > 0;
    return simWriter(std::endian::big)
        .U1(sat.Svid)                // satellite
        .U1(channel << 3)            // slot and channel
        .U1(heard ? 1 : 0)           // acquired
        .U1(heard ? 33 : 0)          // ephemeris
        .F4(LevelOf(sat))            // level
        .F4(SecondsOfWeek())         // time of the last measurement
        .F4(sat.Elevation * Degree)  // elevation
        .F4(sat.Azimuth * Degree)    // azimuth
        .Zeros(4)                    // age, millisecond, bad data, data collection
        .Data;
}

// 0x4A: latitude, longitude, altitude, clock bias, time of the fix.
simBytes simTsip::PositionData() const
{
    const simPlace& place = Current().Place;
    return simWriter(std::endian::big)
        .F4(place.Latitude * Degree)
        .F4(place.Longitude * Degree)
        .F4(ReportedAltitude())
        .F4(12.5)
        .F4(TimeOfFix())
        .Data;
}

// 0x84: the same in doubles.
simBytes simTsip::LongPositionData() const
{
    const simPlace& place = Current().Place;
    return simWriter(std::endian::big)
        .F8(place.Latitude * Degree)
        .F8(place.Longitude * Degree)
        .F8(ReportedAltitude())
        .F8(12.5)
        .F4(TimeOfFix())
        .Data;
}

// 0x56: velocity to the east, to the north and up, clock rate, time of the fix.
simBytes simTsip::VelocityData() const
{
    const simEpoch& epoch = Current();
    return simWriter(std::endian::big)
        .F4(epoch.EastSpeed)
        .F4(epoch.NorthSpeed)
        .F4(0)
        .F4(-0.3)
        .F4(TimeOfFix())
        .Data;
}
