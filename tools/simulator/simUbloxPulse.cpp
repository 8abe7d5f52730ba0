// How the time pulse of a u-blox receiver is configured by its message, CFG-TP5.
#include "tools/simulator/simUblox.h"

#include <algorithm>
#include <bit>
#include <cmath>

using namespace simUbxKey;

namespace {

constexpr uint8_t ClassConfig = 0x06;
constexpr uint8_t IdPulse = 0x31;
constexpr size_t PulseSize = 32;

// Bits of its flags.
constexpr uint32_t PulseFlagActive = 1 << 0;
constexpr uint32_t PulseFlagSync = 1 << 1;
constexpr uint32_t PulseFlagLocked = 1 << 2;
constexpr uint32_t PulseFlagFrequency = 1 << 3;
constexpr uint32_t PulseFlagLength = 1 << 4;
constexpr uint32_t PulseFlagAlign = 1 << 5;
constexpr uint32_t PulseFlagPolarity = 1 << 6;
constexpr unsigned PulseGridShift = 7;

constexpr std::pair<uint32_t, uint32_t> PulseFlags[] = {
    {PulseFlagActive, PulseOn},         {PulseFlagSync, PulseSync},
    {PulseFlagLocked, PulseUseLocked},  {PulseFlagFrequency, PulseIsFrequency},
    {PulseFlagLength, PulseIsLength},   {PulseFlagAlign, PulseAlign},
    {PulseFlagPolarity, PulsePolarity},
};

// A duty is a share of 2^32 in the classic message and percent in its key.
constexpr double DutyUnit = 4'294'967'296.0 / 100;

uint32_t ShareOf(uint64_t dutyKey)
{
    const double share = std::bit_cast<double>(dutyKey) * DutyUnit;
    return static_cast<uint32_t>(std::clamp(std::round(share), 0.0, 4'294'967'295.0));
}

uint64_t DutyOf(uint32_t share)
{
    return std::bit_cast<uint64_t>(share / DutyUnit);
}

}  // namespace

simUblox::outcome simUblox::ConfigPulse(const simReader& payload)
{
    const size_t size = payload.Data.size();
    if (size == PulseSize)
        return SetPulse(payload) ? outcome::Done : outcome::Refused;
    // The only pulse is number 0.
    if (size > 1 || payload.U1(0) != 0)
        return outcome::Refused;
    Answer(ClassConfig, IdPulse, PulsePayload());
    return outcome::Done;
}

bool simUblox::SetPulse(const simReader& payload)
{
    constexpr uint32_t FastestPulse = 10'000'000;  // hertz
    const uint32_t flags = payload.U4(28);
    const bool frequency = (flags & PulseFlagFrequency) != 0;
    if (payload.U1(0) != 0 || (frequency && std::max(payload.U4(8), payload.U4(12)) > FastestPulse))
        return false;
    for (const auto& [flag, key] : PulseFlags)
        Keys.Set(key, (flags & flag) != 0 ? 1 : 0);
    Keys.Set(PulseGrid, flags >> PulseGridShift & 0xF);
    Keys.Set(PulseDelay, payload.U2(4));
    Keys.Set(frequency ? PulseFrequency : PulsePeriod, payload.U4(8));
    Keys.Set(frequency ? PulseFrequencyLock : PulsePeriodLock, payload.U4(12));
    const bool length = (flags & PulseFlagLength) != 0;
    Keys.Set(length ? PulseLength : PulseDuty, length ? payload.U4(16) : DutyOf(payload.U4(16)));
    Keys.Set(length ? PulseLengthLock : PulseDutyLock, length ? payload.U4(20) : DutyOf(payload.U4(20)));
    Keys.Set(PulseUserDelay, payload.U4(24));
    return true;
}

simBytes simUblox::PulsePayload() const
{
    uint64_t flags = Keys[PulseGrid] << PulseGridShift;
    for (const auto& [flag, key] : PulseFlags)
        flags |= Keys[key] != 0 ? flag : 0u;
    const bool frequency = Keys[PulseIsFrequency] != 0;
    const bool length = Keys[PulseIsLength] != 0;
    return simWriter(std::endian::little)
        .U1(0)                                                              // tpIdx
        .U1(Model.PulseVersion)                                             // version
        .U2(0)                                                              // reserved
        .U2(Keys[PulseDelay])                                               // antCableDelay
        .U2(0)                                                              // rfGroupDelay
        .U4(Keys[frequency ? PulseFrequency : PulsePeriod])                 // freqPeriod
        .U4(Keys[frequency ? PulseFrequencyLock : PulsePeriodLock])         // freqPeriodLock
        .U4(length ? Keys[PulseLength] : ShareOf(Keys[PulseDuty]))          // pulseLenRatio
        .U4(length ? Keys[PulseLengthLock] : ShareOf(Keys[PulseDutyLock]))  // pulseLenRatioLock
        .U4(Keys[PulseUserDelay])                                           // userConfigDelay
        .U4(flags)                                                          // flags
        .Data;
}
