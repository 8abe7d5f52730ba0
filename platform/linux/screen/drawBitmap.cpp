#include "platform/linux/screen/drawBitmap.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// The largest texture that graphics cards have.
constexpr uint32_t LargestSide = 16384;

constexpr size_t PixelBytes = sizeof(uint32_t);

struct pixelRect {
    int Left, Top, Right, Bottom;
};

// The part of a surface as one of its own: filters then see nothing beside it.
cairoOwned<cairo_surface_t> viewOf(cairo_surface_t* surface, const pixelRect& part)
{
    const int stride = cairo_image_surface_get_stride(surface);
    unsigned char* first = cairo_image_surface_get_data(surface) + ptrdiff_t{stride} * part.Top +
                           ptrdiff_t{part.Left} * static_cast<ptrdiff_t>(PixelBytes);
    return cairoOwned<cairo_surface_t>(
        cairo_image_surface_create_for_data(first, cairo_image_surface_get_format(surface),
                                            part.Right - part.Left, part.Bottom - part.Top, stride));
}

// Pixels of which `source` has at least a part; empty when there is none.
pixelRect pixelsOf(cairo_surface_t* surface, const drawRect& source)
{
    const auto cut = [](float value, int limit) {
        return static_cast<int>(std::clamp(value, 0.0f, static_cast<float>(limit)));
    };
    const int width = cairo_image_surface_get_width(surface);
    const int height = cairo_image_surface_get_height(surface);
    return {cut(std::floor(source.Left), width), cut(std::floor(source.Top), height),
            cut(std::ceil(source.Right), width), cut(std::ceil(source.Bottom), height)};
}

void copyRows(cairo_surface_t* surface, const uint32_t* pixels, uint32_t width, uint32_t height)
{
    cairo_surface_flush(surface);
    unsigned char* row = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (uint32_t y = 0; y < height; ++y, row += stride, pixels += width)
        std::memcpy(row, pixels, width * PixelBytes);
    cairo_surface_mark_dirty(surface);
}

}  // namespace

cairoOwned<cairo_surface_t> drawMakeSurface(cairo_format_t format, uint32_t width, uint32_t height)
{
    if (width > LargestSide || height > LargestSide)
        return nullptr;
    const int columns = static_cast<int>(std::max(width, 1u));
    const int rows = static_cast<int>(std::max(height, 1u));
    cairoOwned<cairo_surface_t> surface(cairo_image_surface_create(format, columns, rows));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    return surface;
}

bool cairoBitmap::Draw(cairo_t* context, const drawRect& destination, float opacity,
                       const drawRect& source) const
{
    const cairo_rectangle_t from = drawBox(source);
    const cairo_rectangle_t to = drawBox(destination);
    if (!(from.width > 0 && from.height > 0 && to.width > 0 && to.height > 0) || !(opacity > 0))
        return false;
    cairo_surface_flush(Surface.get());
    const pixelRect part = pixelsOf(Surface.get(), source);
    if (part.Left >= part.Right || part.Top >= part.Bottom)
        return false;

    const cairoOwned<cairo_surface_t> view = viewOf(Surface.get(), part);
    const cairoOwned<cairo_pattern_t> pattern(cairo_pattern_create_for_surface(view.get()));
    cairo_matrix_t matrix;  // from the target to the view
    cairo_matrix_init_translate(&matrix, from.x - part.Left, from.y - part.Top);
    cairo_matrix_scale(&matrix, from.width / to.width, from.height / to.height);
    cairo_matrix_translate(&matrix, -to.x, -to.y);
    cairo_pattern_set_matrix(pattern.get(), &matrix);
    cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
    cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_BILINEAR);
    cairo_set_source(context, pattern.get());
    cairo_rectangle(context, to.x, to.y, to.width, to.height);
    if (opacity >= 1) {
        cairo_fill(context);
    } else {
        cairo_save(context);
        cairo_clip(context);
        cairo_paint_with_alpha(context, static_cast<double>(opacity));
        cairo_restore(context);
    }
    // The view ends here, and with it what the context may still refer to.
    cairo_set_source_rgb(context, 0, 0, 0);
    return true;
}

bool cairoImage::Read(std::span<uint32_t> pixels) const
{
    cairo_surface_flush(Surface.get());
    const size_t width = static_cast<size_t>(cairo_image_surface_get_width(Surface.get()));
    const size_t height = static_cast<size_t>(cairo_image_surface_get_height(Surface.get()));
    if (pixels.size() < width * height)
        return false;
    const unsigned char* row = cairo_image_surface_get_data(Surface.get());
    const int stride = cairo_image_surface_get_stride(Surface.get());
    for (size_t y = 0; y < height; ++y, row += stride)
        std::memcpy(&pixels[y * width], row, width * PixelBytes);
    return true;
}

std::unique_ptr<drawBitmap> drawCopy(std::span<const uint32_t> pixels, uint32_t width, uint32_t height,
                                     bool alpha)
{
    if (width == 0 || height == 0 || pixels.size() / width < height)
        return nullptr;
    cairoOwned<cairo_surface_t> surface =
        drawMakeSurface(alpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, width, height);
    if (!surface)
        return nullptr;
    copyRows(surface.get(), pixels.data(), width, height);
    return std::make_unique<cairoBitmap>(std::move(surface));
}

std::unique_ptr<drawBitmap> drawCopy(const cairoImage& image)
{
    const uint32_t width = static_cast<uint32_t>(cairo_image_surface_get_width(image.Get()));
    const uint32_t height = static_cast<uint32_t>(cairo_image_surface_get_height(image.Get()));
    cairoOwned<cairo_surface_t> surface = drawMakeSurface(CAIRO_FORMAT_RGB24, width, height);
    if (!surface)
        return nullptr;
    cairo_surface_flush(image.Get());
    const std::span<uint32_t> rows(reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(surface.get())),
                                   size_t{width} * height);
    // Rows of 32-bit pixels have no gaps.
    if (!image.Read(rows))
        return nullptr;
    cairo_surface_mark_dirty(surface.get());
    return std::make_unique<cairoBitmap>(std::move(surface));
}
