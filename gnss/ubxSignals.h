// The signals that a user can switch on and off on a receiver that speaks UBX: the set of them, and for each
// its name, its configuration key and the models that have it.
#pragma once

#include "gnss/ubxModel.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

// In the order of the flags of gnssUBX::Select.
enum class ubxSignal : uint8_t {
    BeiDouB1C,
    BeiDouB1I,
    BeiDouB2a,
    BeiDouB2I,
    GalileoE1,
    GalileoE5a,
    GalileoE5b,
    GLONASSL1,
    GLONASSL2,
    GPSL1CA,
    GPSL2C,
    GPSL5,
    IMES,
    NavICL5,
    QZSSL1CA,
    QZSSL1S,
    QZSSL2C,
    QZSSL5,
    SBAS,
};

constexpr size_t ubxSignalCount = 19;

// A set of signals: 19 flags in one word.
class ubxSignalSet
{
public:
    constexpr ubxSignalSet() = default;
    constexpr explicit ubxSignalSet(uint32_t bits) : Flags(bits & ((1u << ubxSignalCount) - 1)) {}

    template <class... Signals>
    static constexpr ubxSignalSet Of(Signals... signals)
    {
        return ubxSignalSet((0u | ... | Bit(signals)));
    }

    constexpr bool Has(ubxSignal signal) const { return (Flags & Bit(signal)) != 0; }
    constexpr bool HasAny(ubxSignalSet others) const { return (Flags & others.Flags) != 0; }
    constexpr void Set(ubxSignal signal, bool on) { Flags = on ? Flags | Bit(signal) : Flags & ~Bit(signal); }
    constexpr void Remove(ubxSignalSet others) { Flags &= ~others.Flags; }
    constexpr uint32_t Bits() const { return Flags; }

    constexpr bool operator==(const ubxSignalSet&) const = default;

private:
    static constexpr uint32_t Bit(ubxSignal signal) { return 1u << static_cast<unsigned>(signal); }

    uint32_t Flags = 0;
};

// A set that the data thread and the interface thread share. Any thread.
class ubxSharedSignals
{
public:
    ubxSignalSet Load() const { return ubxSignalSet(Word.load()); }
    void Store(ubxSignalSet signals) { Word.store(signals.Bits()); }
    bool Has(ubxSignal signal) const { return Load().Has(signal); }

    // Takes over the flags of `signals` that are in `mask` and keeps all others.
    void Replace(ubxSignalSet signals, ubxSignalSet mask);

private:
    std::atomic<uint32_t> Word{0};
};

// The constellations as the configuration enables them, in the order in which a selection is written.
enum class ubxConstellation : uint8_t {
    GPS,
    SBAS,
    Galileo,
    BeiDou,
    QZSS,
    NavIC,
    GLONASS,
    None,
};

struct ubxSignalRow {
    ubxSignal Signal;
    std::string_view Name;
    uint32_t Key;             // of the group CFG-SIGNAL; 0 when there is none
    ubxModel::Set Models;     // which models are told the key
    ubxConstellation Enable;  // whose enable key has to be on as well
};

// One row for each ubxSignal, in its order.
constexpr std::array<ubxSignalRow, ubxSignalCount> ubxSignalTable = {{
    {ubxSignal::BeiDouB1C, "BeiDou B1C", 0x1031000F, ubxModel::From(12, 14), ubxConstellation::BeiDou},
    {ubxSignal::BeiDouB1I, "BeiDou B1I", 0x1031000D, ubxModel::From(9, 13), ubxConstellation::BeiDou},
    {ubxSignal::BeiDouB2a, "BeiDou B2a", 0x10310028, ubxModel::From(14, 14), ubxConstellation::BeiDou},
    {ubxSignal::BeiDouB2I, "BeiDou B2I", 0x1031000E, ubxModel::From(11, 11), ubxConstellation::BeiDou},
    {ubxSignal::GalileoE1, "Galileo E1", 0x10310007, ubxModel::All, ubxConstellation::Galileo},
    {ubxSignal::GalileoE5a, "Galileo E5a", 0x10310009, ubxModel::From(14, 14), ubxConstellation::Galileo},
    {ubxSignal::GalileoE5b, "Galileo E5b", 0x1031000A, ubxModel::From(11, 11), ubxConstellation::Galileo},
    {ubxSignal::GLONASSL1, "GLONASS L1", 0x10310018, ubxModel::From(9, 13), ubxConstellation::GLONASS},
    {ubxSignal::GLONASSL2, "GLONASS L2", 0x1031001A, ubxModel::From(11, 11), ubxConstellation::GLONASS},
    {ubxSignal::GPSL1CA, "GPS L1C/A", 0x10310001, ubxModel::All, ubxConstellation::GPS},
    {ubxSignal::GPSL2C, "GPS L2C", 0x10310003, ubxModel::From(11, 11), ubxConstellation::GPS},
    {ubxSignal::GPSL5, "GPS L5", 0x10310004, ubxModel::From(14, 14), ubxConstellation::GPS},
    {ubxSignal::IMES, "IMES", 0, 0, ubxConstellation::None},
    {ubxSignal::NavICL5, "NavIC L5", 0x1031001D, ubxModel::From(14, 14), ubxConstellation::NavIC},
    {ubxSignal::QZSSL1CA, "QZSS L1C/A", 0x10310012, ubxModel::All, ubxConstellation::QZSS},
    {ubxSignal::QZSSL1S, "QZSS L1S", 0x10310014, ubxModel::From(11, 14), ubxConstellation::QZSS},
    {ubxSignal::QZSSL2C, "QZSS L2C", 0x10310015, ubxModel::From(11, 11), ubxConstellation::QZSS},
    {ubxSignal::QZSSL5, "QZSS L5", 0x10310017, ubxModel::From(14, 14), ubxConstellation::QZSS},
    {ubxSignal::SBAS, "SBAS", 0x10310005, ubxModel::All, ubxConstellation::SBAS},
}};

struct ubxEnableRow {
    ubxConstellation Constellation;
    std::string_view Name;  // of the key
    uint32_t Key;
    ubxModel::Set Models;  // which models are told the key
};

// One row for each ubxConstellation but None, in its order.
constexpr std::array<ubxEnableRow, 7> ubxEnableTable = {{
    {ubxConstellation::GPS, "CFG-SIGNAL-GPS_ENA", 0x1031001F, ubxModel::All},
    {ubxConstellation::SBAS, "CFG-SIGNAL-SBAS_ENA", 0x10310020, ubxModel::All},
    {ubxConstellation::Galileo, "CFG-SIGNAL-GAL_ENA", 0x10310021, ubxModel::All},
    {ubxConstellation::BeiDou, "CFG-SIGNAL-BDS_ENA", 0x10310022, ubxModel::All},
    {ubxConstellation::QZSS, "CFG-SIGNAL-QZSS_ENA", 0x10310024, ubxModel::All},
    {ubxConstellation::NavIC, "CFG-SIGNAL-NAVIC_ENA", 0x10310026, ubxModel::From(14, 14)},
    {ubxConstellation::GLONASS, "CFG-SIGNAL-GLO_ENA", 0x10310025, ubxModel::From(9, 13)},
}};

// What a model makes of a request: the signals it can run together. `present` is the selection that stands.
ubxSignalSet ubxSignalRules(uint8_t model, ubxSignalSet present, ubxSignalSet requested);
