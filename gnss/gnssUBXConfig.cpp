#include "gnss/gnssUBX.h"

#include "gnss/ubxKeys.h"
#include "gnss/ubxMessage.h"

#include <bit>

namespace {

// By gnssId of CFG-GNSS: the one signal that stands for the constellation.
constexpr ubxSignal GnssIdSignals[] = {
    ubxSignal::GPSL1CA, ubxSignal::SBAS,     ubxSignal::GalileoE1, ubxSignal::BeiDouB1I,
    ubxSignal::IMES,    ubxSignal::QZSSL1CA, ubxSignal::GLONASSL1,
};

constexpr size_t BlockFlags = 4;  // flags in a block of CFG-GNSS; bit 0 is enable

ubxPayload GnssBlock(ubxPayload payload, size_t block)
{
    return payload.Part(ubx::CfgGNSSHeader + ubx::CfgGNSSBlock * block, ubx::CfgGNSSBlock);
}

size_t GnssBlockCount(ubxPayload payload)
{
    return payload.u1(3);  // numConfigBlocks
}

// What a CFG-VALGET answer tells: the signal group or the time pulse, whichever was asked for.
struct keyValues {
    ubxSignalSet Signals;
    uint32_t Enabled = 0;  // a bit for each ubxConstellation
    bool SignalSeen = false;

    bool IsFrequency = false;
    bool IsLength = false;
    double Period = 0;  // seconds
    double Length = 0;  // seconds
    float Frequency = 0;
    double Duty = 0;  // a fraction

    void Take(uint32_t key, ubxPayload value);
    ubxSignalSet Selection() const;

private:
    bool TakeSignal(uint32_t key, bool on);
    void TakePulse(uint32_t key, ubxPayload value);
};

uint32_t ConstellationBit(ubxConstellation constellation)
{
    return 1u << static_cast<unsigned>(constellation);
}

void keyValues::Take(uint32_t key, ubxPayload value)
{
    if (TakeSignal(key, value.u1(0) != 0))
        SignalSeen = true;
    else
        TakePulse(key, value);
}

bool keyValues::TakeSignal(uint32_t key, bool on)
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

void keyValues::TakePulse(uint32_t key, ubxPayload value)
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

// A signal is on only if its constellation is.
ubxSignalSet keyValues::Selection() const
{
    ubxSignalSet selection;
    for (const ubxSignalRow& row : ubxSignalTable) {
        const bool enabled = (Enabled & ConstellationBit(row.Enable)) != 0;
        selection.Set(row.Signal, enabled && Signals.Has(row.Signal));
    }
    return selection;
}

// The size of a key's value by its bits 28 to 30; 0 for a size that is not known.
size_t ValueSize(uint32_t key)
{
    constexpr uint8_t Sizes[] = {0, 1, 1, 2, 4, 8, 0, 0};
    return Sizes[key >> 28 & 7];
}

keyValues ReadValues(ubxPayload payload)
{
    keyValues values;
    constexpr size_t KeySize = 4;
    size_t at = 4;
    while (payload.size() - at >= KeySize) {
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

}  // namespace

void gnssUBX::Decode_Config(const uint8_t* bytes, size_t count)
{
    const ubxPayload payload(bytes + 3, count - 3);
    switch (bytes[0]) {
    case ubx::CfgPRT:
        return Decode_CfgPRT(payload);
    case ubx::CfgTP5:
        return Decode_CfgTP5(payload);
    case ubx::CfgGNSS:
        return Decode_CfgGNSS(payload);
    case ubx::CfgVALGET:
        return Decode_CfgVALGET(payload);
    default:
        return;
    }
}

// CFG-PRT: how the port is set up. Sent back as it is here, it leaves UBX as the port's only output.
void gnssUBX::Decode_CfgPRT(ubxPayload payload)
{
    constexpr size_t OutProtoMask = 14;
    if (payload.size() < ubx::CfgPRTSize || payload.u1(0) != PortId)  // portID
        return;
    std::copy_n(payload.data(), ubx::CfgPRTSize, ConfigBlock);
    ConfigBlock[OutProtoMask] = 1;
    ConfigBlock[OutProtoMask + 1] = 0;
}

// CFG-TP5: the first time pulse.
void gnssUBX::Decode_CfgTP5(ubxPayload payload)
{
    if (payload.size() != ubx::CfgTP5Size || payload.u1(1) > 1 || payload.u1(0) != 0)  // version, tpIdx
        return;
    const uint8_t flags = payload.u1(28);
    const bool isFreq = (flags & 1u << 3) != 0;
    const bool isLength = (flags & 1u << 4) != 0;
    const auto freqPeriod = static_cast<float>(payload.u4(8));
    const double pulseLenRatio = payload.u4(16);
    const float rate = isFreq ? freqPeriod : 1e6f / freqPeriod;
    const double duty = isLength ? pulseLenRatio * 1e-6 * rate : pulseLenRatio / 4294967296.0;
    PPSRate = rate;
    PPSDuty = static_cast<float>(duty);
}

// CFG-GNSS: which constellations are on.
void gnssUBX::Decode_CfgGNSS(ubxPayload payload)
{
    const size_t count = GnssBlockCount(payload);
    if (payload.size() < ubx::CfgGNSSHeader || payload.u1(0) != 0)  // msgVer
        return;
    if (payload.size() != ubx::CfgGNSSHeader + ubx::CfgGNSSBlock * count)
        return;
    if (PendingGNSS == 0)
        return ReportGNSS(payload);
    // The user's change is under way, so what the receiver had before is of no interest.
    if (ConfigState == State::SelectRead)
        KeepGNSS(payload);
}

// Makes the copy that carries the user's selection back. More blocks than it holds come from no receiver that
// is known: nothing of them is copied, and what goes back changes nothing.
void gnssUBX::KeepGNSS(ubxPayload payload)
{
    PendingGNSS = 0;
    if (payload.size() > ConfigBlockSize) {
        std::fill_n(ConfigBlock, ubx::CfgGNSSHeader, uint8_t{0});
        return;
    }
    std::copy_n(payload.data(), payload.size(), ConfigBlock);
    const ubxSignalSet selected = Select.Load();
    for (size_t block = 0; block < GnssBlockCount(payload); block++) {
        const uint8_t gnssId = GnssBlock(payload, block).u1(0);
        if (gnssId >= std::size(GnssIdSignals))
            continue;
        uint8_t& flags = ConfigBlock[ubx::CfgGNSSHeader + ubx::CfgGNSSBlock * block + BlockFlags];
        const uint8_t enable = selected.Has(GnssIdSignals[gnssId]) ? 1 : 0;
        flags = static_cast<uint8_t>((flags & ~1u) | enable);
    }
}

void gnssUBX::ReportGNSS(ubxPayload payload)
{
    ubxSignalSet enabled;
    ubxSignalSet told;
    for (size_t block = 0; block < GnssBlockCount(payload); block++) {
        const ubxPayload fields = GnssBlock(payload, block);
        const uint8_t gnssId = fields.u1(0);
        if (gnssId >= std::size(GnssIdSignals))
            continue;
        told.Set(GnssIdSignals[gnssId], true);
        enabled.Set(GnssIdSignals[gnssId], (fields.u1(BlockFlags) & 1) != 0);
    }
    Select.Replace(enabled, told);
    RaiseNewData();
}

// CFG-VALGET: keys and their values.
void gnssUBX::Decode_CfgVALGET(ubxPayload payload)
{
    if (payload.size() < 9 || payload.u1(0) != 1)  // version
        return;
    const keyValues values = ReadValues(payload);
    if (values.SignalSeen) {
        // No key tells of IMES, so its flag stays.
        ubxSignalSet keyed(~0u);
        keyed.Set(ubxSignal::IMES, false);
        Select.Replace(values.Selection(), keyed);
    }
    if (ConfigState != State::PulseRead)
        return;
    const double rate = values.IsFrequency ? values.Frequency : 1.0 / values.Period;
    PPSRate = static_cast<float>(rate);
    PPSDuty = static_cast<float>(values.IsLength ? rate * values.Length : values.Duty);
}
