// How a table is drawn.
#include "toolkit/ctrlGrid.h"
#include "toolkit/ctrlSlider.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float scrollBarSize = 14.0F;  // pixels at a scale of 1
constexpr float leastThumb = 0.1F;      // of a bar, so that it can be taken hold of
constexpr uint32_t leastShare = 4;      // pixels, of a column with a share of the spare width
constexpr uint32_t lit = 10;            // sevenths
constexpr uint32_t disabledShade = 6;
constexpr uint32_t whole = 7;

}  // namespace

void ctrlGrid::Paint()
{
    const thrSpinHold hold(Lock);
    ctrlWindow::Paint();
    Box = PaintRect;
    PlaceBars();
    ShareWidth();
    if (ScrollH)
        SetBarRange(ScrollH, Across(), false);
    if (ScrollV)
        SetBarRange(ScrollV, Down(), true);
    if (!HasStyle(styleGridSelectMany)) {
        Selection.LastRow = Selection.FirstRow;
        Selection.LastColumn = Selection.FirstColumn;
    }
    PaintRect = Box;
    DrawRows();
}

// --- Scroll bars

void ctrlGrid::PlaceBars()
{
    // A column with a share of the spare width gives way to a bar.
    int64_t widths = 0;
    for (const Column& column : Columns)
        widths += column.Auto ? leastShare : column.Width;
    const int64_t heights = Down().Total();
    const int64_t room = Box.Width();
    const int64_t rise = Box.Height();
    const auto thickness = static_cast<int32_t>(std::ceil(scrollBarSize * Toolkit().Scale));
    const bool fits =
        widths <= room && heights <= rise && !HasStyle(styleGridBarV) && !HasStyle(styleGridBarH);
    const bool across =
        !fits && (HasStyle(styleGridBarH) || (HasStyle(styleGridBarHNeeded) && widths + thickness > room));
    const bool tall = heights > rise || (across && heights + thickness > rise);
    const bool down = !fits && (HasStyle(styleGridBarV) || (HasStyle(styleGridBarVNeeded) && tall));
    UpdateBar(ScrollH, across, true);
    UpdateBar(ScrollV, down, false);
    const rect outer = Box;
    if (down)
        Box.Right = std::max(Box.Right - thickness, Box.Left);
    if (across)
        Box.Bottom = std::max(Box.Bottom - thickness, Box.Top);
    if (ScrollH)
        ScrollH->Move(Box.Left, Box.Bottom, static_cast<uint32_t>(Box.Width()),
                      static_cast<uint32_t>(outer.Bottom - Box.Bottom));
    if (ScrollV)
        ScrollV->Move(Box.Right, Box.Top, static_cast<uint32_t>(outer.Right - Box.Right),
                      static_cast<uint32_t>(Box.Height()));
}

void ctrlGrid::UpdateBar(ctrlSlider*& bar, bool wanted, bool horizontal)
{
    if (wanted == (bar != nullptr))
        return;
    if (!wanted) {
        delete bar;
        bar = nullptr;
        return;
    }
    bar = new ctrlSlider(this, 0, 0, 1, 1, styleSliderArrows | (horizontal ? styleSliderHorizontal : 0U));
    bar->TrackWidth = 0;
    bar->SetRange(0, 0);
    bar->OnChange = [this] { Invalidate(true); };
    bar->Show();
}

// A view of the top stays there when rows come or go.
void ctrlGrid::SetBarRange(ctrlSlider* bar, const gridAxis& axis, bool fromTop)
{
    const auto most = static_cast<double>(axis.NotFitting(axis.End - axis.Start));
    const bool atTop = fromTop && bar->Value == bar->Maximum;
    bar->SetRange(0, most);
    if (atTop)
        bar->SetValue(most);
    const auto scrolled = static_cast<double>(axis.Count - axis.Fixed);
    bar->Page = std::max(scrolled - most, 1.0);
    bar->Ratio = scrolled > 0 ? std::max(static_cast<float>((scrolled - most) / scrolled), leastThumb) : 1.0F;
}

void ctrlGrid::ShareWidth()
{
    int64_t spare = Box.Width();
    uint32_t sharing = 0;
    for (const Column& column : Columns) {
        if (column.Auto)
            ++sharing;
        else
            spare = std::max<int64_t>(spare - column.Width, 0);
    }
    for (Column& column : Columns) {
        if (column.Auto)
            column.Width = std::max(static_cast<uint32_t>(spare / sharing), leastShare);
    }
}

// --- Cells

void ctrlGrid::DrawRows()
{
    const gridAxis down = Down();
    const gridAxis across = Across();
    int64_t top = Box.Top;
    cellSides drawn;
    for (uint64_t row = down.First(); row < down.Count && top < Box.Bottom; row = down.Next(row)) {
        const int64_t bottom = top + RowHeights[row];
        int64_t left = Box.Left;
        drawn.Left = false;
        for (uint64_t column = across.First(); column < across.Count && left < Box.Right;
             column = across.Next(column)) {
            const int64_t right = left + Columns[column].Width;
            DrawCell(row, column,
                     {static_cast<int32_t>(left), static_cast<int32_t>(top), static_cast<int32_t>(right),
                      static_cast<int32_t>(bottom)},
                     drawn);
            left = right;
            drawn.Left = !IsFixed(row, column);
        }
        top = bottom;
        drawn.Top = row >= FixedRows;
    }
}

void ctrlGrid::DrawCell(uint64_t row, uint64_t column, rect area, const cellSides& drawn)
{
    if (IsFixed(row, column))
        DrawHeader(area);
    else
        DrawPlain(row, column, area, drawn);
    --area.Right;
    --area.Bottom;
    if (!OnCellDraw || area.IsEmpty())
        return;
    // What the handler draws ends at the bars and the border.
    const bool isCut = !rectCovers(Box, area);
    if (isCut)
        ClipPush(rectCut(area, Box));
    OnCellDraw(row, column, &area);
    if (isCut)
        ClipPop();
}

void ctrlGrid::DrawHeader(rect& area)
{
    const rect cell = area;
    colour fill = HeaderColour == colourDefault ? theme::Face : HeaderColour;
    if (!IsEnabled())
        fill = ColourScale(fill, disabledShade, whole);
    Border(ctrlBorder::Raised, HeaderEdge, ColourScale(fill, lit, whole), area);
    Colour(fill);
    RectFillClipped(area);
    area = cell;
}

// The neighbours' lines lie on the same pixels, and hold unless this cell covers them.
void ctrlGrid::DrawPlain(uint64_t row, uint64_t column, rect& area, cellSides drawn)
{
    const bool isMarked = !HasStyle(styleGridUnmarked) && IsSelected(row, column);
    const bool isFilled = CellColour != colourDefault;
    if (isFilled) {
        Colour(CellColour);
        RectFillClipped(area);
    }
    if (HasStyle(styleGridLinesV))
        ++area.Right;
    if (HasStyle(styleGridLinesH))
        ++area.Bottom;
    if (isMarked) {
        Colour(SelectionColour == colourDefault ? theme::SelectionBackground : SelectionColour);
        RectFillClipped(area);
    }
    if (isMarked || isFilled)
        drawn = {};
    DrawLines(area, drawn);
}

void ctrlGrid::DrawLines(const rect& area, const cellSides& drawn)
{
    Colour(LineColour);
    if (HasStyle(styleGridLinesV)) {
        if (!drawn.Left)
            RectFillClipped({area.Left, area.Top, area.Left + 1, area.Bottom});
        RectFillClipped({area.Right - 1, area.Top, area.Right, area.Bottom});
    }
    if (HasStyle(styleGridLinesH)) {
        if (!drawn.Top)
            RectFillClipped({area.Left, area.Top, area.Right, area.Top + 1});
        RectFillClipped({area.Left, area.Bottom - 1, area.Right, area.Bottom});
    }
}

bool ctrlGrid::IsSelected(uint64_t row, uint64_t column) const
{
    return row >= Selection.FirstRow && row <= Selection.LastRow && column >= Selection.FirstColumn &&
           column <= Selection.LastColumn;
}
