#include "tests/ui/expected.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>

namespace {

using expected::satRow;
using expected::way;

// As the table of satellites sorts and writes the systems, by the simulator's number.
struct systemRow {
    simSystem System;
    char Letter;
    int NmeaRank;
    const char* Signal;  // of receivers that tell none
};

constexpr systemRow Systems[] = {
    {simSystem::GPS, 'G', 4, "L1C/A"},     {simSystem::SBAS, 'S', 8, "L1C/A"},
    {simSystem::Galileo, 'E', 2, "E1"},    {simSystem::BeiDou, 'B', 1, "B1I"},
    {simSystem::IMES, 'I', 5, ""},         {simSystem::QZSS, 'Q', 7, "L1C/A"},
    {simSystem::GLONASS, 'R', 3, "L1 OF"}, {simSystem::NavIC, 'N', 6, "L5 A"},
};

const systemRow& RowOf(simSystem system)
{
    return *std::ranges::find(Systems, system, &systemRow::System);
}

// The name of a signal by the UBX protocol's numbers of system and signal.
const std::map<std::pair<simSystem, unsigned>, const char*> SignalNames = {
    {{simSystem::GPS, 0}, "L1C/A"},     {{simSystem::GPS, 3}, "L2 CL"},
    {{simSystem::GPS, 4}, "L2 CM"},     {{simSystem::GPS, 6}, "L5 I"},
    {{simSystem::GPS, 7}, "L5 Q"},      {{simSystem::SBAS, 0}, "L1C/A"},
    {{simSystem::Galileo, 0}, "E1 C"},  {{simSystem::Galileo, 1}, "E1 B"},
    {{simSystem::Galileo, 3}, "E5 aI"}, {{simSystem::Galileo, 4}, "E5 aQ"},
    {{simSystem::Galileo, 5}, "E5 bI"}, {{simSystem::Galileo, 6}, "E5 bQ"},
    {{simSystem::BeiDou, 0}, "B1I D1"}, {{simSystem::BeiDou, 1}, "B1I D2"},
    {{simSystem::BeiDou, 2}, "B2I D1"}, {{simSystem::BeiDou, 3}, "B2I D2"},
    {{simSystem::BeiDou, 5}, "B1 Cp"},  {{simSystem::BeiDou, 6}, "B1 Cd"},
    {{simSystem::BeiDou, 7}, "B2 ap"},  {{simSystem::BeiDou, 8}, "B2 ad"},
    {{simSystem::QZSS, 0}, "L1C/A"},    {{simSystem::QZSS, 1}, "L1S"},
    {{simSystem::QZSS, 4}, "L2 CM"},    {{simSystem::QZSS, 5}, "L2 CL"},
    {{simSystem::QZSS, 8}, "L5 I"},     {{simSystem::QZSS, 9}, "L5 Q"},
    {{simSystem::GLONASS, 0}, "L1 OF"}, {{simSystem::GLONASS, 2}, "L2 OF"},
    {{simSystem::NavIC, 0}, "L5 A"},
};

std::string SignalsOf(const simSat& sat, way how)
{
    const bool heard = sat.SNR > 0;
    switch (how) {
    case way::Signals: {
        std::string text;
        for (const simSignal& signal : heard ? sat.Signals : std::vector<simSignal>())
            text += (text.empty() ? "" : " , ") + std::string(SignalNames.at({sat.System, signal.Id}));
        return text;
    }
    case way::NmeaSignal:
        return heard && sat.System != simSystem::SBAS ? RowOf(sat.System).Signal : heard ? "L1C/A" : "";
    case way::NmeaPlain:
        return "";
    default:
        return RowOf(sat.System).Signal;
    }
}

std::string Whole(double value)
{
    return std::to_string(std::llround(value));
}

// A sentence names no more than twelve satellites in use.
std::vector<simSat> WithUse(std::vector<simSat> sats, way how)
{
    constexpr unsigned MostUsed = 12;
    std::map<simSystem, unsigned> used;
    for (simSat& sat : sats) {
        if (how != way::NmeaSignal && how != way::NmeaPlain)
            continue;
        if (sat.Used && ++used[sat.System] > MostUsed)
            sat.Used = false;
    }
    return sats;
}

satRow RowFor(const simSat& sat, way how)
{
    constexpr colour White = 0xFFFFFF;
    constexpr colour Green = 0x00FF00;
    constexpr colour Cyan = 0xFFFF00;
    const bool trimble = how == way::Tsip;
    const double level = !trimble ? sat.SNR : sat.SNR > 0 ? (sat.SNR - 20) * 0.6 : 0;
    const bool heard = trimble || sat.SNR > 0;
    satRow row;
    row.Cells[0] = RowOf(sat.System).Letter + std::to_string(sat.Svid) + " ";
    row.Cells[1] = Whole(sat.Elevation) + "° ";
    row.Cells[2] = (trimble ? Whole(sat.Azimuth) : std::to_string(std::llround(sat.Azimuth) % 360)) + "° ";
    row.Cells[3] = heard ? Whole(level) + " " : "";
    row.Cells[4] = SignalsOf(sat, how);
    row.Style = !heard ? fontItalic : sat.Used ? fontBold : 0;
    row.Shade = !heard ? Green : sat.Used ? White : Cyan;
    return row;
}

}  // namespace

expected::way expected::WayOf(simModel model)
{
    switch (model) {
    case simModel::UBlox7:
    case simModel::M8:
        return way::Systems;
    case simModel::Acutime:
    case simModel::Lassen:
    case simModel::Resolution:
        return way::Tsip;
    case simModel::NMEA:
        return way::NmeaSignal;
    case simModel::NVS:
        return way::NmeaPlain;
    default:
        return way::Signals;
    }
}

std::vector<satRow> expected::RowsOf(const simTruth& truth, way how)
{
    std::vector<simSat> sats = WithUse(truth.Sats, how);
    if (how == way::NmeaSignal || how == way::NmeaPlain)
        std::ranges::stable_sort(sats, {}, [](const simSat& sat) { return RowOf(sat.System).NmeaRank; });
    std::vector<satRow> rows;
    for (const simSat& sat : sats)
        rows.push_back(RowFor(sat, how));
    return rows;
}

std::string expected::AngleText(double degrees, bool isLatitude, int decimals)
{
    const double unit = std::pow(10.0, decimals);
    const auto all = std::llround(std::fabs(degrees) * 3600 * unit);
    const auto perMinute = static_cast<long long>(60 * unit);
    char text[64];
    std::snprintf(text, sizeof text, "%lldº%02lld′%0*.*f″", all / (60 * perMinute), all / perMinute % 60,
                  decimals + 3, decimals, static_cast<double>(all % perMinute) / unit);
    const char letter = isLatitude ? (degrees < 0 ? 'S' : 'N') : (degrees < 0 ? 'W' : 'E');
    return text + std::string(1, letter);
}
