// Where the controls of the page stand, the labels beside them, and the panel of flags.
#include "forms/gnssTSIP_UI.h"

#include "forms/pageText.h"
#include "toolkit/ctrlEdit_Val.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr uint32_t rowDOP = 3;
constexpr uint32_t rowWeek = 4;
constexpr uint32_t rowClock = 5;
constexpr uint32_t rowSide = 6;  // here labels stand beside their edits
constexpr uint32_t thirds = 3;
constexpr uint32_t quarters = 4;

constexpr std::string_view dopCells[] = {{}, {}, {}, "TDOP"};
constexpr std::string_view weekCells[] = {"Week no.", "Week time", "UTC offset"};
constexpr std::string_view clockCells[] = {"Clock bias", "Bias rate", "PPS error"};
constexpr std::string_view sideTexts[] = {"RX Mode", "Decode status", "Temperature"};

// Pixels before scaling.
constexpr uint32_t sideWidth = 80;
constexpr uint32_t panelWidth = 170;

// Pixels.
constexpr uint32_t sideGap = 1;  // between a label and its edit
constexpr uint32_t panelLineGap = 2;
constexpr uint32_t panelIndent = 10;

}  // namespace

rect gnssTSIP::UI::SideLabel(uint32_t index) const
{
    return BoxOf(0, LabelTop(rowSide) + index * (EditHeight() + Gap), Scaled(sideWidth), EditHeight());
}

// The bottom of the last row with a label beside its edit.
uint32_t gnssTSIP::UI::SideEnd() const
{
    return static_cast<uint32_t>(SideLabel(std::size(sideTexts) - 1).Bottom);
}

void gnssTSIP::UI::Layout()
{
    // Below the last edit there is room for a button.
    SizePage(MinWidth(WidthBlock) + Gap + MinWidth(WidthGrid) + Gap + Scaled(panelWidth),
             SideEnd() + Gap + EditHeight());
    PlaceCommon();
    PlaceEdit(TDOPEdit, rowDOP, quarters, quarters - 1);
    PlaceEdit(WeekEdit, rowWeek, thirds, 0);
    PlaceEdit(WeekTimeEdit, rowWeek, thirds, 1);
    PlaceEdit(UTCOffsetEdit, rowWeek, thirds, 2);
    PlaceEdit(ClockBiasEdit, rowClock, thirds, 0);
    PlaceEdit(BiasRateEdit, rowClock, thirds, 1);
    PlaceEdit(PPSErrorEdit, rowClock, thirds, 2);
    const auto blockEnd = static_cast<int32_t>(MinWidth(WidthBlock));
    const int32_t secondEnd = Column(thirds, 1, 0, 0).Right;
    const auto placeBeside = [this](ctrlWindow* edit, uint32_t index, int32_t end) {
        const rect label = SideLabel(index);
        Place(edit, {label.Right + static_cast<int32_t>(sideGap), label.Top, end, label.Bottom});
    };
    placeBeside(RXModeEdit, 0, blockEnd);
    placeBeside(DecodeStatusEdit, 1, blockEnd);
    placeBeside(TemperatureEdit, 2, secondEnd);
}

void gnssTSIP::UI::Paint()
{
    constexpr labelRow rows[] = {
        {rowDOP, quarters, dopCells},
        {rowWeek, thirds, weekCells},
        {rowClock, thirds, clockCells},
    };
    gnss::UI::Paint();
    PaintRows(rows);
    PaintSide();
    PaintPanel();
}

void gnssTSIP::UI::PaintSide()
{
    for (uint32_t index = 0; index < std::size(sideTexts); ++index)
        PaintText(SideLabel(index), sideTexts[index], theme::LabelText, pageValueFlags);
}

// How far all lines of the panel but the headings stand in: as usual, or as far as the widest of them leaves
// room, which depends on the font that the system has.
uint32_t gnssTSIP::UI::PanelIndent()
{
    uint32_t indent = panelIndent;
    const uint32_t width = Scaled(panelWidth);
    for (const panelLine& line : Panel) {
        const uint32_t needed = TextSize(line.Text.c_str()).Width;
        if (!line.Heading)
            indent = std::min(indent, width > needed ? width - needed : 0);
    }
    return indent;
}

void gnssTSIP::UI::PaintPanel()
{
    const uint32_t lineIndent = PanelIndent();
    const uint32_t left = MinWidth(WidthBlock) + Gap + MinWidth(WidthGrid) + Gap;
    const uint32_t width = Scaled(panelWidth);
    uint32_t y = 0;
    for (const panelLine& line : Panel) {
        const uint32_t indent = line.Heading ? 0 : lineIndent;
        PaintText(BoxOf(left + indent, y, width - indent, LabelHeight()), line.Text, line.Shade,
                  pageLabelFlags);
        y += LabelHeight() + panelLineGap;
    }
}
