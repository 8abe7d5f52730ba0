#include "platform/linux/screen/drawGlyphs.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Phases = 4;  // of a pixel
constexpr size_t MostMasks = 8192;
constexpr double LargestMask = 512;    // pixels; what is larger is rare
constexpr double LongestPiece = 2048;  // pixels

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

// What two masks cover that lie over each other.
uint8_t bothOf(unsigned one, unsigned other)
{
    constexpr unsigned Full = 255;
    return static_cast<uint8_t>(Full - (Full - one) * (Full - other) / Full);
}

void addMask(uint8_t* into, int stride, cairo_surface_t* mask)
{
    const unsigned char* row = cairo_image_surface_get_data(mask);
    const int width = cairo_image_surface_get_width(mask);
    const int height = cairo_image_surface_get_height(mask);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            into[x] = bothOf(into[x], row[x]);
        into += stride;
        row += cairo_image_surface_get_stride(mask);
    }
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

void drawGlyphs::Draw(cairo_t* context, cairo_scaled_font_t* font, std::span<const drawGlyph> glyphs)
{
    if (isLarge(font)) {
        for (const drawGlyph& glyph : glyphs)
            drawLarge(context, font, {glyph.Number, glyph.X, static_cast<double>(glyph.Baseline)});
        return;
    }
    if (Count > MostMasks) {
        Fonts.clear();
        Count = 0;
    }
    for (const drawGlyph& glyph : glyphs)
        DrawOne(context, font, glyph);
    DrawStamps(context);
}

void drawGlyphs::DrawOne(cairo_t* context, cairo_scaled_font_t* font, const drawGlyph& glyph)
{
    const double quarters = std::floor(glyph.X * Phases + 0.5);
    const double column = std::floor(quarters / Phases);
    const mask& found = Find(font, glyph.Number, static_cast<int>(quarters - column * Phases));
    if (found.IsPicture) {
        const cairo_glyph_t picture = {glyph.Number, column, static_cast<double>(glyph.Baseline)};
        cairo_set_scaled_font(context, font);
        cairo_show_glyphs(context, &picture, 1);
    } else if (found.Surface) {
        const stamp next = {found.Surface.get(), column + found.Left, glyph.Baseline + found.Top};
        if (!Stamps.empty() && std::abs(next.Left - Stamps.front().Left) > LongestPiece)
            DrawStamps(context);
        Stamps.push_back(next);
    }
}

// As one mask: what a mask costs is the asking, not its few pixels.
void drawGlyphs::DrawStamps(cairo_t* context)
{
    if (Stamps.empty())
        return;
    double left = Stamps.front().Left;
    double right = left;
    int top = Stamps.front().Top;
    int bottom = top;
    for (const stamp& one : Stamps) {
        left = std::min(left, one.Left);
        top = std::min(top, one.Top);
        right = std::max(right, one.Left + cairo_image_surface_get_width(one.Surface));
        bottom = std::max(bottom, one.Top + cairo_image_surface_get_height(one.Surface));
    }
    const int width = static_cast<int>(right - left);
    const int height = bottom - top;
    const int stride = cairo_format_stride_for_width(CAIRO_FORMAT_A8, width);
    Pixels.assign(static_cast<size_t>(stride) * static_cast<size_t>(height), 0);
    for (const stamp& one : Stamps) {
        uint8_t* const row = Pixels.data() + ptrdiff_t{stride} * (one.Top - top);
        addMask(row + static_cast<int>(one.Left - left), stride, one.Surface);
    }
    Stamps.clear();
    const cairoOwned<cairo_surface_t> whole(
        cairo_image_surface_create_for_data(Pixels.data(), CAIRO_FORMAT_A8, width, height, stride));
    cairo_mask_surface(context, whole.get(), left, top);
}
