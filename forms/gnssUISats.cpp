// The table of satellites, cell by cell.
#include "forms/gnssUI.h"

#include "forms/pageText.h"
#include "foundations/text/utfEdit.h"
#include "foundations/text/utfNumber.h"
#include "toolkit/ctrlGrid.h"

#include <iterator>

namespace {

enum : uint64_t {
    columnId = 0,
    columnElevation = 1,
    columnAzimuth = 2,
    columnLevel = 3,
    columnSignals = 4,
};

constexpr std::string_view headers[] = {"ID", "Elev.", "Az.", "SNR", "Signal"};

constexpr uint8_t svIdUnknown = 255;

std::string idText(const SatInfo& satellite)
{
    std::string text(1, SourceLetter(satellite.Source));
    if (satellite.SvId == 0 || satellite.SvId == svIdUnknown)
        return text << "? ";
    return text << utfInt('u', uint64_t{satellite.SvId}) << " ";
}

std::string wholeText(float value, const char* behind)
{
    std::string text;
    return text << utfFlt('f', double{value}, 0) << behind;
}

bool isTracked(const SatInfo& satellite)
{
    return !(satellite.SNR < 0);
}

}  // namespace

void gnss::UI::VisSats_OnCellDraw(uint64_t row, uint64_t column, const rect* area)
{
    if (row == 0) {
        DrawHeader(column, *area);
        return;
    }
    satText cell{};
    if (!Decoder || !FormCell(static_cast<size_t>(row - 1), column, cell))
        return;
    VisSats->FontStyle(cell.Style);
    VisSats->Colour(cell.Shade);
    if (!cell.Text.empty())
        VisSats->Text(*area, cell.Text.c_str(), cell.Flags, cell.Text.size());
}

void gnss::UI::DrawHeader(uint64_t column, const rect& area)
{
    if (column >= std::size(headers))
        return;
    VisSats->FontStyle(fontBold);
    VisSats->Colour(pageWhite);
    VisSats->Text(area, headers[column].data(), pageCentreFlags, headers[column].size());
}

// False when the list has become shorter than the table.
bool gnss::UI::FormCell(size_t index, uint64_t column, satText& cell)
{
    const thrSpinHold hold(Decoder->SatsLock);
    if (index >= Decoder->Sats.size())
        return false;
    const SatInfo& satellite = Decoder->Sats[index];
    if (!isTracked(satellite)) {
        cell.Style = fontItalic;
        cell.Shade = pageGreen;
    } else if (satellite.IsUsed()) {
        cell.Style = fontBold;
        cell.Shade = pageWhite;
    } else {
        cell.Style = 0;
        cell.Shade = pageCyan;
    }
    cell.Flags = column == columnId || column == columnSignals ? pageCentreFlags : pageValueFlags;
    switch (column) {
    case columnId:
        cell.Text = idText(satellite);
        break;
    case columnElevation:
        cell.Text = wholeText(satellite.Elevation, "° ");
        break;
    case columnAzimuth:
        cell.Text = wholeText(satellite.Azimuth, "° ");
        break;
    case columnLevel:
        if (satellite.SNR >= 0)
            cell.Text = wholeText(satellite.SNR, " ");
        break;
    case columnSignals:
        cell.Text = SignalsText(satellite);
        break;
    default:
        break;
    }
    return true;
}

// A satellite with more signals than any before makes the page wider.
std::string gnss::UI::SignalsText(const SatInfo& satellite)
{
    std::string text;
    uint64_t printed = 0;
    for (const uint8_t signal : satellite.Signals) {
        if (signal == 0)
            break;
        const std::string_view name = SignalName(signal);
        if (name.empty())
            continue;
        if (printed++ > 0)
            text << " , ";
        text += name;
    }
    if (printed > SignalsMax) {
        SignalsMax = printed;
        Root()->InvalidateLayout();
    }
    return text;
}
