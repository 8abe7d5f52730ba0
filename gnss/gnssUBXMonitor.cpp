#include "gnss/gnssUBX.h"

#include "gnss/ubxMessage.h"

#include <array>
#include <optional>

namespace {

struct hardwareRow {
    std::string_view Version;
    uint8_t Model;
};

// hwVersion of MON-VER; any other is ubxModel::Generic.
constexpr hardwareRow Hardware[] = {
    {"00070000", ubxModel::Seven},
    {"00080000", ubxModel::M8},
    {"00190000", ubxModel::M9},
    {"000A0000", ubxModel::M10},
};

struct moduleRow {
    std::string_view Name;
    uint8_t Model;
};

// The extension MOD of MON-VER, which knows better than the hardware version.
constexpr moduleRow Modules[] = {
    {"MAX-M10S", ubxModel::MaxM10S},
    {"NEO-M9N", ubxModel::NeoM9N},
    {"NEO-F10N", ubxModel::NeoF10N},
    {"ZED-F9R", ubxModel::ZedF9R},
};

uint8_t ModelOfHardware(std::string_view version)
{
    for (const hardwareRow& row : Hardware)
        if (row.Version == version)
            return row.Model;
    return ubxModel::Generic;
}

uint8_t ModelOfModule(std::string_view name, uint8_t otherwise)
{
    for (const moduleRow& row : Modules)
        if (row.Name == name)
            return row.Model;
    return otherwise;
}

// The value of an extension "NAME=value" or "NAME value".
std::optional<std::string_view> ValueOf(std::string_view extension, std::string_view name)
{
    if (extension.substr(0, name.size()) != name || extension.size() == name.size())
        return std::nullopt;
    const char separator = extension[name.size()];
    if (separator != ' ' && separator != '=')
        return std::nullopt;
    return extension.substr(name.size() + 1);
}

// Takes the digits at the front of a text; none are 0. More than fit in a version stay too large for one.
uint32_t TakeNumber(std::string_view& text)
{
    constexpr uint32_t Enough = 0x10000;
    uint32_t number = 0;
    while (!text.empty() && text.front() >= '0' && text.front() <= '9') {
        number = std::min(number * 10 + static_cast<uint32_t>(text.front() - '0'), Enough);
        text.remove_prefix(1);
    }
    return number;
}

// "18.00": major and minor. Without a point there is no version.
std::optional<uint32_t> VersionOf(std::string_view text)
{
    const uint32_t major = TakeNumber(text);
    if (text.empty() || text.front() != '.')
        return std::nullopt;
    text.remove_prefix(1);
    return major * 256 + TakeNumber(text);
}

constexpr size_t SpectrumSize = 256;
using spectrumLevels = std::array<float, SpectrumSize>;

// A step of an amplitude in dB, and the level of amplitude 128 at no gain.
constexpr float LevelStep = 0.25098425f;
constexpr float LevelMiddle = 31.875f;
constexpr float LevelTop = 63.75f;

void Levels(ubxPayload spectrum, float gain, spectrumLevels& levels)
{
    for (size_t bin = 0; bin < SpectrumSize; bin++) {
        const float amplitude = spectrum.u1(bin);
        levels[bin] = (amplitude - 128.0f) * LevelStep + (LevelMiddle - gain);
    }
}

}  // namespace

void gnssUBX::Decode_Monitor(const uint8_t* bytes, size_t count)
{
    const ubxPayload payload(bytes + 3, count - 3);
    switch (bytes[0]) {
    case ubx::MonVER:
        return Decode_MonVER(payload);
    case ubx::MonSPAN:
        return Decode_MonSPAN(payload);
    case ubx::MonCOMMS:
        return Decode_MonCOMMS(payload);
    default:
        return;
    }
}

// MON-VER: swVersion, hwVersion, then extensions such as "PROTVER=18.00" and "MOD=NEO-M9N".
void gnssUBX::Decode_MonVER(ubxPayload payload)
{
    constexpr size_t TextSize = 30;
    constexpr size_t Extensions = 40;
    if (Model != 0 || payload.size() < Extensions)
        return;
    uint8_t model = ModelOfHardware(payload.Text(30, TextSize));  // hwVersion
    uint32_t version = 0;
    for (size_t at = Extensions; at < payload.size(); at += TextSize) {
        const std::string_view extension = payload.Text(at, TextSize);
        if (const auto name = ValueOf(extension, "MOD"))
            model = ModelOfModule(*name, model);
        else if (const auto text = ValueOf(extension, "PROTVER"))
            version = VersionOf(*text).value_or(version);
        // No receiver has such a version, so the rest is not believed either.
        if (version > 0xFFFF)
            return;
    }
    Model = model;
    ProtVer = static_cast<uint16_t>(version);
    TellIdentity();
    RaiseNewData();
    ConfigStart();
}

// MON-SPAN: the spectrum of each RF block. Only models that are asked for it are believed.
void gnssUBX::Decode_MonSPAN(ubxPayload payload)
{
    constexpr size_t Header = 4;
    constexpr size_t BlockSize = 272;
    const size_t count = payload.u1(1);  // numRfBlocks
    if (!OnRFSpectrum || ubxModel::AbilityOf(Model).SpectrumBlocks == 0)
        return;
    if (payload.size() < Header + BlockSize * count)
        return;
    for (size_t at = 0; at < count; at++) {
        const ubxPayload block = payload.Part(Header + BlockSize * at, BlockSize);
        const double span = block.u4(256);    // span
        const double centre = block.u4(264);  // center
        const float gain = block.u1(268);     // pga
        spectrumLevels levels;
        Levels(block, gain, levels);  // spectrum
        // The bin in the middle stands at the centre frequency, so there is one less above it than below.
        OnRFSpectrum({static_cast<unsigned>(at), levels.data(), levels.size(), centre - span * 0.49609375,
                      centre + span * 0.5, -gain, LevelTop - gain});
    }
}
