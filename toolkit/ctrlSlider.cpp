#include "toolkit/ctrlSlider.h"

#include "toolkit/ctrlButton.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr uint32_t statePaging = 0x8000;
constexpr uint32_t stateDragged = 0x10000;
constexpr uint32_t stateHot = 0x20000;

constexpr int notch = 120;
constexpr uint32_t arrowDelay = 500;   // ms
constexpr uint32_t arrowPeriod = 100;  // ms
constexpr uint32_t pagePeriod = 250;   // ms
constexpr int32_t leastThumb = 3;      // borders
constexpr uint32_t besideTrack = 3;    // borders

}  // namespace

ctrlSlider::ctrlSlider(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                       uint32_t style)
    : ctrlWindow(parent, x, y, width, height, 0)
{
    StyleSet(style);
    if (!HasStyle(styleSliderArrows))
        return;
    MakeArrow(ButtonLow, -1);
    MakeArrow(ButtonHigh, 1);
    ButtonLow->Glyph(IsHorizontal() ? buttonGlyph::Left : buttonGlyph::Down);
    ButtonHigh->Glyph(IsHorizontal() ? buttonGlyph::Right : buttonGlyph::Up);
}

ctrlSlider::~ctrlSlider()
{
    if (OwnsTimer)
        Toolkit().TimerStop();
}

void ctrlSlider::MakeArrow(ctrlButton*& button, double direction)
{
    button = new ctrlButton(this, buttonGlyph::Left, 0);
    button->Kind(buttonKind::Repeat);
    button->FirstDelay = arrowDelay;
    button->RepeatPeriod = arrowPeriod;
    button->OnClick = [this, direction] { Change(Value + direction * Step); };
    button->Show();
}

void ctrlSlider::SetRange(double a, double b)
{
    if (!std::isfinite(a) || !std::isfinite(b))
        return;
    const auto [least, most] = std::minmax({a, b});
    if (least == Minimum && most == Maximum)
        return;
    Minimum = least;
    Maximum = most;
    Value = std::clamp(Value, Minimum, Maximum);
    Invalidate(true);
}

void ctrlSlider::SetValue(double value)
{
    if (std::isnan(value))
        return;
    value = std::clamp(value, Minimum, Maximum);
    if (value == Value)
        return;
    Value = value;
    Invalidate(true);
    if (HasState(stateDragged))
        Changed();
}

void ctrlSlider::SetTrackWidth(uint32_t pixels)
{
    const uint32_t across = IsHorizontal() ? Height() : Width();
    const uint32_t borders = besideTrack * BorderWidth_;
    const uint32_t kept = std::min(pixels, across > borders ? across - borders : 0);
    if (kept == TrackWidth)
        return;
    TrackWidth = kept;
    Invalidate(true);
}

// By the user.
void ctrlSlider::Change(double value)
{
    value = std::clamp(value, Minimum, Maximum);
    if (value == Value || std::isnan(value))
        return;
    Value = value;
    Invalidate(true);
    Changed();
}

void ctrlSlider::Changed()
{
    // A copy: the handler may replace itself, or destroy the slider.
    const std::function<void()> handler = OnChange;
    if (handler)
        handler();
}

// --- Where things are

int32_t ctrlSlider::Pointer() const
{
    return IsHorizontal() ? Toolkit().MouseX : Toolkit().MouseY;
}

ctrlSlider::span ctrlSlider::Thumb() const
{
    const auto border = static_cast<int32_t>(BorderWidth_);
    const span inner{Track.Start + border, Track.End - border};
    const int32_t usable = inner.Length();
    if (!(Maximum > Minimum) || usable < 0)
        return inner;
    const double ratio = Ratio > 0 ? std::min(static_cast<double>(Ratio), 1.0) : 0.0;
    const auto wanted = static_cast<int32_t>(usable * ratio);
    const int32_t length = std::min(std::max(wanted, leastThumb * border), usable);
    const double part = Value / (Maximum - Minimum) - Minimum / (Maximum - Minimum);
    const auto distance = static_cast<int32_t>(part * (usable - length));
    const int32_t start = IsHorizontal() ? inner.Start + distance : inner.End - distance - length;
    return {start, start + length};
}

rect ctrlSlider::AlongTrack(const span& part, int32_t across, int32_t acrossEnd) const
{
    if (IsHorizontal())
        return {part.Start, across, part.End, acrossEnd};
    return {across, part.Start, acrossEnd, part.End};
}

rect ctrlSlider::ThumbBox() const
{
    const auto border = static_cast<int32_t>(BorderWidth_);
    const auto across = static_cast<int32_t>(IsHorizontal() ? Height() : Width());
    return AlongTrack(Thumb(), border, across - border);
}

bool ctrlSlider::PointerOnThumb() const
{
    return rectHas(ThumbBox(), Toolkit().MouseX, Toolkit().MouseY);
}

// --- The mouse

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
        else if (HasState(stateDragged))
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
    if (HasState(statePaging))
        return;
    // The release of a drag may have gone to another window.
    StateClear(stateDragged);
    const bool hot = PointerOnThumb();
    if (hot == HasState(stateHot))
        return;
    Invalidate(true);
    if (!hot) {
        StateClear(stateHot);
        CaptureRelease();
        return;
    }
    StateSet(stateHot);
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
        StateSet(stateDragged);
        Invalidate(true);
        if (!CaptureHeld())
            CaptureTake();
        return;
    }
    StateSet(statePaging);
    CaptureTake();
    if (life)
        PageStep();
    if (!life || !HasState(statePaging))
        return;
    const auto step = [life] {
        auto* slider = static_cast<ctrlSlider*>(life.Window());
        if (!slider || !slider->HasState(statePaging))
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
    const uint32_t was = StateClear(statePaging | stateDragged);
    if ((was & (statePaging | stateDragged)) == 0)
        return;
    const ctrlLife life(this);
    CaptureRelease();
    if (!life)
        return;
    StateClear(stateHot);
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

// --- Looks

void ctrlSlider::Paint()
{
    ctrlWindow::Paint();
    Track = IsHorizontal() ? span{PaintRect.Left, PaintRect.Right} : span{PaintRect.Top, PaintRect.Bottom};
    if (ButtonLow)
        PlaceArrows();
    PaintGroove();
    PaintThumb();
}

// Square, at the two ends.
void ctrlSlider::PlaceArrows()
{
    const int32_t across = IsHorizontal() ? PaintRect.Height() : PaintRect.Width();
    const int32_t side = std::min(across, Track.Length() / 2);
    const auto place = [&](ctrlButton* button, int32_t start) {
        const rect box = AlongTrack({start, start + side}, IsHorizontal() ? PaintRect.Top : PaintRect.Left,
                                    (IsHorizontal() ? PaintRect.Top : PaintRect.Left) + across);
        button->Move(box.Left, box.Top, static_cast<uint32_t>(box.Width()),
                     static_cast<uint32_t>(box.Height()));
    };
    place(IsHorizontal() ? ButtonLow : ButtonHigh, Track.Start);
    place(IsHorizontal() ? ButtonHigh : ButtonLow, Track.End - side);
    Track.Start += side;
    Track.End -= side;
}

void ctrlSlider::PaintGroove()
{
    if (TrackWidth == 0)
        return;
    constexpr uint32_t lit = 10;
    constexpr uint32_t dark = 4;
    constexpr uint32_t whole = 7;
    const auto across = static_cast<int32_t>(IsHorizontal() ? Height() : Width());
    const auto width = static_cast<int32_t>(TrackWidth);
    const int32_t start = (across - width) / 2;
    rect groove = AlongTrack(Track, start, start + width);
    const colour back = BackColour();
    Border(ctrlBorder::Flat, BorderWidth_, ColourScale(back, lit, whole), groove);
    ColourEnabled(ColourScale(back, dark, whole), true);
    RectFillClipped(groove);
}

void ctrlSlider::PaintThumb()
{
    constexpr uint32_t lit = 10;
    constexpr uint32_t whole = 7;
    const colour plain = ThumbColour == colourDefault ? theme::Face : ThumbColour;
    const colour frame = HasState(stateHot) ? ColourScale(plain, lit, whole) : plain;
    rect box = ThumbBox();
    if (box.IsEmpty())
        return;
    Border(ctrlBorder::Flat, BorderWidth_, frame, box);
    ColourEnabled(HasState(stateDragged) ? frame : plain, true);
    RectFillClipped(box);
}
