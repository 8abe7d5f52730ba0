// Glyphs between pixels: each is kept as a mask at a few fractions of a pixel, so that letters stand where
// their widths put them and their stems stay alike.
#pragma once

#include "platform/linux/screen/drawCairo.h"

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

// A glyph of some font with its origin, in pixels of the target.
struct drawGlyph {
    unsigned long Number;
    double X;
    int Baseline;
};

class drawGlyphs
{
public:
    // In the context's source. For contexts that neither scale nor turn.
    void Draw(cairo_t* context, cairo_scaled_font_t* font, std::span<const drawGlyph> glyphs);

private:
    struct mask {
        cairoOwned<cairo_surface_t> Surface;  // null when there is nothing to see, or no outline
        int Left = 0, Top = 0;                // from the origin
        bool IsPicture = false;               // no outline
    };
    struct fontMasks {
        cairoOwned<cairo_scaled_font_t> Font;
        std::unordered_map<uint64_t, mask> Masks;
    };

    // A mask, and where its left upper corner stands.
    struct stamp {
        cairo_surface_t* Surface;
        double Left;
        int Top;
    };

    mask& Find(cairo_scaled_font_t* font, unsigned long glyph, int phase);
    void DrawOne(cairo_t* context, cairo_scaled_font_t* font, const drawGlyph& glyph);
    void DrawStamps(cairo_t* context);

    std::unordered_map<cairo_scaled_font_t*, fontMasks> Fonts;
    size_t Count = 0;
    std::vector<stamp> Stamps;    // what is to be drawn at once
    std::vector<uint8_t> Pixels;  // where they are put together
};
