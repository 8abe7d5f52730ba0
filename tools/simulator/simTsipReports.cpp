// What a Trimble receiver tells.
#include "tools/simulator/simTsip.h"

#include "tools/simulator/simTime.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double Degree = std::numbers::pi / 180;
constexpr int WeeksKept = 1024;
// The date falls back by whole periods of 1024 weeks into the one that began when such receivers were made.
constexpr int FirstWeek = 1060;
constexpr int64_t Week = int64_t{604'800} * simSecond;

constexpr uint8_t DoingFixes = 0x00;
constexpr uint8_t NoGpsTime = 0x01;

int64_t RolledOver(int64_t utcNs)
{
    const int periods = std::max(simGpsOf(utcNs).Week - FirstWeek, 0) / WeeksKept;
    return utcNs - int64_t{periods} * WeeksKept * Week;
}

uint8_t StatusOf(const simEpoch& epoch)
{
    return epoch.Fixed ? DoingFixes : NoGpsTime;
}

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

// The newest receiver goes by its I/O options as well.
bool simTsip::UtcTime() const
{
    const bool byOptions = Has(simTsipPart::Version) && (IoOptions[2] & 1) != 0;
    return byOptions || (TimeBase & 1) != 0;
}

unsigned simTsip::SurveyProgress() const
{
    constexpr int64_t Shortest = 60;  // seconds, where a real survey takes half an hour
    const int64_t seconds = std::max<int64_t>((Current().UtcNs - SurveyStart) / simSecond, 0);
    return static_cast<unsigned>(std::min<int64_t>(100, 100 * seconds / Shortest));
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
        .U2(static_cast<uint64_t>(simGpsOf(Current().UtcNs).Week % WeeksKept))
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
    return {StatusOf(Current()), 0};
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

// 0x8F-0B: all of the time and the position in one.
simBytes simTsip::EventData() const
{
    const simEpoch& epoch = Current();
    const simDate date = simDateOf(RolledOver(epoch.UtcNs));
    simWriter data(std::endian::big);
    data.U1(0x0B)
        .U2(0)                               // event count
        .F8(SecondsOfWeek())                 // time of week
        .I1(date.Day)                        // day
        .I1(date.Month)                      // month
        .I2(date.Year)                       // year
        .U1(Receiver[1])                     // receiver mode
        .U2(simLeapSeconds)                  // offset to UTC
        .F8(12.5)                            // oscillator bias
        .F8(-0.3)                            // oscillator drift
        .F4(25)                              // uncertainty of the bias
        .F4(0.1)                             // uncertainty of the drift
        .F8(epoch.Place.Latitude * Degree)   // latitude
        .F8(epoch.Place.Longitude * Degree)  // longitude
        .F8(epoch.Place.Altitude);           // altitude
    constexpr unsigned Satellites = 8;
    unsigned told = 0;
    for (const simSat& sat : epoch.Sats) {
        if (sat.Used && told < Satellites) {
            data.U1(sat.Svid);
            ++told;
        }
    }
    return data.Zeros(Satellites - told).Data;
}

// 0x8F-AB: primary timing.
simBytes simTsip::PrimaryData() const
{
    constexpr uint8_t UtcTimeFlag = 1 << 0;
    constexpr uint8_t UtcPulseFlag = 1 << 1;
    constexpr uint8_t TimeNotSet = 1 << 2;
    constexpr uint8_t NoUtcInformation = 1 << 3;
    const simEpoch& epoch = Current();
    const simGpsTime gps = simGpsOf(epoch.UtcNs);
    const int64_t told = UtcTime() ? epoch.UtcNs : epoch.UtcNs + simLeapSeconds * simSecond;
    const simDate date = simDateOf(RolledOver(told));
    const bool utcPulse = (TimeBase & 2) != 0 || Pulse[2] == 1;
    const int flags = (UtcTime() ? UtcTimeFlag : 0) | (utcPulse ? UtcPulseFlag : 0) |
                      (epoch.Fixed ? 0 : TimeNotSet | NoUtcInformation);
    return simWriter(std::endian::big)
        .U1(0xAB)
        .I4(gps.TowNs / simSecond)                        // time of week
        .U2(static_cast<uint64_t>(gps.Week % WeeksKept))  // week
        .I2(epoch.Fixed ? simLeapSeconds : 0)             // offset to UTC
        .I1(flags)                                        // timing flags
        .I1(date.Second)
        .I1(date.Minute)
        .I1(date.Hour)
        .I1(date.Day)
        .I1(date.Month)
        .I2(date.Year)
        .Data;
}

// 0x8F-AC: supplemental timing.
simBytes simTsip::SupplementalData() const
{
    constexpr uint16_t Surveying = 1 << 5;
    constexpr uint16_t NotTracking = 1 << 3;
    const simEpoch& epoch = Current();
    const bool surveying = Survey[1] != 0 && SurveyProgress() < 100;
    const double phase = SecondsOfWeek() / 37;
    const double error = 14 * (phase - std::floor(phase) - 0.5);  // nanoseconds
    const int minor = (surveying ? Surveying : 0) | (epoch.Fixed ? 0 : NotTracking);
    return simWriter(std::endian::big)
        .U1(0xAC)
        .U1(surveying ? 4 : Receiver[1])                      // receiver mode
        .U1(0)                                                // disciplining mode
        .U1(SurveyProgress())                                 // progress of the survey
        .U4(0)                                                // holdover
        .U2(0)                                                // critical alarms
        .I2(minor)                                            // minor alarms
        .U1(StatusOf(epoch))                                  // decoding status
        .U1(0)                                                // disciplining activity
        .Zeros(2)                                             // spare
        .F4(12.5 + 3 * std::sin(SecondsOfWeek() / 200))       // clock bias, nanoseconds
        .F4(-0.3 + 0.1 * std::sin(SecondsOfWeek() / 300))     // bias rate, parts in 10^9
        .Zeros(8)                                             // converter
        .F4(36.5 + 2 * std::sin(SecondsOfWeek() / 900))       // temperature
        .F8(epoch.Place.Latitude * Degree)                    // latitude
        .F8(epoch.Place.Longitude * Degree)                   // longitude
        .F8(epoch.Place.Altitude)                             // altitude
        .F4(Model.ErrorInNanoseconds ? error : error * 1e-9)  // error of the pulse
        .Zeros(4)                                             // spare
        .Data;
}

// 0x8F-AD: primary UTC time.
simBytes simTsip::UtcData() const
{
    constexpr uint8_t UtcFlags = 1;
    const simEpoch& epoch = Current();
    const simDate date = simDateOf(RolledOver(epoch.UtcNs));
    return simWriter(std::endian::big)
        .U1(0xAD)
        .U2(0)                       // event count
        .F8(date.Nanosecond * 1e-9)  // fraction of a second
        .I1(date.Hour)
        .I1(date.Minute)
        .I1(date.Second)
        .I1(date.Day)
        .I1(date.Month)
        .I2(date.Year)
        .U1(epoch.Fixed ? 0 : 1)  // receiver status
        .U1(UtcFlags)             // flags
        .Zeros(2)                 // reserved
        .Data;
}
