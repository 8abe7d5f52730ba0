// Fonts by Pango, and the formats of text that are made of them.
#pragma once

#include "platform/linux/screen/drawLines.h"

#include <memory>
#include <string>
#include <unordered_map>

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

// A length in Pango's units, cut to what these can hold.
int drawUnitsOf(float pixels);
