// The focus of an edit, and the caret that blinks while it has it.
#include "toolkit/ctrlEdit.h"

namespace {

constexpr uint32_t blinkPeriod = 500;  // milliseconds

}  // namespace

void ctrlEdit_Base::Focused(bool on)
{
    const ctrlLife life(this);
    const bool had = HasFocus();
    if (!HasStyle(styleFocusable)) {
        BlinkStop();
        on = false;
    } else if (on) {
        FocusGained();
    } else if (had) {
        Commit();
        if (!life)
            return;
        FocusLost();
    }
    Invalidate(true);
    ctrlWindow::Focused(on);
    if (life && HasFlag(ctrlEditInner) && had && !HasFocus())
        DestroyLater();
}

void ctrlEdit_Base::FocusGained()
{
    // What the mouse left when it was dragged on without the focus.
    StateClear(stateEditClick | stateEditDrag);
    BlinkStart();
    SelectAll();
    StateSet(stateEditCaret);
}

void ctrlEdit_Base::FocusLost()
{
    BlinkStop();
    Scroll_ = 0;
    // A key that is let go elsewhere is not heard here.
    StateClear(stateEditCaret | stateEditShift | stateEditControl);
    SelectionClear();
    StateSet(stateEditFresh);
}

void ctrlEdit_Base::DestroyLater() const
{
    Toolkit().Post(
        [life = ctrlLife(this)] {
            if (life)
                life.Window()->Destroy();
        },
        true);
}

void ctrlEdit_Base::EndFocus()
{
    if (!HasFocus())
        return;
    // Whoever hears of the change can no longer ask for the end.
    StateSet(stateClosing);
    Commit();
    FocusLost();
    Caret_ = 0;
    if (HasFocus())
        Toolkit().Focused = nullptr;
}

// The timer's thread only posts, and what it posted may come when this edit has the timer no more, or is
// gone.
void ctrlEdit_Base::BlinkStart()
{
    const ctrlLife life(this);
    const auto edit = [](const ctrlLife& one) { return static_cast<ctrlEdit_Base*>(one.Window()); };
    Toolkit().TimerTake(
        blinkPeriod,
        [life, edit] {
            Toolkit().Post(
                [life, edit] {
                    if (life)
                        edit(life)->Blink();
                },
                true);
        },
        [life, edit] {
            if (life)
                edit(life)->BlinkLost();
        });
    BlinkHeld = true;
}

void ctrlEdit_Base::BlinkStop()
{
    if (!BlinkHeld)
        return;
    BlinkHeld = false;
    Toolkit().TimerStop();
}

// Another has the timer now: the caret stays as it is best seen.
void ctrlEdit_Base::BlinkLost()
{
    if (!BlinkHeld)
        return;
    BlinkHeld = false;
    StateSet(stateEditCaret);
    Invalidate(true);
}

void ctrlEdit_Base::Blink()
{
    if (!BlinkHeld || !HasFocus() || !HasStyle(styleFocusable))
        return;
    if (!(StateClear(stateEditCaret) & stateEditCaret))
        StateSet(stateEditCaret);
    Invalidate(true);
}
