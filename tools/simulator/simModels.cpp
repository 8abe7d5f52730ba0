#include "tools/simulator/simModels.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr simLine Slow = {9600, 'N', 1};
constexpr simLine Fast = {38400, 'N', 1};
constexpr simLine Odd = {9600, 'O', 1};

constexpr simModelRow Models[] = {
    {"ublox7", simModel::UBlox7, Slow, "u-blox 7"},
    {"m8", simModel::M8, Slow, "u-blox NEO-M8T"},
    {"m9", simModel::M9, Fast, "u-blox ZED-F9P"},
    {"neo-m9n", simModel::NeoM9N, Fast, "u-blox NEO-M9N"},
    {"zed-f9r", simModel::ZedF9R, Fast, "u-blox ZED-F9R"},
    {"m10", simModel::M10, Fast, "u-blox SAM-M10Q"},
    {"max-m10s", simModel::MaxM10S, Fast, "u-blox MAX-M10S"},
    {"neo-f10n", simModel::NeoF10N, Fast, "u-blox NEO-F10N"},
    {"acutime", simModel::Acutime, Odd, "Trimble Acutime Gold"},
    {"lassen", simModel::Lassen, Odd, "Trimble Lassen SK8"},
    {"resolution", simModel::Resolution, Odd, "Trimble Resolution T"},
    {"nmea", simModel::NMEA, Slow, "NMEA 0183"},
    {"nvs", simModel::NVS, {115200, 'N', 1}, "NVS, NMEA"},
};

}  // namespace

std::span<const simModelRow> simModels()
{
    return Models;
}

const simModelRow* simModelNamed(std::string_view name)
{
    const simModelRow* const found = std::ranges::find(Models, name, &simModelRow::Name);
    return found == std::end(Models) ? nullptr : found;
}

std::optional<simLine> simLineOfText(std::string_view text)
{
    constexpr uint32_t Slowest = 300;
    constexpr uint32_t Fastest = 4'000'000;
    simLine line;
    const char* const end = text.data() + text.size();
    const std::from_chars_result read = std::from_chars(text.data(), end, line.Baud);
    if (read.ec != std::errc() || line.Baud < Slowest || line.Baud > Fastest || end - read.ptr != 2)
        return std::nullopt;
    line.Parity = read.ptr[0];
    line.StopBits = static_cast<uint8_t>(read.ptr[1] - '0');
    const bool parity = line.Parity == 'N' || line.Parity == 'O' || line.Parity == 'E';
    if (!parity || (line.StopBits != 1 && line.StopBits != 2))
        return std::nullopt;
    return line;
}
