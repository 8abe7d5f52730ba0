#include "gnss/ubxValues.h"

#include "gnss/ubxKeys.h"

#include <bit>

namespace {

constexpr size_t Header = 4;  // version, layer, position
constexpr size_t KeySize = 4;

uint32_t ConstellationBit(ubxConstellation constellation)
{
    return 1u << static_cast<unsigned>(constellation);
}

// The size of a key's value by its bits 28 to 30; 0 for a size that is not known.
size_t ValueSize(uint32_t key)
{
    constexpr uint8_t Sizes[] = {0, 1, 1, 2, 4, 8, 0, 0};
    return Sizes[key >> 28 & 7];
}

}  // namespace

ubxSignalSet ubxValues::Selection() const
{
    ubxSignalSet selection;
    for (const ubxSignalRow& row : ubxSignalTable) {
        const bool enabled = (Enabled & ConstellationBit(row.Enable)) != 0;
        selection.Set(row.Signal, enabled && Signals.Has(row.Signal));
    }
    return selection;
}

void ubxValues::Take(uint32_t key, ubxPayload value)
{
    if (TakeSignal(key, value.u1(0) != 0))
        SignalSeen = true;
    else
        TakePulse(key, value);
}

bool ubxValues::TakeSignal(uint32_t key, bool on)
{
    for (const ubxSignalRow& row : ubxSignalTable) {
        if (row.Key != 0 && row.Key == key) {
            Signals.Set(row.Signal, on);
            return true;
        }
    }
    for (const ubxEnableRow& row : ubxEnableTable) {
        if (row.Key == key) {
            const uint32_t bit = ConstellationBit(row.Constellation);
            Enabled = on ? Enabled | bit : Enabled & ~bit;
            return true;
        }
    }
    return false;
}

void ubxValues::TakePulse(uint32_t key, ubxPayload value)
{
    switch (key) {
    case ubxKey::PulseDef:
        IsFrequency = value.u1(0) != 0;
        break;
    case ubxKey::PulseLengthDef:
        IsLength = value.u1(0) != 0;
        break;
    case ubxKey::PulsePeriod:
        Period = value.u4(0) * 1e-6;
        break;
    case ubxKey::PulseLength:
        Length = value.u4(0) * 1e-6;
        break;
    case ubxKey::PulseFrequency:
        Frequency = static_cast<float>(value.u4(0));
        break;
    case ubxKey::PulseDuty:
        Duty = std::bit_cast<double>(value.u8(0)) * 0.01;
        break;
    default:
        break;
    }
}

ubxValues ubxReadValues(ubxPayload payload)
{
    ubxValues values;
    size_t at = Header;
    while (at + KeySize <= payload.size()) {
        const uint32_t key = payload.u4(at);
        const size_t size = ValueSize(key);
        at += KeySize;
        if (size == 0 || payload.size() - at < size)
            break;
        values.Take(key, payload.Part(at, size));
        at += size;
    }
    return values;
}
