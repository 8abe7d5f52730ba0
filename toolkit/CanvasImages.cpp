// Copies from other surfaces and from images.
#include "toolkit/Canvas.h"
#include "toolkit/pixmapDyn.h"

#include <cstring>
#include <span>

std::unique_ptr<drawBitmap> Canvas::Content(drawTarget& destination) const
{
    if (!Target)
        return nullptr;
    switch (TargetKind_) {
    case canvasTarget::Compatible:
        return Target->Content();
    case canvasTarget::Image:
        return Image ? destination.MakeBitmap(*Image) : nullptr;
    default:
        return nullptr;
    }
}

void Canvas::CanvasDraw(int32_t x, int32_t y, const Canvas& source, float transparency, int32_t sourceX,
                        int32_t sourceY, uint32_t width, uint32_t height)
{
    BrushSelect(nullptr);
    if (!Target)
        return;
    const auto bitmap = source.Content(*Target);
    if (!bitmap)
        return;
    const auto at = [width, height](int32_t left, int32_t top) {
        const auto l = static_cast<float>(left);
        const auto t = static_cast<float>(top);
        return drawRect{l, t, l + static_cast<float>(width), t + static_cast<float>(height)};
    };
    Target->DrawBitmap(bitmap.get(), at(x, y), 1.0F - transparency, at(sourceX, sourceY));
}

void Canvas::PixmapDraw(const pixmap& image, float x, float y, float width, float height, float sourceX,
                        float sourceY, float sourceWidth, float sourceHeight, bool alpha)
{
    if (!Target || image.Width == 0 || image.Height == 0)
        return;
    BrushSelect(nullptr);
    constexpr int32_t trueColour = 32;
    pixmapDyn converted;
    const pixmap* shown = &image;
    if (image.Bits != trueColour) {
        converted.Bits = trueColour;
        converted = image;
        shown = &converted;
    }
    // By the pixels that there are: a damaged image may tell more of them than can be counted in bytes.
    const size_t count = size_t{shown->Width} * shown->Height;
    if (count == 0 || !shown->Pixels || count > shown->Size / sizeof(uint32_t))
        return;
    std::vector<uint32_t> pixels(count);
    std::memcpy(pixels.data(), shown->Pixels, count * sizeof(uint32_t));
    const auto bitmap = Target->MakeBitmap(pixels, shown->Width, shown->Height, alpha);
    Target->DrawBitmap(bitmap.get(), {x, y, x + width, y + height}, 1.0F,
                       {sourceX, sourceY, sourceX + sourceWidth, sourceY + sourceHeight});
}
