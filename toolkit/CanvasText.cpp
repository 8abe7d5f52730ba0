// Text and its measures.
#include "toolkit/Canvas.h"
#include "toolkit/drawing.h"

#include <cmath>
#include <cstring>
#include <string_view>

namespace {

constexpr float unlimited = 1'000'000.0F;

std::string_view viewOf(const char* text, size_t length)
{
    if (!text)
        return {};
    return {text, length ? length : std::strlen(text)};
}

drawAlign alignOf(unsigned bits, unsigned near, unsigned far)
{
    switch (bits & (near | far)) {
    case textLeft:
    case textTop:
        return drawAlign::Near;
    case textRight:
    case textBottom:
        return drawAlign::Far;
    default:
        return drawAlign::Centre;
    }
}

// Where in a length the text hangs.
float anchorOf(drawAlign align, float length)
{
    switch (align) {
    case drawAlign::Near:
        return 0;
    case drawAlign::Far:
        return length;
    default:
        return length / 2;
    }
}

// Turns clockwise on the screen about (x, y), then moves by (dx, dy).
drawMatrix turnAbout(float radians, float x, float y, float dx, float dy)
{
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    return {c, s, -s, c, x - c * x + s * y + dx, y - s * x - c * y + dy};
}

uint32_t roundUp(float value)
{
    return static_cast<uint32_t>(std::ceil(std::max(value, 0.0F)));
}

}  // namespace

void Canvas::Text(const rect& area, const char* text, unsigned flags, size_t length, const rect* clip)
{
    const std::string_view shown = viewOf(text, length);
    if (shown.empty() || !Target)
        return;
    const bool clipped = (flags & textUnclipped) == 0;
    if (clipped) {
        const rect visible = clip ? rectCut(area, *clip) : area;
        if (visible.IsEmpty())
            return;
        ClipPush(visible);
    }
    FontSelect(nullptr);
    BrushSelect(nullptr);
    drawSystem* drawing = Drawing();
    std::unique_ptr<drawTextLayout> layout;
    if (drawing && TextFormat)
        layout = drawing->MakeTextLayout(shown, *TextFormat, static_cast<float>(area.Width()),
                                         static_cast<float>(area.Height()));
    if (layout) {
        layout->SetAlign(alignOf(flags, textLeft, textRight), alignOf(flags, textTop, textBottom));
        layout->SetNoWrap();
        if (flags & textTrim)
            layout->SetTrimming(shown.find('\\') == std::string_view::npos ? '/' : '\\');
        DrawTextAt(area, *layout, flags);
    }
    if (clipped)
        ClipPop();
}

void Canvas::DrawTextAt(const rect& area, const drawTextLayout& layout, unsigned flags)
{
    drawPoint at{static_cast<float>(area.Left), static_cast<float>(area.Top)};
    const bool turned = TextAngle_ != 0.0F;
    if (turned) {
        const float x = anchorOf(alignOf(flags, textLeft, textRight), static_cast<float>(area.Width()));
        const float y = anchorOf(alignOf(flags, textTop, textBottom), static_cast<float>(area.Height()));
        Target->SetTransform(turnAbout(TextAngle_, x, y, at.X, at.Y));
        at = {};
    }
    if (flags & textThick) {
        constexpr drawPoint around[] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
        for (const drawPoint& beside : around)
            Target->DrawLayout({at.X + beside.X, at.Y + beside.Y}, &layout, Brush);
    }
    Target->DrawLayout(at, &layout, Brush);
    if (turned)
        Target->SetTransform({});
}

Canvas::textSize Canvas::TextSize(const char* text, size_t length)
{
    const std::string_view shown = viewOf(text, length);
    drawSystem* drawing = Drawing();
    if (shown.empty() || !drawing)
        return {};
    FontSelect(nullptr);
    if (!TextFormat)
        return {};
    const auto layout = drawing->MakeTextLayout(shown, *TextFormat, unlimited, unlimited);
    if (!layout)
        return {};
    drawTextSize size = layout->Size();
    if (TextAngle_ != 0.0F) {
        const float across = std::abs(std::cos(TextAngle_));
        const float along = std::abs(std::sin(TextAngle_));
        size = {size.Width * across + size.Height * along, size.Width * along + size.Height * across};
    }
    return {roundUp(size.Height), roundUp(size.Width)};
}
