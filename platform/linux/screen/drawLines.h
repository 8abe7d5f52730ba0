// Lines of text with their glyphs in place, ready to be drawn.
#pragma once

#include "platform/linux/screen/drawGlyphs.h"

#include <memory>
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

// The lines of a layout, which they outlive.
std::shared_ptr<const textLines> drawLinesOf(PangoLayout* layout);

// In the context's source; from pixel to pixel when there are masks.
void drawTextLine(cairo_t* context, drawGlyphs* masks, const textLine& line, double left, double baseline);
