// The timing packets of Trimble receivers: 0x8E, by whose subcodes they are asked and told, and 0x8F, with
// which they answer.
#include "tools/simulator/simTsip.h"

#include "tools/simulator/simTime.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr uint8_t ReportTiming = 0x8F;
constexpr double Degree = std::numbers::pi / 180;

// The date falls back by whole periods of 1024 weeks into the one that began when such receivers were made.
constexpr int FirstWeek = 1060;
constexpr int64_t Week = int64_t{604'800} * simSecond;

int64_t RolledOver(int64_t utcNs)
{
    const int periods = std::max(simGpsOf(utcNs).Week - FirstWeek, 0) / simTsipWeeks;
    return utcNs - int64_t{periods} * simTsipWeeks * Week;
}

}  // namespace

const simTsip::command simTsip::TimingCommands[] = {
    {0x0B, simTsipPart::Timing, &simTsip::AskEvent},
    {0x4A, simTsipPart::Timing, &simTsip::SetPulse},
    {0xA2, simTsipPart::Timing, &simTsip::SetTimeBase},
    {0xA5, simTsipPart::Timing, &simTsip::SetMask},
    {0xA6, simTsipPart::Timing, &simTsip::SurveyAgain},
    {0xA9, simTsipPart::Timing, &simTsip::SetSurvey},
    {0xAB, simTsipPart::Timing, &simTsip::AskPrimary},
    {0xAC, simTsipPart::Timing, &simTsip::AskSupplemental},
    {0xAD, simTsipPart::Timing, &simTsip::AskUtc},
};

bool simTsip::Timing(const simReader& data)
{
    if (data.Data.empty())
        return false;
    return RunFrom(TimingCommands, data.U1(0), simReader(data.Data.subspan(1), std::endian::big));
}

bool simTsip::AskEvent(const simReader&)
{
    Answer(ReportTiming, EventData());
    return true;
}

// 0x8E-4A: driver, base, edge, delay and threshold of the pulse.
bool simTsip::SetPulse(const simReader& data)
{
    if (!data.Data.empty() && data.Data.size() + 1 != Pulse.size())
        return false;
    std::ranges::copy(data.Data, Pulse.begin() + 1);
    Answer(ReportTiming, Pulse);
    return true;
}

bool simTsip::SetTimeBase(const simReader& data)
{
    if (!data.Data.empty())
        TimeBase = data.U1(0) & 3;
    Answer(ReportTiming, {0xA2, TimeBase});
    return true;
}

// 0x8E-A5: two masks of the packets that are sent by themselves, of which the second is not used.
bool simTsip::SetMask(const simReader& data)
{
    constexpr size_t MasksSize = 4;
    if (!data.Data.empty() && data.Data.size() != MasksSize)
        return false;
    if (!data.Data.empty())
        Mask = data.U2(0);
    Answer(ReportTiming, simWriter(std::endian::big).U1(0xA5).U2(Mask).U2(0).Data);
    return true;
}

// 0x8E-A6: 0 surveys the antenna's position anew.
bool simTsip::SurveyAgain(const simReader& data)
{
    if (data.Data.size() != 1 || data.U1(0) != 0)
        return false;
    SurveyStart = UtcNs();
    Answer(ReportTiming, {0xA6, 0, 0});
    return true;
}

// 0x8E-A9: whether there is a survey, whether it is saved, of how many fixes.
bool simTsip::SetSurvey(const simReader& data)
{
    if (!data.Data.empty() && data.Data.size() + 1 != Survey.size())
        return false;
    std::ranges::copy(data.Data, Survey.begin() + 1);
    Answer(ReportTiming, Survey);
    return true;
}

bool simTsip::AskPrimary(const simReader&)
{
    Answer(ReportTiming, PrimaryData());
    return true;
}

bool simTsip::AskSupplemental(const simReader&)
{
    Answer(ReportTiming, SupplementalData());
    return true;
}

bool simTsip::AskUtc(const simReader&)
{
    Answer(ReportTiming, UtcData());
    return true;
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
        .I4(gps.TowNs / simSecond)                           // time of week
        .U2(static_cast<uint64_t>(gps.Week % simTsipWeeks))  // week
        .I2(epoch.Fixed ? simLeapSeconds : 0)                // offset to UTC
        .I1(flags)                                           // timing flags
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
        .U1(DecodingStatus())                                 // decoding status
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
