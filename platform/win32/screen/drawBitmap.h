// Pixels in memory: images, and bitmaps that can be drawn.
#pragma once

#include "platform/win32/screen/drawTools.h"

class directBitmap : public drawBitmap
{
public:
    explicit directBitmap(comPointer<ID2D1Bitmap> bitmap) : Bitmap(std::move(bitmap)) {}
    const comPointer<ID2D1Bitmap> Bitmap;
};

class directImage : public drawImage
{
public:
    explicit directImage(comPointer<IWICBitmap> bitmap) : Bitmap(std::move(bitmap)) {}
    bool Read(std::span<uint32_t> pixels) const override;

    const comPointer<IWICBitmap> Bitmap;
};

// Null when the system refuses.
std::unique_ptr<drawImage> drawMakeImage(const drawTools& tools, uint32_t width, uint32_t height);
std::unique_ptr<drawBitmap> drawCopy(ID2D1RenderTarget* target, std::span<const uint32_t> pixels,
                                     uint32_t width, uint32_t height, bool alpha);
std::unique_ptr<drawBitmap> drawCopy(ID2D1RenderTarget* target, const directImage& image);
