// Text: fonts by Pango, lines placed as the other systems place them.
#pragma once

#include "platform/linux/screen/drawGlyphs.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

// One font's piece of a line.
struct glyphRun {
    pangoOwned<PangoFont> Font;
    pangoOwned<PangoGlyphString> Glyphs;
    double X;      // from the line's beginning
    bool IsWhole;  // the font has all of its glyphs
};

struct textLine {
    std::vector<glyphRun> Runs;  // from left to right
    double Top;                  // from that of the text
    double Baseline;             // from its own top
    double Width;                // without blanks at the end
    double FullWidth;            // with them
    double Height;
};
using textLines = std::vector<textLine>;

// The fonts of the system, and what was drawn of them. Shared by all formats and layouts.
struct drawFonts {
    pangoOwned<PangoFontMap> Map;
    pangoOwned<PangoContext> Context;
    pangoOwned<PangoLayout> Scratch;  // where lines are made
    drawGlyphs Glyphs;

    // What was laid out lately: a screen shows the same texts over and over, and to shape one takes as long
    // as to draw it.
    std::unordered_map<std::string, std::shared_ptr<const textLines>> Shaped;
};

// Null when there are none.
std::shared_ptr<drawFonts> drawFontsMake();

// Its font and tabs; copies share them.
class pangoFormat : public drawTextFormat
{
public:
    pangoFormat(std::shared_ptr<drawFonts> fonts, std::string_view font, bool bold, bool italic, float size);

    const std::shared_ptr<drawFonts>& Fonts() const { return Fonts_; }
    PangoLayout* Layout() const;                     // the scratch one, in this format
    const std::string& Key() const { return Key_; }  // equal for those that look the same

private:
    std::shared_ptr<drawFonts> Fonts_;
    std::string Key_;
    std::shared_ptr<PangoFontDescription> Font;
    std::shared_ptr<PangoTabArray> Tabs;
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
    void Arrange() const;
    std::shared_ptr<const textLines> Shape() const;
    void Trim(PangoLayout* layout) const;
    std::string Key() const;
    double LineLeft(const textLine& one) const;
    double TextTop() const;

    pangoFormat Format;
    std::string Text;
    float Width;
    float Height;
    drawAlign Horizontal = drawAlign::Near;
    drawAlign Vertical = drawAlign::Near;
    bool Wraps = true;
    bool Trims = false;
    char Delimiter = 0;

    mutable std::shared_ptr<const textLines> Arranged;  // null until it is wanted
};
