// What the mouse does with a slider.
#include "toolkit/ctrlSlider.h"

#include <algorithm>

namespace {

constexpr int notch = 120;
constexpr uint32_t pagePeriod = 250;  // ms

}  // namespace

int32_t ctrlSlider::Pointer() const
{
    return IsHorizontal() ? Toolkit().MouseX : Toolkit().MouseY;
}

bool ctrlSlider::PointerOnThumb() const
{
    return rectHas(ThumbBox(), Toolkit().MouseX, Toolkit().MouseY);
}

void ctrlSlider::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    if (!IsEnabled() || Maximum == Minimum) {
        Release();
        ctrlWindow::MouseEvent(event, keys, delta);
        return;
    }
    switch (event) {
    case MouseEv::Move:
        if ((keys & keysLeft) == 0)
            Hover();
        else if (HasState(stateSliderDragged))
            Drag();
        return;
    case MouseEv::LeftDown:
    case MouseEv::LeftDouble:
        PressAt();
        return;
    case MouseEv::LeftUp:
        Release();
        return;
    case MouseEv::Wheel:
        Turn(delta);
        return;
    default:
        ctrlWindow::MouseEvent(event, keys, delta);
    }
}

void ctrlSlider::Hover()
{
    if (HasState(stateSliderPaging))
        return;
    // The release of a drag may have gone to another window.
    StateClear(stateSliderDragged);
    const bool hot = PointerOnThumb();
    if (hot == HasState(stateSliderHot))
        return;
    Invalidate(true);
    if (!hot) {
        StateClear(stateSliderHot);
        CaptureRelease();
        return;
    }
    StateSet(stateSliderHot);
    const ctrlLife life(this);
    CaptureTake();
    if (life)
        Cursor(cursorArrow);
}

void ctrlSlider::PressAt()
{
    const ctrlLife life(this);
    if (PointerOnThumb()) {
        GrabOffset = Pointer() - Thumb().Start;
        StateSet(stateSliderDragged);
        Invalidate(true);
        if (!CaptureHeld())
            CaptureTake();
        return;
    }
    StateSet(stateSliderPaging);
    CaptureTake();
    if (life)
        PageStep();
    if (!life || !HasState(stateSliderPaging))
        return;
    const auto step = [life] {
        auto* slider = static_cast<ctrlSlider*>(life.Window());
        if (!slider || !slider->HasState(stateSliderPaging))
            return;
        if (slider->CaptureHeld() && slider->IsEnabled())
            slider->PageStep();
        else
            slider->Release();
    };
    Toolkit().TimerTake(
        pagePeriod, [step] { Toolkit().Post(step, true); },
        [life] {
            if (life)
                static_cast<ctrlSlider*>(life.Window())->OwnsTimer = false;
        });
    OwnsTimer = true;
}

// One page towards the pointer, until the thumb is under it.
void ctrlSlider::PageStep()
{
    const span thumb = Thumb();
    const int32_t at = Pointer();
    const bool before = at < thumb.Start;
    if (!before && at < thumb.End)
        return;
    const bool up = before != IsHorizontal();
    Change(up ? Value + Page : Value - Page);
}

void ctrlSlider::Drag()
{
    const int32_t way = Track.Length() - Thumb().Length();
    if (way <= 0)
        return;
    const int32_t at = std::clamp(Pointer() - GrabOffset - Track.Start, 0, way);
    const int32_t distance = IsHorizontal() ? at : way - at;
    if (distance == 0)
        SetValue(Minimum);
    else if (distance == way)
        SetValue(Maximum);
    else
        SetValue(Minimum + (Maximum - Minimum) * distance / way);
}

void ctrlSlider::Release()
{
    const uint32_t was = StateClear(stateSliderPaging | stateSliderDragged);
    if ((was & (stateSliderPaging | stateSliderDragged)) == 0)
        return;
    const ctrlLife life(this);
    CaptureRelease();
    if (!life)
        return;
    StateClear(stateSliderHot);
    if (OwnsTimer)
        Toolkit().TimerStop();
    if (life)
        Invalidate(true);
}

void ctrlSlider::Turn(int delta)
{
    WheelRest += delta;
    const int steps = WheelRest / notch;
    WheelRest %= notch;
    if (steps != 0)
        Change(Value + steps * Step);
}
