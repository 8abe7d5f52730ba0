// Pixels in memory: images, and bitmaps that can be drawn.
#pragma once

#include "platform/linux/screen/drawCairo.h"

// A surface of 32 bits a pixel, all 0; null when it is too large. A size of 0 counts as 1.
cairoOwned<cairo_surface_t> drawMakeSurface(cairo_format_t format, uint32_t width, uint32_t height);

class cairoBitmap : public drawBitmap
{
public:
    explicit cairoBitmap(cairoOwned<cairo_surface_t> surface) : Surface(std::move(surface)) {}

    // False when nothing of it is to be seen there.
    bool Draw(cairo_t* context, const drawRect& destination, float opacity, const drawRect& source) const;

private:
    cairoOwned<cairo_surface_t> Surface;
};

class cairoImage : public drawImage
{
public:
    explicit cairoImage(cairoOwned<cairo_surface_t> surface) : Surface(std::move(surface)) {}

    bool Read(std::span<uint32_t> pixels) const override;
    cairo_surface_t* Get() const { return Surface.get(); }

private:
    cairoOwned<cairo_surface_t> Surface;
};

// Copies of pixels; null when they cannot be had.
std::unique_ptr<drawBitmap> drawCopy(std::span<const uint32_t> pixels, uint32_t width, uint32_t height,
                                     bool alpha);
std::unique_ptr<drawBitmap> drawCopy(const cairoImage& image);
