#include "gnss/gnssUBX.h"

#include "gnss/ubxMessage.h"
#include "gnss/ubxValues.h"

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
    const ubxValues values = ubxReadValues(payload);
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
