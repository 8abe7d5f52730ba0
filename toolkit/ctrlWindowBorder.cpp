// What controls draw around and beside their content.
#include "toolkit/ctrlWindow.h"

#include <algorithm>

namespace {

constexpr uint32_t percent = 100;

}  // namespace

colour ctrlWindow::BackColour() const
{
    switch (BackColour_) {
    case colourParent:
    case colourParentToo:
        return Parent_ ? Parent_->ChildBackColour() : theme::WindowBackground;
    case colourList:
        return theme::ListBackground;
    case colourDefault:
        return theme::WindowBackground;
    default:
        return BackColour_;
    }
}

colour ctrlWindow::BorderColour() const
{
    if (BorderColour_ == colourParent && Parent_)
        return Parent_->BorderColour();
    return BorderColour_ < 0 ? theme::ListBorder : BorderColour_;
}

void ctrlWindow::SetBackColour(colour value)
{
    if (BackColour_ == value)
        return;
    BackColour_ = value;
    Invalidate(true);
}

void ctrlWindow::SetBorderColour(colour value)
{
    if (BorderColour_ == value)
        return;
    BorderColour_ = value;
    Invalidate(true);
}

void ctrlWindow::BorderStyle(ctrlBorder style)
{
    if (BorderStyle_ == style)
        return;
    BorderStyle_ = style;
    Invalidate(true);
}

void ctrlWindow::BorderWidth(uint32_t width)
{
    const uint32_t kept = std::min({width, Width() / 2, Height() / 2});
    if (BorderWidth_ == kept)
        return;
    BorderWidth_ = kept;
    Invalidate(true);
}

uint32_t ctrlWindow::BorderThickness() const
{
    switch (BorderStyle_) {
    case ctrlBorder::None:
        return 0;
    case ctrlBorder::Etched:
    case ctrlBorder::Ridged:
        return 2 * BorderWidth_;
    default:
        return BorderWidth_;
    }
}

void ctrlWindow::Fade(uint32_t value)
{
    const uint32_t kept = std::min(value, percent);
    if (Fade_ == kept)
        return;
    Fade_ = kept;
    InvalidateTree(true);
}

void ctrlWindow::Transparency(float value)
{
    const float kept = std::clamp(value, 0.0F, 1.0F);
    if (Transparency_ == kept)
        return;
    {
        const thrSpinHold hold(Toolkit().Lock);
        Transparency_ = kept;
    }
    if (Parent_)
        Parent_->Invalidate(true);
    Invalidate(true);
}

void ctrlWindow::Colour(colour value)
{
    if (InheritedFade)
        value = ColourScale(value, percent - InheritedFade, percent);
    Canvas::Colour(value);
}

void ctrlWindow::ColourEnabled(colour value, bool mindEnabled)
{
    if (mindEnabled && !IsEnabled())
        value = ColourMix(BackColour(), value, 2, 1);
    Colour(value);
}

void ctrlWindow::Paint()
{
    Opacity(1.0F);
    Border(BorderStyle_, BorderWidth_, BorderColour(), PaintRect);
    Colour(BackColour());
    RectFillClipped(PaintRect);
}

void ctrlWindow::FillIn(const rect& clip, const rect& area)
{
    const rect visible = rectCut(clip, area);
    if (visible.IsEmpty())
        return;
    RectFill(static_cast<float>(visible.Left), static_cast<float>(visible.Top),
             static_cast<float>(visible.Right), static_cast<float>(visible.Bottom));
}

void ctrlWindow::RectFillClipped(const rect& area)
{
    FillIn(PaintRect, area);
}

void ctrlWindow::RectFillClippedF(float left, float top, float right, float bottom)
{
    left = std::max(left, static_cast<float>(PaintRect.Left));
    top = std::max(top, static_cast<float>(PaintRect.Top));
    right = std::min(right, static_cast<float>(PaintRect.Right));
    bottom = std::min(bottom, static_cast<float>(PaintRect.Bottom));
    if (left < right && top < bottom)
        RectFill(left, top, right, bottom);
}

void ctrlWindow::Border(ctrlBorder style, uint32_t width, colour value, rect& area)
{
    if (width == 0)
        return;
    // A copy, since `area` may be the paint rectangle itself.
    const rect clip = PaintRect;
    switch (style) {
    case ctrlBorder::None:
        return;
    case ctrlBorder::Flat:
        BorderFlat(width, value, area, clip);
        return;
    case ctrlBorder::Raised:
        BorderRings(width, value, area, clip, true);
        return;
    case ctrlBorder::Sunken:
        BorderRings(width, value, area, clip, false);
        return;
    case ctrlBorder::Etched:
        BorderRings(width, value, area, clip, true);
        BorderRings(width, value, area, clip, false);
        return;
    case ctrlBorder::Ridged:
        BorderRings(width, value, area, clip, false);
        BorderRings(width, value, area, clip, true);
        return;
    }
}

void ctrlWindow::BorderFlat(uint32_t width, colour value, rect& area, const rect& clip)
{
    const auto w = static_cast<int32_t>(width);
    const rect inner{area.Left + w, area.Top + w, area.Right - w, area.Bottom - w};
    Colour(value);
    FillIn(clip, {area.Left, area.Top, inner.Left, area.Bottom});
    FillIn(clip, {inner.Left, area.Top, inner.Right, inner.Top});
    FillIn(clip, {inner.Right, area.Top, area.Right, area.Bottom});
    FillIn(clip, {inner.Left, inner.Bottom, inner.Right, area.Bottom});
    area = inner;
}

// Rings of one pixel, lit from the top left when raised; the light fades towards the inside.
void ctrlWindow::BorderRings(uint32_t width, colour value, rect& area, const rect& clip, bool raised)
{
    const uint32_t whole = width == 1 ? 2 : width * width;
    const uint32_t odd = 2 * width - 1;
    uint32_t topLeft = raised ? whole + odd : whole - odd;
    uint32_t bottomRight = raised ? whole - odd : whole + odd;
    for (uint32_t ring = 0; ring < width; ++ring) {
        Colour(ColourScale(value, topLeft, whole));
        FillIn(clip, {area.Left, area.Top, area.Right, area.Top + 1});
        FillIn(clip, {area.Left, area.Top, area.Left + 1, area.Bottom});
        --area.Right;
        --area.Bottom;
        Colour(ColourScale(value, bottomRight, whole));
        FillIn(clip, {area.Left, area.Bottom, area.Right + 1, area.Bottom + 1});
        FillIn(clip, {area.Right, area.Top, area.Right + 1, area.Bottom + 1});
        ++area.Left;
        ++area.Top;
        topLeft = raised ? topLeft - 2 : topLeft + 2;
        bottomRight = raised ? bottomRight + 2 : bottomRight - 2;
    }
}

void ctrlWindow::DropArrow()
{
    const int32_t height = PaintRect.Height();
    PaintRect.Right -= height;
    PenWidth(2.0F);
    const auto h = static_cast<float>(height);
    const float half = 0.25F * h + 0.75F;
    const float x = static_cast<float>(PaintRect.Right) + 0.5F * h + 0.5F;
    const float y = (static_cast<float>(PaintRect.Bottom + PaintRect.Top) + half + 1.0F) / 2.0F;
    const drawPoint points[] = {{x - half, y - half}, {x, y}, {x + half, y - half}};
    Polyline(points, 3, false);
}
