#include "platform/linux/screen/drawGlyphs.h"

#include <cmath>

namespace {

constexpr int Phases = 4;  // of a pixel
constexpr size_t MostMasks = 8192;
constexpr double LargestMask = 512;  // pixels; what is larger is rare

struct inkBox {
    int Left, Top, Width, Height;
};

cairoOwned<cairo_t> onePixel()
{
    const cairoOwned<cairo_surface_t> surface(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1));
    return cairoOwned<cairo_t>(cairo_create(surface.get()));
}

void addOutline(cairo_t* context, cairo_scaled_font_t* font, const cairo_glyph_t& glyph)
{
    cairo_set_scaled_font(context, font);
    cairo_glyph_path(context, &glyph, 1);
}

// The pixels that the current path touches.
inkBox pathBox(cairo_t* context)
{
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    cairo_path_extents(context, &left, &top, &right, &bottom);
    const int x = static_cast<int>(std::floor(left));
    const int y = static_cast<int>(std::floor(top));
    return {x, y, static_cast<int>(std::ceil(right)) - x, static_cast<int>(std::ceil(bottom)) - y};
}

void drawLarge(cairo_t* context, cairo_scaled_font_t* font, const cairo_glyph_t& glyph)
{
    addOutline(context, font, glyph);
    cairo_fill(context);
}

bool isLarge(cairo_scaled_font_t* font)
{
    cairo_font_extents_t extents;
    cairo_scaled_font_extents(font, &extents);
    return extents.height > LargestMask;
}

}  // namespace

drawGlyphs::mask& drawGlyphs::Find(cairo_scaled_font_t* font, unsigned long glyph, int phase)
{
    fontMasks& masks = Fonts[font];
    if (!masks.Font)
        masks.Font.reset(cairo_scaled_font_reference(font));
    const auto [at, isNew] = masks.Masks.try_emplace(uint64_t{glyph} * Phases + static_cast<unsigned>(phase));
    mask& found = at->second;
    if (!isNew)
        return found;
    ++Count;
    const cairo_glyph_t shape = {glyph, static_cast<double>(phase) / Phases, 0};
    const cairoOwned<cairo_t> measure = onePixel();
    addOutline(measure.get(), font, shape);
    const inkBox box = pathBox(measure.get());
    if (box.Width <= 0 || box.Height <= 0) {
        cairo_text_extents_t extents;
        cairo_scaled_font_glyph_extents(font, &shape, 1, &extents);
        found.IsPicture = extents.width > 0 && extents.height > 0;
        return found;
    }
    found.Left = box.Left;
    found.Top = box.Top;
    found.Surface.reset(cairo_image_surface_create(CAIRO_FORMAT_A8, box.Width, box.Height));
    const cairoOwned<cairo_t> paint(cairo_create(found.Surface.get()));
    cairo_translate(paint.get(), -box.Left, -box.Top);
    addOutline(paint.get(), font, shape);
    cairo_fill(paint.get());
    return found;
}

void drawGlyphs::Draw(cairo_t* context, cairo_scaled_font_t* font, unsigned long glyph, double x,
                      int baseline)
{
    const double quarters = std::floor(x * Phases + 0.5);
    const double column = std::floor(quarters / Phases);
    if (isLarge(font)) {
        drawLarge(context, font, {glyph, x, static_cast<double>(baseline)});
        return;
    }
    if (Count > MostMasks) {
        Fonts.clear();
        Count = 0;
    }
    const mask& found = Find(font, glyph, static_cast<int>(quarters - column * Phases));
    if (found.IsPicture) {
        const cairo_glyph_t picture = {glyph, column, static_cast<double>(baseline)};
        cairo_set_scaled_font(context, font);
        cairo_show_glyphs(context, &picture, 1);
    } else if (found.Surface) {
        cairo_mask_surface(context, found.Surface.get(), column + found.Left, baseline + found.Top);
    }
}
