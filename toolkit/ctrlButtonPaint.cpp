// What a button shows.
#include "toolkit/ctrlButton.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr unsigned centred = textLeft | textRight | textTop | textBottom;
constexpr colour white = 0xFFFFFF;
constexpr float chevronPen = 2.0F;
constexpr float chevronPart = 0.25F;     // of the face, from the centre to each side
constexpr float questionPart = 0.8F;     // of the smaller side
constexpr float crossPart = 0.3F;        // of the smaller side, from the centre to each corner
constexpr float crossThickness = 0.35F;  // of that

// A tip and the ends of the two lines that meet in it, from the centre of the face.
struct chevron {
    drawPoint From, Tip, To;
};

chevron chevronOf(buttonGlyph glyph, float a, float b)
{
    switch (glyph) {
    case buttonGlyph::Up:
        return {{-a, b}, {0, -b}, {a, b}};
    case buttonGlyph::Down:
        return {{-a, -b}, {0, b}, {a, -b}};
    case buttonGlyph::Left:
        return {{a, -b}, {-a, 0}, {a, b}};
    default:
        return {{-a, -b}, {a, 0}, {-a, b}};
    }
}

}  // namespace

void ctrlButton::Paint()
{
    if (!IsEnabled()) {
        Cool();
        if (LetGo())
            Invalidate(true);
    }
    ctrlWindow::Paint();
    if (Glyph_ == buttonGlyph::None)
        PaintText();
    else
        PaintGlyph();
}

void ctrlButton::PaintText()
{
    const std::string text = Name();
    if (text.empty())
        return;
    ColourEnabled(TextColour_ == colourDefault ? white : TextColour_, true);
    Text(PaintRect, text.c_str(), centred);
    if (!HasFlag(ctrlMeasure))
        return;
    const textSize size = TextSize(text.c_str());
    PreferredHeight_ = size.Height + Height() - static_cast<uint32_t>(PaintRect.Height());
    PreferredWidth_ = size.Width + Width() - static_cast<uint32_t>(PaintRect.Width());
}

colour ctrlButton::GlyphShade() const
{
    if (!IsEnabled())
        return ColourScale(BackColour(), 1, 2);
    if (GlyphColour_ != colourDefault && Glyph_ != buttonGlyph::Question)
        return GlyphColour_;
    return TextColour_ == colourDefault ? white : TextColour_;
}

void ctrlButton::PaintGlyph()
{
    const auto w = static_cast<float>(PaintRect.Width());
    const auto h = static_cast<float>(PaintRect.Height());
    const float x = static_cast<float>(PaintRect.Left) + 0.5F * w;
    const float y = static_cast<float>(PaintRect.Top) + 0.5F * h;
    const float side = std::min(w, h);
    PreferredWidth_ = 0;
    PreferredHeight_ = 0;
    Colour(GlyphShade());
    if (Glyph_ == buttonGlyph::Question) {
        // Sizes of fonts are scaled, and the button is so already.
        FontSize(questionPart * side / Toolkit().Scale);
        FontStyle(fontBold);
        Text(PaintRect, "?", centred);
        return;
    }
    if (Glyph_ == buttonGlyph::Cross) {
        const float reach = crossPart * side;
        PenWidth(std::max(std::floor(crossThickness * reach), 1.0F));
        Line(x - reach, y - reach, x + reach, y + reach);
        Line(x - reach, y + reach, x + reach, y - reach);
        return;
    }
    PenWidth(chevronPen);
    const chevron shape = chevronOf(Glyph_, chevronPart * w, chevronPart * h);
    Line(x + shape.From.X, y + shape.From.Y, x + shape.Tip.X, y + shape.Tip.Y);
    Line(x + shape.Tip.X, y + shape.Tip.Y, x + shape.To.X, y + shape.To.Y);
}
