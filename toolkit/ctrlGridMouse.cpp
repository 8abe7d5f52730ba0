// What the mouse does in a table.
#include "toolkit/ctrlGrid.h"
#include "toolkit/ctrlSlider.h"

#include <algorithm>

void ctrlGrid::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    switch (event) {
    case MouseEv::LeftDown:
    case MouseEv::RightDown:
        Press(event);
        return;
    case MouseEv::Move:
        if ((keys & keysLeft) == 0)
            break;
        DragTo();
        return;
    case MouseEv::LeftUp:
        Release();
        return;
    case MouseEv::LeftDouble:
        DoubleClick();
        return;
    case MouseEv::Wheel:
        if (!ScrollV)
            break;
        Toolkit().MouseX -= ScrollV->X();
        Toolkit().MouseY -= ScrollV->Y();
        ScrollV->MouseEvent(event, keys, delta);
        return;
    default:
        break;
    }
    ctrlWindow::MouseEvent(event, keys, delta);
}

bool ctrlGrid::PointerInBox() const
{
    return rectHas(Box, Toolkit().MouseX, Toolkit().MouseY);
}

// The cell under the pointer; false where there is none.
bool ctrlGrid::HitTest(uint64_t& row, uint64_t& column) const
{
    const thrSpinHold hold(Lock);
    row = Down().At(Toolkit().MouseY);
    column = Across().At(Toolkit().MouseX);
    return PointerInBox() && row < RowHeights.size() && column < Columns.size();
}

void ctrlGrid::Press(MouseEv event)
{
    const ctrlLife life(this);
    uint64_t row = 0;
    uint64_t column = 0;
    const bool hit = HitTest(row, column);
    const bool left = event == MouseEv::LeftDown;
    if (hit && left)
        CaptureTake();
    // A copy: the handler may replace itself, or destroy the grid.
    const auto clicked = OnCellClick;
    if (hit && left && clicked) {
        clicked(row, column);
    } else if (hit) {
        AnchorRow = row;
        AnchorColumn = column;
        SetSelection({row, row, column, column});
    }
    if (life && !left)
        Notify(notifyRightClick);
}

void ctrlGrid::DragTo()
{
    if (!CaptureHeld() || !HasStyle(styleGridSelectMany) || OnCellClick)
        return;
    uint64_t row = 0;
    uint64_t column = 0;
    if (!HitTest(row, column))
        return;
    const auto [firstRow, lastRow] = std::minmax({AnchorRow, row});
    const auto [firstColumn, lastColumn] = std::minmax({AnchorColumn, column});
    SetSelection({firstRow, lastRow, firstColumn, lastColumn});
}

void ctrlGrid::Release()
{
    const bool held = CaptureHeld();
    const ctrlLife life(this);
    CaptureRelease();
    if (life && held && HasSelectedCells())
        Notify(notifyClick);
}

void ctrlGrid::DoubleClick()
{
    const ctrlLife life(this);
    CaptureRelease();
    if (!life || !HasSelectedCells())
        return;
    // A copy: the handler may replace itself, or destroy the grid.
    const auto handler = OnDoubleClick;
    if (handler)
        handler();
}
