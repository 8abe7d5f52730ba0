// Where the controls of the page stand, and what is painted between them.
#include "forms/gnssUBX_UI.h"

#include "forms/pageText.h"
#include "foundations/text/utfEdit.h"
#include "foundations/text/utfNumber.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlGraphWave.h"
#include "toolkit/ctrlLabel.h"
#include "toolkit/ctrlPage.h"

namespace {

constexpr uint32_t rowDOP = 3;
constexpr uint32_t rowPulse = 4;
constexpr uint32_t rowSignals = 5;
constexpr uint32_t whole = 1;
constexpr uint32_t thirds = 3;
constexpr uint32_t quarters = 4;

constexpr std::string_view dopCells[] = {{}, {}, {}, "TDOP"};
constexpr std::string_view pulseCells[] = {"PPS week", "PPS time", "PPS error"};
constexpr std::string_view signalCells[] = {"Constellations"};

// The boxes from this one on begin a row of their own.
constexpr size_t secondFlow = 13;

// The version stands below three rows of boxes, or more where a model has more of them.
constexpr uint32_t usualRows = 3;

// Pixels before scaling.
constexpr uint32_t tabsWidth = 300;
constexpr uint32_t rateWidth = 75;
constexpr uint32_t dutyWidth = 55;

// Pixels.
constexpr uint32_t pulseRowGap = 4;  // below the row of rate and duty, and above it
constexpr uint32_t rateLabelAt = 4;
constexpr uint32_t rateGap = 5;
constexpr uint32_t dutyGap = 1;
constexpr uint32_t graphGap = 8;  // for the heading, besides its height
constexpr int32_t leastGraph = 40;

uint32_t extraRows(uint8_t model)
{
    switch (model) {
    case ubxModel::ZedF9R:
        return 1;
    case ubxModel::NeoF10N:
        return 2;
    default:
        return 0;
    }
}

}  // namespace

void gnssUBX::UI::Layout()
{
    uint32_t y = PlaceBoxes(0, secondFlow, EditTop(rowSignals));
    y = PlaceBoxes(secondFlow, SignalBoxes.size(), y);
    const uint32_t tabsAt = MinWidth(WidthBlock) + Gap + MinWidth(WidthGrid) + Gap;
    SizePage(tabsAt + Scaled(tabsWidth), y + LabelHeight() + EditHeight() + Gap);
    PlaceCommon();
    PlaceEdit(TDOPBox, rowDOP, quarters, quarters - 1);
    PlaceEdit(PPSWeekBox, rowPulse, thirds, 0);
    PlaceEdit(PPSTimeBox, rowPulse, thirds, 1);
    PlaceEdit(PPSErrorBox, rowPulse, thirds, 2);
    Place(Tabs, BoxOf(tabsAt, 0, Scaled(tabsWidth), Height()));
    PlaceTabs();
}

// Lets those boxes that are shown flow into rows of three; where the next row begins.
uint32_t gnssUBX::UI::PlaceBoxes(size_t first, size_t end, uint32_t y)
{
    const uint32_t pitch = EditHeight() + Gap;
    uint32_t shown = 0;
    for (size_t at = first; at < end; ++at) {
        if (!SignalBoxes[at]->HasState(stateVisible))
            continue;
        Place(SignalBoxes[at], Column(thirds, shown % thirds, y + shown / thirds * pitch, EditHeight()));
        ++shown;
    }
    return y + (shown + thirds - 1) / thirds * pitch;
}

void gnssUBX::UI::PlaceTabs()
{
    const ctrlWindow* tab = Tabs->Page(0);
    const auto height = static_cast<int32_t>(LabelHeight());
    const int32_t top = static_cast<int32_t>(tab->Height()) - height - static_cast<int32_t>(pulseRowGap);
    auto x = static_cast<int32_t>(rateLabelAt);
    const auto place = [&](ctrlWindow* control, uint32_t width, uint32_t gapBehind) {
        const auto right = x + static_cast<int32_t>(width);
        Place(control, {x, top, right, top + height});
        x = right + static_cast<int32_t>(gapBehind);
    };
    // The labels may be on a tab that was never painted; the page measures for them.
    place(RateLabel, TextSize(RateLabel->Name().c_str()).Width, rateGap);
    place(RateEdit, Scaled(rateWidth), dutyGap);
    place(DutyLabel, TextSize(DutyLabel->Name().c_str()).Width, dutyGap);
    place(DutyEdit, Scaled(dutyWidth), 0);
    const int32_t graphTop = height + static_cast<int32_t>(graphGap);
    const int32_t graphEnd = top - static_cast<int32_t>(pulseRowGap);
    Place(PPSGraph,
          {0, graphTop, static_cast<int32_t>(tab->Width()), std::max(graphEnd, graphTop + leastGraph)});
}

void gnssUBX::UI::Paint()
{
    constexpr labelRow rows[] = {
        {rowDOP, quarters, dopCells},
        {rowPulse, thirds, pulseCells},
        {rowSignals, whole, signalCells},
    };
    gnss::UI::Paint();
    PaintRows(rows);
    PaintVersion();
}

void gnssUBX::UI::PaintVersion()
{
    constexpr unsigned majorShift = 8;
    constexpr uint16_t minorMask = 0xFF;
    std::string text = "Protocol version ";
    text << utfInt('d', static_cast<int64_t>(ShownProtVer >> majorShift)) << "."
         << utfInt(utfFmt::ZeroFill, 'u', static_cast<uint64_t>(ShownProtVer & minorMask), 2);
    const uint32_t row = usualRows + extraRows(ShownModel);
    const uint32_t y = EditTop(rowSignals) + row * (EditHeight() + Gap);
    PaintText(BoxOf(0, y, MinWidth(WidthBlock), LabelHeight()), text, theme::LabelText, pageLabelFlags);
}
