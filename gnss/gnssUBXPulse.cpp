#include "gnss/gnssUBX.h"

#include "gnss/ubxKeys.h"
#include "gnss/ubxMessage.h"

#include <bit>
#include <cmath>
#include <limits>

namespace {

// active, lockGnssFreq, lockedOtherSet, alignToTow, polarity
constexpr uint8_t FlagsPeriod = 0x67;
constexpr uint8_t FlagsFrequency = 0x6F;  // and isFreq

// A value cut to a whole number. What does not fit becomes the nearest that does, and what is no number 0, so
// that no rate that anybody can enter or a receiver can tell does harm.
uint32_t Whole32(double value)
{
    constexpr double Limit = std::numeric_limits<uint32_t>::max();
    if (!(value > 0))
        return 0;
    return value >= Limit ? std::numeric_limits<uint32_t>::max() : static_cast<uint32_t>(value);
}

int64_t Whole64(double value)
{
    constexpr double Limit = 9223372036854775808.0;
    if (std::isnan(value))
        return 0;
    if (value >= Limit)
        return std::numeric_limits<int64_t>::max();
    return value < -Limit ? std::numeric_limits<int64_t>::min() : static_cast<int64_t>(value);
}

struct pulseRate {
    double FreqPeriod;  // Hz, or microseconds
    uint8_t Flags;
};

// A whole frequency, or a period for a rate that is none. A period in microseconds is weighed against a rate
// in hertz, which lets the slow rates, up to half a hertz, go by period.
pulseRate RateOf(float rate)
{
    const double exact = rate;
    const double frequency = std::floor(exact + 0.5);
    if (frequency == exact)
        return {frequency, FlagsFrequency};
    const float period = std::floor(1e6f / rate + 0.5f);
    if (std::fabs(1.0 / period - exact) < std::fabs(frequency - exact))
        return {period, FlagsPeriod};
    return {frequency, FlagsFrequency};
}

void Put32(uint8_t* bytes, uint32_t value)
{
    for (unsigned place = 0; place < 4; place++)
        bytes[place] = static_cast<uint8_t>(value >> (8 * place));
}

}  // namespace

void gnssUBX::PulseChange()
{
    if (HasKeys())
        PulseSetByKey();
    else
        PulseSetByBlock();
    ConfigState = State::PulseSet;
}

// CFG-TP5
void gnssUBX::PulseSetByBlock()
{
    const pulseRate rate = RateOf(PPSRate);
    const uint32_t freqPeriod = Whole32(rate.FreqPeriod);
    // A duty of 1 wraps around to 0.
    const auto pulseLenRatio = static_cast<uint32_t>(Whole64(double{PPSDuty} * 4294967296.0));
    std::fill_n(ConfigBlock, ubx::CfgTP5Size, uint8_t{0});
    ConfigBlock[1] = ProtVer >= ubx::ProtVerPulse ? 1 : 0;  // version
    Put32(&ConfigBlock[8], freqPeriod);                     // freqPeriod
    Put32(&ConfigBlock[12], freqPeriod);                    // freqPeriodLock
    Put32(&ConfigBlock[16], pulseLenRatio);                 // pulseLenRatio
    Put32(&ConfigBlock[20], pulseLenRatio);                 // pulseLenRatioLock
    ConfigBlock[28] = rate.Flags;                           // flags
    Send(ubx::CFG, ubx::CfgTP5, ConfigBlock, ubx::CfgTP5Size);
}

// The duty goes out as the fraction that it is; the same key is read as per cent.
void gnssUBX::PulseSetByKey()
{
    const double duty = PPSDuty;
    ValueBegin(ubxKey::WriteRAM);
    ValueSet8(ubxKey::PulseDef, ubxKey::PulseDefFrequency);
    ValueSet8(ubxKey::PulseLengthDef, ubxKey::PulseLengthDefRatio);
    ValueSet32(ubxKey::PulseFrequency, Whole32(double{PPSRate}));
    ValueSet64(ubxKey::PulseDuty, std::bit_cast<uint64_t>(duty));
    SendFrame(ubx::CfgVALSET);
}
