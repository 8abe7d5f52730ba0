// A table that owns no cell data: it keeps rows, columns and a selection, and calls a handler to draw each
// cell that is seen.
//
// Threads: all on the interface thread, but for what changes the shape (counts, widths, heights), which any
// thread may change under Lock. Paint holds Lock from start to end: OnCellDraw runs under it, and must not
// change the shape.
#pragma once

#include "foundations/thread/thrSpin.h"
#include "toolkit/ctrlWindow.h"

#include <cstdint>
#include <functional>
#include <vector>

class ctrlSlider;

// Style bits of grids.
enum : uint32_t {
    styleGridBarV = 0x100,          // a vertical scroll bar always
    styleGridBarH = 0x200,          // a horizontal one
    styleGridLinesH = 0x400,        // between rows
    styleGridBarVNeeded = 0x800,    // a vertical scroll bar when the rows do not fit
    styleGridUnmarked = 0x1000,     // the selection is not shown
    styleGridSelectMany = 0x2000,   // a selection may span several cells
    styleGridLinesV = 0x8000,       // between columns
    styleGridBarHNeeded = 0x10000,  // a horizontal scroll bar when the columns do not fit
};

// One direction of the table as it stands on the control: `Fixed` lines from its start, then the others
// without the first `Hidden` of them.
struct gridAxis {
    std::function<uint32_t(uint64_t index)> Size;  // pixels
    uint64_t Count = 0;
    uint64_t Fixed = 0;
    uint64_t Hidden = 0;
    int32_t Start = 0, End = 0;  // of the room

    // Of the line that the walk goes to behind this one.
    uint64_t Next(uint64_t index) const { return index + 1 == Fixed ? index + 1 + Hidden : index + 1; }
    uint64_t First() const { return Fixed == 0 ? Hidden : 0; }
    uint64_t At(int32_t position) const;  // Count where there is none
    uint64_t NotFitting(int64_t room) const;
    int64_t Total() const;

    // How many must be hidden for these lines to be seen whole: the last as well, the first above all.
    uint64_t HiddenFor(uint64_t first, uint64_t last) const;
};

// Inclusive.
struct gridSelection {
    uint64_t FirstRow = 0, LastRow = 0, FirstColumn = 0, LastColumn = 0;
    bool operator==(const gridSelection&) const = default;
};

class ctrlGrid : public ctrlWindow
{
public:
    struct Column {
        uint32_t Width = 0;  // pixels
        bool Auto = false;   // takes a share of the spare width at every paint
    };

    ctrlGrid(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint64_t columns,
             uint64_t rows);

    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    void Paint() override;
    colour BackColour() const override;

    void SetColumnCount(uint64_t count);  // never below FixedColumns
    void SetRowCount(uint64_t count);     // never below FixedRows
    void SetFixedRows(uint64_t count);
    void SetColumnWidth(uint64_t column, uint32_t width);  // an index past the end is ignored
    void SetRowHeight(uint64_t row, uint32_t height);
    void SetAutoColumn(uint64_t column);  // and no other
    void SetSelection(const gridSelection& wanted);

    ctrlSlider* ScrollH = nullptr;
    ctrlSlider* ScrollV = nullptr;
    mutable thrSpin Lock;
    std::vector<Column> Columns;
    uint64_t FixedColumns = 0;  // leading ones that never scroll
    uint64_t FixedRows = 0;

    std::function<void(uint64_t row, uint64_t column)> OnCellClick;
    std::function<void(uint64_t row, uint64_t column, const rect* area)> OnCellDraw;
    std::function<void(gridSelection* wanted)> OnSelecting;  // may change it
    std::function<void()> OnSelection;

    std::vector<uint32_t> RowHeights;
    gridSelection Selection;
    uint32_t ColumnWidthDefault;
    uint32_t RowHeightDefault;
    colour HeaderColour = colourDefault;
    colour LineColour = theme::ListBorder;
    colour CellColour = colourDefault;
    colour SelectionColour = colourDefault;
    uint32_t HeaderEdge;  // pixels

private:
    gridAxis Across() const;
    gridAxis Down() const;

    void PlaceBars();
    void UpdateBar(ctrlSlider*& bar, bool wanted, bool horizontal);
    void SetBarRange(ctrlSlider* bar, const gridAxis& axis, bool fromTop);
    void ShareWidth();
    void DrawRows();
    // Which sides of a cell have the line of a neighbour already.
    struct cellSides {
        bool Left = false, Top = false;
    };
    void DrawCell(uint64_t row, uint64_t column, rect area, const cellSides& drawn);
    void DrawHeader(rect& area);
    void DrawPlain(uint64_t row, uint64_t column, rect& area, cellSides drawn);
    void DrawLines(const rect& area, const cellSides& drawn);
    bool IsFixed(uint64_t row, uint64_t column) const { return row < FixedRows || column < FixedColumns; }
    bool IsSelected(uint64_t row, uint64_t column) const;

    bool IsInTable(const gridSelection& selection) const;  // under Lock
    bool HasSelectedCells() const;
    bool PointerInBox() const;
    bool HitTest(uint64_t& row, uint64_t& column) const;
    void Press(MouseEv event);
    void DragTo();
    void Release();
    void DoubleClick();
    void ShowSelection();

    rect Box;                // of the cells, of the last paint
    uint64_t AnchorRow = 0;  // of the selection that is dragged
    uint64_t AnchorColumn = 0;
};
