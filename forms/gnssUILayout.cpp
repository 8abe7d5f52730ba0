// Where the controls of a page stand, and the labels that are painted above them.
#include "forms/gnssUI.h"

#include "forms/pageText.h"
#include "toolkit/ctrlEdit_Angle.h"
#include "toolkit/ctrlEdit_Date.h"
#include "toolkit/ctrlEdit_Time.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlGrid.h"
#include "toolkit/ctrlLabel.h"

#include <cmath>
#include <iterator>

namespace {

// Pixels before scaling.
constexpr uint32_t labelHeight = 14;
constexpr uint32_t editHeight = 18;
constexpr uint32_t blockUnit = 53;
constexpr uint32_t signalWidth = 63;
constexpr uint32_t gridRowHeight = 15;
constexpr uint32_t gridWidths[] = {35, 36, 36, 35};
constexpr uint32_t gridFixedWidth = 142;  // all of them

// Pixels.
constexpr uint32_t labelGap = 2;  // below a label
constexpr uint32_t rowGaps = 6;   // of a row, below the label and below the edit

// The block is this much wider than a multiple of twelve, so that two, three and four columns of it are whole
// pixels wide.
constexpr uint32_t blockExtra = 8;
constexpr uint32_t blockMultiple = 12;

// Rows of the left block and the columns in them.
constexpr uint32_t rowTime = 0;
constexpr uint32_t rowPosition = 1;
constexpr uint32_t rowMotion = 2;
constexpr uint32_t rowDOP = 3;
constexpr uint32_t halves = 2;
constexpr uint32_t quarters = 4;

constexpr std::string_view positionCells[] = {"Latitude", "Longitude"};
constexpr std::string_view motionCells[] = {"Altitude", "Sea level", "Speed", "Track"};
constexpr std::string_view dopCells[] = {"HDOP", "VDOP", "PDOP"};

}  // namespace

// --- Sizes

uint32_t gnss::UI::Scaled(uint32_t pixels)
{
    return static_cast<uint32_t>(std::ceil(static_cast<float>(pixels) * Toolkit().Scale));
}

uint32_t gnss::UI::LabelHeight()
{
    return Scaled(labelHeight);
}

uint32_t gnss::UI::EditHeight()
{
    return Scaled(editHeight);
}

uint32_t gnss::UI::LabelTop(uint32_t row)
{
    return row * (LabelHeight() + EditHeight() + rowGaps);
}

uint32_t gnss::UI::EditTop(uint32_t row)
{
    return LabelTop(row) + LabelHeight() + labelGap;
}

uint32_t gnss::UI::MinWidth(unsigned which) const
{
    if (which == WidthBlock)
        return (Scaled(blockUnit) + 1) / 3 * blockMultiple + blockExtra;
    const float width = static_cast<float>(SignalsMax * signalWidth + gridFixedWidth);
    return static_cast<uint32_t>(std::ceil(width * Toolkit().Scale));
}

rect gnss::UI::BoxOf(uint32_t x, uint32_t y, uint32_t width, uint32_t height)
{
    return {static_cast<int32_t>(x), static_cast<int32_t>(y), static_cast<int32_t>(x + width),
            static_cast<int32_t>(y + height)};
}

rect gnss::UI::Column(uint32_t columns, uint32_t index, uint32_t y, uint32_t height) const
{
    const uint32_t width = (MinWidth(WidthBlock) - Gap * (columns - 1)) / columns;
    return BoxOf(index * (width + Gap), y, width, height);
}

// --- Layout

void gnss::UI::Place(ctrlWindow* control, const rect& area)
{
    control->Move(area.Left, area.Top, static_cast<uint32_t>(area.Width()),
                  static_cast<uint32_t>(area.Height()));
}

void gnss::UI::PlaceEdit(ctrlWindow* edit, uint32_t row, uint32_t columns, uint32_t index) const
{
    Place(edit, Column(columns, index, EditTop(row), EditHeight()));
}

void gnss::UI::PlaceCommon()
{
    Place(DateLabel, Column(halves, 0, LabelTop(rowTime), LabelHeight()));
    Place(TimeLabel, Column(halves, 1, LabelTop(rowTime), LabelHeight()));
    const auto placeRow = [this](uint32_t row, uint32_t columns, std::initializer_list<ctrlWindow*> edits) {
        uint32_t index = 0;
        for (ctrlWindow* edit : edits)
            PlaceEdit(edit, row, columns, index++);
    };
    placeRow(rowTime, halves, {DateEdit, TimeEdit});
    placeRow(rowPosition, halves, {LatitudeEdit, LongitudeEdit});
    placeRow(rowMotion, quarters, {AltitudeEdit, SeaLevelEdit, SpeedEdit, TrackEdit});
    placeRow(rowDOP, quarters, {HDOPEdit, VDOPEdit, PDOPEdit});
    PlaceGrid();
}

void gnss::UI::PlaceGrid()
{
    Place(VisSats, BoxOf(MinWidth(WidthBlock) + Gap, 0, MinWidth(WidthGrid), Height()));
    for (size_t column = 0; column < std::size(gridWidths); ++column)
        VisSats->SetColumnWidth(column, Scaled(gridWidths[column]));
    // The header is as high as the other rows.
    VisSats->RowHeightDefault = Scaled(gridRowHeight);
    for (size_t row = 0; row < VisSats->RowHeights.size(); ++row)
        VisSats->SetRowHeight(row, VisSats->RowHeightDefault);
}

void gnss::UI::SizePage(uint32_t width, uint32_t leastHeight)
{
    const ctrlLife life(this);
    HeightRange(leastHeight, 0);
    if (life)
        WidthRange(width, width);
}

void gnss::UI::Layout()
{
    PlaceCommon();
    SizePage(MinWidth(WidthBlock) + Gap + MinWidth(WidthGrid), EditTop(rowDOP) + EditHeight());
}

// --- Labels

void gnss::UI::PaintText(const rect& area, std::string_view text, colour shade, unsigned flags)
{
    if (text.empty())
        return;
    Colour(shade);
    Text(area, text.data(), flags, text.size());
}

void gnss::UI::PaintRows(std::span<const labelRow> rows)
{
    for (const labelRow& row : rows) {
        for (uint32_t index = 0; index < row.Cells.size(); ++index)
            PaintText(Column(row.Columns, index, LabelTop(row.Row), LabelHeight()), row.Cells[index],
                      theme::LabelText, pageLabelFlags);
    }
}

void gnss::UI::Paint()
{
    constexpr labelRow rows[] = {
        {rowPosition, halves, positionCells},
        {rowMotion, quarters, motionCells},
        {rowDOP, quarters, dopCells},
    };
    ctrlWindow::Paint();
    PaintRows(rows);
}
