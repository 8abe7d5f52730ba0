#include "platform/win32/screen/drawBitmap.h"

namespace {

constexpr uint32_t PixelBytes = sizeof(uint32_t);

// The largest texture that graphics cards have.
constexpr uint32_t LargestSide = 16384;

std::unique_ptr<drawBitmap> ownedBitmap(comPointer<ID2D1Bitmap> bitmap)
{
    return bitmap ? std::make_unique<directBitmap>(std::move(bitmap)) : nullptr;
}

}  // namespace

bool directImage::Read(std::span<uint32_t> pixels) const
{
    UINT width = 0;
    UINT height = 0;
    if (FAILED(Bitmap->GetSize(&width, &height)) || pixels.size() < size_t{width} * height)
        return false;
    const UINT bytes = width * height * PixelBytes;
    return SUCCEEDED(
        Bitmap->CopyPixels(nullptr, width * PixelBytes, bytes, reinterpret_cast<BYTE*>(pixels.data())));
}

std::unique_ptr<drawImage> drawMakeImage(const drawTools& tools, uint32_t width, uint32_t height)
{
    if (width == 0 || height == 0 || width > LargestSide || height > LargestSide)
        return nullptr;
    comPointer<IWICBitmap> bitmap;
    const HRESULT result = tools.Imaging->CreateBitmap(width, height, GUID_WICPixelFormat32bppBGR,
                                                       WICBitmapCacheOnLoad, bitmap.Put());
    return SUCCEEDED(result) && bitmap ? std::make_unique<directImage>(std::move(bitmap)) : nullptr;
}

std::unique_ptr<drawBitmap> drawCopy(ID2D1RenderTarget* target, std::span<const uint32_t> pixels,
                                     uint32_t width, uint32_t height, bool alpha)
{
    if (width == 0 || height == 0 || pixels.size() / width < height)
        return nullptr;
    const D2D1_BITMAP_PROPERTIES properties = {
        {DXGI_FORMAT_B8G8R8A8_UNORM, alpha ? D2D1_ALPHA_MODE_PREMULTIPLIED : D2D1_ALPHA_MODE_IGNORE},
        96.0f,
        96.0f};
    comPointer<ID2D1Bitmap> bitmap;
    target->CreateBitmap({width, height}, pixels.data(), width * PixelBytes, &properties, bitmap.Put());
    return ownedBitmap(std::move(bitmap));
}

std::unique_ptr<drawBitmap> drawCopy(ID2D1RenderTarget* target, const directImage& image)
{
    comPointer<ID2D1Bitmap> bitmap;
    target->CreateBitmapFromWicBitmap(image.Bitmap.Get(), nullptr, bitmap.Put());
    return ownedBitmap(std::move(bitmap));
}
