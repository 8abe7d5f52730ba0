// How a u-blox receiver is configured by keys: CFG-VALSET and CFG-VALGET.
#include "tools/simulator/simUblox.h"

#include <algorithm>

namespace {

constexpr uint8_t ClassConfig = 0x06;
constexpr uint8_t IdValGet = 0x8B;
constexpr size_t Header = 4;
constexpr size_t KeySize = 4;
constexpr size_t MostKeys = 64;
constexpr uint32_t AnyItem = 0xFFFF;

// Layers of CFG-VALSET, one bit each.
constexpr uint8_t LayerRam = 1;
constexpr uint8_t LayerBattery = 2;
constexpr uint8_t LayerFlash = 4;

// Keys of one bit take nothing but 0 and 1.
bool IsValid(uint32_t key, uint64_t value)
{
    constexpr uint32_t OneBit = 1;
    return key >> 28 != OneBit || value <= 1;
}

std::optional<simUbxLayer> LayerOf(uint8_t number)
{
    constexpr uint8_t Default = 7;
    if (number == Default)
        return simUbxLayer::Default;
    if (number > 2)
        return std::nullopt;
    return static_cast<simUbxLayer>(number);
}

}  // namespace

// CFG-VALSET: all of it or nothing.
simUblox::outcome simUblox::SetValues(const simReader& payload)
{
    constexpr uint8_t Layers = LayerRam | LayerBattery | LayerFlash;
    const uint8_t layers = payload.U1(1);
    // A transaction of one message is the only one there is.
    const bool whole = payload.U1(0) == 0 || (payload.U1(0) == 1 && payload.U1(2) == 0);
    if (!Model.Keys || payload.Data.size() < Header || !whole || (layers & Layers) == 0)
        return outcome::Refused;
    const std::optional<pairs> values = ReadPairs(payload);
    if (!values)
        return outcome::Refused;
    simUbxKeys wanted = Keys;
    for (const auto& [key, value] : *values) {
        if ((layers & LayerRam) != 0)
            wanted.Set(key, value);
        if ((layers & LayerBattery) != 0)
            wanted.Save(simUbxLayer::Battery, key, value);
        if ((layers & LayerFlash) != 0)
            wanted.Save(simUbxLayer::Flash, key, value);
    }
    if (!SignalsFit(wanted))
        return outcome::Refused;
    Keys = wanted;
    Apply();
    return outcome::Done;
}

// Keys and values in turn; nothing when one is unknown, cut or of no valid value, or they are too many.
std::optional<simUblox::pairs> simUblox::ReadPairs(const simReader& payload) const
{
    pairs values;
    size_t at = Header;
    while (at < payload.Data.size()) {
        const uint32_t key = payload.U4(at);
        const unsigned width = simUbxKeySize(key);
        if (!Keys.Known(key) || at + KeySize + width > payload.Data.size() || values.size() == MostKeys)
            return std::nullopt;
        const uint64_t value = payload.Read(at + KeySize, width);
        if (!IsValid(key, value))
            return std::nullopt;
        values.emplace_back(key, value);
        at += KeySize + width;
    }
    return values;
}

// CFG-VALGET: single keys or whole groups of a layer. Not more than so many are told at once; `position` says
// how many to pass over.
simUblox::outcome simUblox::GetValues(const simReader& payload)
{
    const std::optional<simUbxLayer> layer = LayerOf(payload.U1(1));
    const size_t size = payload.Data.size();
    if (!Model.Keys || payload.U1(0) != 0 || !layer || size <= Header || (size - Header) % KeySize != 0)
        return outcome::Refused;
    const std::optional<std::vector<uint32_t>> asked = AskedKeys(payload);
    if (!asked)
        return outcome::Refused;
    const uint16_t position = payload.U2(2);
    simWriter answer(std::endian::little);
    answer.U1(1).U1(payload.U1(1)).U2(position);
    size_t passed = 0;
    size_t told = 0;
    for (const uint32_t key : *asked) {
        const std::optional<uint64_t> value = Keys.Get(*layer, key);
        if (!value || passed++ < position || told == MostKeys)
            continue;
        answer.U4(key).Append(*value, simUbxKeySize(key));
        ++told;
    }
    if (told == 0)
        return outcome::Refused;
    Answer(ClassConfig, IdValGet, answer.Data);
    return outcome::Done;
}

// Nothing when a key or a group is unknown, or they are too many.
std::optional<std::vector<uint32_t>> simUblox::AskedKeys(const simReader& payload) const
{
    if ((payload.Data.size() - Header) / KeySize > MostKeys)
        return std::nullopt;
    std::vector<uint32_t> keys;
    for (size_t at = Header; at < payload.Data.size(); at += KeySize) {
        const uint32_t key = payload.U4(at);
        if ((key & AnyItem) == AnyItem) {
            const std::vector<uint32_t> group = Keys.Group(key >> 16 & 0xFF);
            if (group.empty())
                return std::nullopt;
            keys.insert(keys.end(), group.begin(), group.end());
        } else if (Keys.Known(key)) {
            keys.push_back(key);
        } else {
            return std::nullopt;
        }
    }
    return keys;
}
