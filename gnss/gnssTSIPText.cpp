#include "gnss/gnssTSIP.h"

#include <iterator>

namespace {

constexpr std::string_view RXModeNames[] = {
    "Automatic (2D/3D)", "Single satellite",     "Unknown",
    "Horizontal (2D)",   "Full position (3D)",   "GPS reference",
    "Clock hold (2D)",   "Over-determine clock", "Unknown",
};

struct decodeStatusRow {
    uint8_t Code;
    std::string_view Name;
};

// The last row stands for every other code.
constexpr decodeStatusRow DecodeStatusNames[] = {
    {0x00, "Doing Fixes"},
    {0x01, "No GPS time"},
    {0x02, "Need initialization"},
    {0x03, "PDOP too high"},
    {0x08, "No usable sats"},
    {0x09, "Only 1 usable sat"},
    {0x0A, "Only 2 usable sats"},
    {0x0B, "Only 3 usable sats"},
    {0x0C, "Chosen sat unusable"},
    {0x10, "T-RAIM rejected fix"},
    {0xFF, "Unknown"},
};

constexpr gnssTSIP::FlagLine TimeFlagTable[] = {
    {1, "UTC aligned PPS", "GPS aligned PPS"},
    {2, "Time set from GPS", "Time not yet set from GPS"},
    {3, "No UTC offset information", "UTC offset information received"},
    {4, "Time from test mode generator", "Time from GPS"},
};

constexpr uint8_t SurveyBit = 5;

constexpr gnssTSIP::FlagLine StatusTable[] = {
    {1, "Antenna open", "Antenna open"},
    {2, "Antenna short", "Antenna short"},
    {3, "Satellite tracking", "Satellite tracking"},
    {SurveyBit, "Self-survey - ", "Self-survey inactive"},
    {6, "Stored position", "Stored position"},
    {7, "Leap second pending", "Leap second pending"},
    {8, "Test mode", "Test mode"},
    {9, "Position questionable", "Position questionable"},
    {10, "EEPROM is corrupted", "EEPROM is corrupted"},
    {11, "Almanac", "Almanac"},
    {12, "PPS generated", "PPS generated"},
};

constexpr gnssTSIP::FlagLine DateLabels = {0, "Date UTC", "Date GPS"};
constexpr gnssTSIP::FlagLine TimeLabels = {0, "Time UTC", "Time GPS"};

}  // namespace

std::string_view gnssTSIP::RXModeName() const
{
    constexpr size_t last = std::size(RXModeNames) - 1;
    return RXModeNames[RXMode < last ? RXMode : last];
}

std::string_view gnssTSIP::DecodeStatusName() const
{
    for (const decodeStatusRow& row : DecodeStatusNames) {
        if (row.Code == DecodeStatus)
            return row.Name;
    }
    return std::rbegin(DecodeStatusNames)->Name;
}

std::span<const gnssTSIP::FlagLine> gnssTSIP::TimeFlagLines()
{
    return TimeFlagTable;
}

std::span<const gnssTSIP::FlagLine> gnssTSIP::StatusLines()
{
    return StatusTable;
}

std::string gnssTSIP::StatusText(const FlagLine& line) const
{
    std::string text(line.Text(Status));
    if (line.Bit == SurveyBit && line.IsSet(Status))
        text += std::to_string(SurveyProgress) + "%";
    return text;
}

std::string_view gnssTSIP::DateLabel() const
{
    return DateLabels.Text(TimeFlags);
}

std::string_view gnssTSIP::TimeLabel() const
{
    return TimeLabels.Text(TimeFlags);
}
