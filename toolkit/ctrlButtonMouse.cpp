// What the mouse does with a button.
#include "toolkit/ctrlButton.h"

void ctrlButton::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    switch (event) {
    case MouseEv::Move:
        Point((keys & keysLeft) != 0);
        return;
    case MouseEv::LeftDown:
    case MouseEv::LeftDouble:
        if (IsHot())
            Press();
        return;
    case MouseEv::LeftUp:
        Release();
        return;
    default:
        ctrlWindow::MouseEvent(event, keys, delta);
    }
}

void ctrlButton::Point(bool held)
{
    const auto x = static_cast<uint32_t>(Toolkit().MouseX);
    const auto y = static_cast<uint32_t>(Toolkit().MouseY);
    const bool isDeaf = Kind_ == buttonKind::Radio && Checked_;
    if (x < Width() && y < Height() && !isDeaf) {
        if (!(StateSet(stateButtonHot) & stateButtonHot))
            Invalidate(true);
        const ctrlLife life(this);
        if (!CaptureHeld())
            CaptureTake();
        if (!life)
            return;
        Cursor(cursorArrow);
    } else {
        if (StateClear(stateButtonHot) & stateButtonHot)
            Invalidate(true);
        if (!held)
            CaptureRelease();
    }
    if (held && CaptureHeld())
        Drag();
}

void ctrlButton::Drag()
{
    const bool hot = IsHot();
    if (Flips()) {
        if (hot && Checked_)
            StateSet(stateButtonPressed);
        else if (!hot && Checked_ && Kind_ == buttonKind::Toggle)
            LetGo();
        Invalidate(true);
        return;
    }
    if (Kind_ == buttonKind::Radio || hot == IsPressed())
        return;
    if (hot)
        StateSet(stateButtonPressed);
    else
        LetGo();
    Invalidate(true);
}

void ctrlButton::Press()
{
    switch (Kind_) {
    case buttonKind::Radio: {
        if (Checked_)
            return;
        const ctrlLife life(this);
        Checked(true);
        if (life)
            Click();
        return;
    }
    case buttonKind::Repeat:
        if (!IsPressed())
            Repeat();
        return;
    default:
        if (!(StateSet(stateButtonPressed) & stateButtonPressed))
            Invalidate(true);
    }
}

void ctrlButton::Repeat()
{
    if (OnClick) {
        const ctrlLife life(this);
        Click();
        if (!life)
            return;
        Toolkit().TimerTake(
            FirstDelay, [this, life] { Tick(life); },
            [life] {
                if (life)
                    static_cast<ctrlButton*>(life.Window())->OwnsTimer = false;
            });
        OwnsTimer = true;
    }
    StateSet(stateButtonPressed);
    Invalidate(true);
}

// On the timer's thread; the button stops the timer before it goes.
void ctrlButton::Tick(const ctrlLife& life)
{
    Toolkit().Timer.Period = RepeatPeriod.load();
    if (!IsPressed())
        return;
    Toolkit().Post(
        [life] {
            auto* button = static_cast<ctrlButton*>(life.Window());
            // Behind its release a click that was on its way is late.
            if (!button || !button->IsPressed())
                return;
            // Without the capture, as when it was hidden meanwhile, it will not hear of the release.
            if (button->CaptureHeld())
                button->Click();
            else if (button->LetGo())
                button->Invalidate(true);
        },
        true);
}

void ctrlButton::Cool()
{
    StateClear(stateButtonHot);
}

bool ctrlButton::LetGo()
{
    const bool was = (StateClear(stateButtonPressed) & stateButtonPressed) != 0;
    if (was && OwnsTimer)
        Toolkit().TimerStop();
    return was;
}

void ctrlButton::Release()
{
    const ctrlLife life(this);
    CaptureRelease();
    if (!life || Kind_ == buttonKind::Radio || (Flips() && !IsHot()) || !LetGo())
        return;
    Invalidate(true);
    if (Flips())
        Checked(!Checked_);
    if (life && Kind_ != buttonKind::Repeat)
        Click();
}
