#include "toolkit/ctrlGrid.h"

#include "toolkit/ctrlSlider.h"

#include <algorithm>

namespace {

constexpr uint32_t ownColumnWidth = 50;
constexpr uint32_t ownRowHeight = 20;
constexpr uint32_t ownHeaderEdge = 1;
constexpr uint32_t ownStyle =
    styleGridLinesH | styleGridBarVNeeded | styleGridSelectMany | styleGridLinesV | styleGridBarHNeeded;

}  // namespace

// --- One direction

uint64_t gridAxis::At(int32_t position) const
{
    if (position < Start || position >= End)
        return Count;
    int64_t at = Start;
    for (uint64_t index = First(); index < Count && at < End; index = Next(index)) {
        at += Size(index);
        if (position < at)
            return index;
    }
    return Count;
}

int64_t gridAxis::Total() const
{
    int64_t total = 0;
    for (uint64_t index = 0; index < Count; ++index)
        total += Size(index);
    return total;
}

// Of those that scroll. The last one may stay, whatever room there is.
uint64_t gridAxis::NotFitting(int64_t room) const
{
    const uint64_t fixed = std::min(Fixed, Count);
    for (uint64_t index = 0; index < fixed; ++index)
        room -= Size(index);
    uint64_t index = Count;
    while (index > fixed && room >= Size(index - 1))
        room -= Size(--index);
    const uint64_t most = Count - fixed;
    return std::min(index - fixed, most == 0 ? 0 : most - 1);
}

uint64_t gridAxis::HiddenFor(uint64_t first, uint64_t last) const
{
    if (last < Fixed || Count <= Fixed)
        return Hidden;
    const uint64_t begin = std::max(first, Fixed) - Fixed;
    if (first >= Fixed && begin < Hidden)
        return begin;
    int64_t room = End - Start;
    for (uint64_t index = 0; index < Fixed; ++index)
        room -= Size(index);
    uint64_t top = last + 1;
    while (top > Fixed && room >= Size(top - 1))
        room -= Size(--top);
    return std::max(Hidden, std::min(top - Fixed, begin));
}

// --- Shape

ctrlGrid::ctrlGrid(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                   uint64_t columns, uint64_t rows)
    : ctrlWindow(parent, x, y, width, height, ctrlStyleRepaint),
      ColumnWidthDefault(ownColumnWidth),
      RowHeightDefault(ownRowHeight),
      HeaderEdge(ownHeaderEdge)
{
    StyleSet(ownStyle);
    SetColumnCount(columns);
    SetRowCount(rows);
}

colour ctrlGrid::BackColour() const
{
    return BackColour_ == colourDefault ? theme::ListBackground : ctrlWindow::BackColour();
}

void ctrlGrid::SetColumnCount(uint64_t count)
{
    count = std::max(count, FixedColumns);
    if (count == Columns.size())
        return;
    Columns.resize(count, Column{ColumnWidthDefault, false});
    Invalidate(true);
}

void ctrlGrid::SetRowCount(uint64_t count)
{
    count = std::max(count, FixedRows);
    if (count == RowHeights.size())
        return;
    RowHeights.resize(count, RowHeightDefault);
    Invalidate(true);
}

void ctrlGrid::SetFixedRows(uint64_t count)
{
    if (count > RowHeights.size())
        SetRowCount(count);
    FixedRows = count;
    Invalidate(true);
}

void ctrlGrid::SetColumnWidth(uint64_t column, uint32_t width)
{
    if (column >= Columns.size())
        return;
    width = std::max(width, 1U);
    Columns[column].Auto = false;
    if (Columns[column].Width == width)
        return;
    Columns[column].Width = width;
    Invalidate(true);
}

void ctrlGrid::SetRowHeight(uint64_t row, uint32_t height)
{
    if (row >= RowHeights.size())
        return;
    height = std::max(height, 1U);
    if (RowHeights[row] == height)
        return;
    RowHeights[row] = height;
    Invalidate(true);
}

void ctrlGrid::SetAutoColumn(uint64_t column)
{
    for (Column& one : Columns)
        one.Auto = false;
    if (column < Columns.size())
        Columns[column].Auto = true;
    Invalidate(true);
}

// --- What is where

gridAxis ctrlGrid::Across() const
{
    gridAxis axis;
    axis.Size = [this](uint64_t column) { return Columns[column].Width; };
    axis.Count = Columns.size();
    axis.Fixed = std::min<uint64_t>(FixedColumns, axis.Count);
    axis.Hidden = ScrollH ? static_cast<uint64_t>(ScrollH->Value) : 0;
    axis.Start = Box.Left;
    axis.End = Box.Right;
    return axis;
}

gridAxis ctrlGrid::Down() const
{
    gridAxis axis;
    axis.Size = [this](uint64_t row) { return RowHeights[row]; };
    axis.Count = RowHeights.size();
    axis.Fixed = std::min<uint64_t>(FixedRows, axis.Count);
    axis.Hidden = ScrollV ? static_cast<uint64_t>(ScrollV->Maximum - ScrollV->Value) : 0;
    axis.Start = Box.Top;
    axis.End = Box.Bottom;
    return axis;
}

// --- Selection

bool ctrlGrid::IsInTable(const gridSelection& selection) const
{
    return selection.FirstColumn < Columns.size() && selection.LastColumn < Columns.size() &&
           selection.FirstRow < RowHeights.size() && selection.LastRow < RowHeights.size();
}

void ctrlGrid::SetSelection(const gridSelection& wanted)
{
    gridSelection taken = wanted;
    const ctrlLife life(this);
    // Copies: a handler may replace itself, or destroy the grid.
    if (const auto handler = OnSelecting)
        handler(&taken);
    if (!life || taken == Selection)
        return;
    Selection = taken;
    ShowSelection();
    if (const auto handler = OnSelection)
        handler();
    if (life)
        Invalidate(true);
}

bool ctrlGrid::HasSelectedCells() const
{
    const thrSpinHold hold(Lock);
    return IsInTable(Selection);
}

void ctrlGrid::ShowSelection()
{
    uint64_t across = 0;
    uint64_t down = 0;
    {
        const thrSpinHold hold(Lock);
        if (!IsInTable(Selection))
            return;
        across = Across().HiddenFor(Selection.FirstColumn, Selection.LastColumn);
        down = Down().HiddenFor(Selection.FirstRow, Selection.LastRow);
    }
    if (ScrollH)
        ScrollH->SetValue(static_cast<double>(across));
    if (ScrollV)
        ScrollV->SetValue(ScrollV->Maximum - static_cast<double>(down));
}
