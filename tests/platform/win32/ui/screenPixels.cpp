#include "tests/platform/screen/screenPixels.h"

#include <windows.h>

std::vector<uint32_t> screenPixels(const windowArea& area)
{
    constexpr uint32_t Colours = 0xFFFFFF;
    const int width = area.Right - area.Left;
    const int height = area.Bottom - area.Top;
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    const bool copied = BitBlt(memory, 0, 0, width, height, screen, area.Left, area.Top, SRCCOPY) != 0;
    SelectObject(memory, before);
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    const bool read = copied && GetDIBits(memory, bitmap, 0, static_cast<UINT>(height), pixels.data(), &info,
                                          DIB_RGB_COLORS) == height;
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    if (!read)
        return {};
    for (uint32_t& pixel : pixels)
        pixel &= Colours;
    return pixels;
}
