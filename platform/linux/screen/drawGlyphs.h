// Glyphs between pixels: each is kept as a mask at a few fractions of a pixel, so that letters stand where
// their widths put them and their stems stay alike.
#pragma once

#include "platform/linux/screen/drawCairo.h"

#include <cstdint>
#include <unordered_map>

class drawGlyphs
{
public:
    // With its origin at `x`, in pixels of the target, in the context's source. For contexts that neither
    // scale nor turn.
    void Draw(cairo_t* context, cairo_scaled_font_t* font, unsigned long glyph, double x, int baseline);

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

    mask& Find(cairo_scaled_font_t* font, unsigned long glyph, int phase);

    std::unordered_map<cairo_scaled_font_t*, fontMasks> Fonts;
    size_t Count = 0;
};
