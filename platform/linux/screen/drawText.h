// Text: fonts by Pango, lines placed as the other systems place them.
#pragma once

#include "platform/linux/screen/drawGlyphs.h"

#include <string>
#include <vector>

// The fonts of the system, and what was drawn of them. Shared by all formats and layouts.
struct drawFonts {
    pangoOwned<PangoFontMap> Map;
    pangoOwned<PangoContext> Context;
    drawGlyphs Glyphs;
};

// Null when there are none.
std::shared_ptr<drawFonts> drawFontsMake();

// Its font and tabs; copies share them.
class pangoFormat : public drawTextFormat
{
public:
    pangoFormat(std::shared_ptr<drawFonts> fonts, std::string_view font, bool bold, bool italic, float size);

    const std::shared_ptr<drawFonts>& Fonts() const { return Fonts_; }
    pangoOwned<PangoLayout> MakeLayout() const;  // of no text

private:
    std::shared_ptr<drawFonts> Fonts_;
    pangoOwned<PangoFontDescription> Font;
    pangoOwned<PangoTabArray> Tabs;
};

class pangoText : public drawTextLayout
{
public:
    pangoText(std::string_view text, const pangoFormat& format, float width, float height);

    void SetAlign(drawAlign horizontal, drawAlign vertical) override;
    void SetNoWrap() override;
    void SetTrimming(char delimiter) override;
    drawTextSize Size() const override;

    void Draw(cairo_t* context, drawPoint origin) const;  // in the context's source

    // What drawing it at 0, 0 can reach.
    drawRect Reach() const;

private:
    struct line {
        PangoLayoutLine* Line;  // owned by Layout
        double Top;             // from that of the text
        double Baseline;        // from its own top
        double Width;           // without blanks at the end
        double FullWidth;       // with them
        double Height;
    };

    void Arrange() const;
    void Trim() const;
    double LineLeft(const line& one) const;
    double TextTop() const;

    std::shared_ptr<drawFonts> Fonts;
    pangoOwned<PangoLayout> Layout;
    std::string Text;
    float Width;
    float Height;
    drawAlign Horizontal = drawAlign::Near;
    drawAlign Vertical = drawAlign::Near;
    bool Wraps = true;
    bool Trims = false;
    char Delimiter = 0;

    mutable bool IsArranged = false;
    mutable std::vector<line> Lines;
};
