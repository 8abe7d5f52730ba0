// Mouse and keys of an edit.
#include "toolkit/ctrlEdit.h"

#include "foundations/text/utfEdit.h"

ctrlEdit_Base::pressPoint& ctrlEdit_Base::LastPress()
{
    static pressPoint point;
    return point;
}

void ctrlEdit_Base::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    if (!HasStyle(styleFocusable)) {
        ctrlWindow::MouseEvent(event, keys, delta);
        return;
    }
    switch (event) {
    case MouseEv::LeftDouble:
        SelectAll();
        Invalidate(true);
        return;
    case MouseEv::LeftDown:
        Press();
        return;
    case MouseEv::Move:
        MoveEvent(keys);
        return;
    default:
        ctrlWindow::MouseEvent(event, keys, delta);
        return;
    }
}

// Where in the text the press was is found by the next paint, for only then can the text be measured.
void ctrlEdit_Base::Press()
{
    LastPress() = {Toolkit().MouseX, Toolkit().MouseY};
    const bool isAllSelected = SelectionStart_ == 0 && SelectionEnd_ == Length();
    if (isAllSelected && (StateClear(stateEditFresh) & stateEditFresh))
        return;
    ClickX = LastPress().X;
    StateSet(stateEditClick);
    Invalidate(true);
}

void ctrlEdit_Base::MoveEvent(unsigned keys)
{
    const pressPoint point{Toolkit().MouseX, Toolkit().MouseY};
    const bool isInside = point.X >= PaintRect.Left && point.X < PaintRect.Right &&
                          point.Y >= PaintRect.Top && point.Y < PaintRect.Bottom;
    const bool isDown = (keys & keysLeft) != 0;
    const ctrlLife life(this);
    if (!isDown && !isInside) {
        CaptureRelease();
        if (!life)
            return;
        Invalidate(true);
        ctrlWindow::MouseEvent(MouseEv::Move, keys, 0);
        return;
    }
    if (!CaptureHeld()) {
        Cursor(cursorText);
        CaptureTake();
        if (!life)
            return;
        StateSet(stateEditFresh);
        Invalidate(true);
    }
    if (!isDown)
        return;
    const bool wasFresh = (StateClear(stateEditFresh) & stateEditFresh) != 0;
    if (!wasFresh && point != LastPress()) {
        StateSet(stateEditDrag);
        Invalidate(true);
    }
    LastPress() = point;
}

bool ctrlEdit_Base::KeyEvent(KeyEv event, uint32_t key)
{
    const bool isModifier = key == keyShift || key == keyControl;
    if (HasStyle(styleFocusable) && event == KeyEv::Up && isModifier) {
        StateClear(key == keyShift ? stateEditShift : stateEditControl);
        return true;
    }
    const ctrlLife life(this);
    if (HasStyle(styleFocusable) && event == KeyEv::Down && (KeyDown(key) || !life))
        return true;
    return ctrlWindow::KeyEvent(event, key);
}

bool ctrlEdit_Base::KeyDown(uint32_t key)
{
    switch (key) {
    case keyBackspace:
        KeyBackspace();
        return true;
    case keyEnter:
        KeyEnter();
        return true;
    case keyShift:
        StateSet(stateEditShift);
        return true;
    case keyControl:
        StateSet(stateEditControl);
        return true;
    case keyEscape:
        KeyEscape();
        return true;
    case keyInsert:
        KeyInsert();
        return true;
    case keyDelete:
        KeyDelete();
        return true;
    default:
        return KeyTarget(key);
    }
}

bool ctrlEdit_Base::KeyTarget(uint32_t key)
{
    uint64_t target = 0;
    switch (key) {
    case keyEnd:
        target = Length();
        break;
    case keyHome:
        break;
    case keyLeft:
        target = Caret_ ? Caret_ - 1 : 0;
        break;
    case keyRight:
        target = Caret_ + 1;
        break;
    default:
        return false;
    }
    if (IsShiftDown())
        SelectTo(target);
    else
        CaretMove(target);
    return true;
}

void ctrlEdit_Base::Erase(uint64_t position)
{
    std::string text = Name();
    utfErase(text, position, 1);
    TextSet(text);
    Invalidate(true);
    CaretSet(position);
}

void ctrlEdit_Base::KeyBackspace()
{
    if (HasSelection())
        SelectionDelete();
    else if (Caret_ > 0)
        Erase(Caret_ - 1);
}

void ctrlEdit_Base::KeyDelete()
{
    if (HasSelection()) {
        if (IsShiftDown())
            Copy();
        SelectionDelete();
    } else if (Caret_ < Length()) {
        Erase(Caret_);
    }
}

void ctrlEdit_Base::KeyInsert()
{
    if (IsShiftDown())
        Paste();
    else if (HasState(stateEditControl))
        Copy();
}

void ctrlEdit_Base::PassFocus()
{
    if (Parent())
        Parent()->Focus();
    else
        Commit();
}

void ctrlEdit_Base::KeyEnter()
{
    const ctrlLife life(this);
    PassFocus();
    if (life && !HasFlag(ctrlEditInner))
        Raise(OnEnter);
}

void ctrlEdit_Base::KeyEscape()
{
    Cancel();
    if (Parent())
        Parent()->Focus();
}
