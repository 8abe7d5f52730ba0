#include "toolkit/ctrlSlider.h"

#include "toolkit/ctrlButton.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr uint32_t arrowDelay = 500;   // ms
constexpr uint32_t arrowPeriod = 100;  // ms
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
    if (HasState(stateSliderDragged))
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
    const colour frame = HasState(stateSliderHot) ? ColourScale(plain, lit, whole) : plain;
    rect box = ThumbBox();
    if (box.IsEmpty())
        return;
    Border(ctrlBorder::Flat, BorderWidth_, frame, box);
    ColourEnabled(HasState(stateSliderDragged) ? frame : plain, true);
    RectFillClipped(box);
}
