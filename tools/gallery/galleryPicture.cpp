// A picture of what a window has drawn, as a file that every viewer opens: 24 bits a pixel, rows from below.
#include "tools/gallery/galleryPicture.h"

#include <array>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr uint32_t headLength = 54;
constexpr uint32_t infoLength = 40;
constexpr uint32_t bytesPerPixel = 3;

void append(std::vector<uint8_t>& bytes, uint32_t value, uint32_t count)
{
    constexpr uint32_t bitsPerByte = 8;
    for (uint32_t i = 0; i < count; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> (i * bitsPerByte)));
}

std::vector<uint8_t> encoded(const std::vector<uint32_t>& pixels, uint32_t width, uint32_t height)
{
    const uint32_t stride = (width * bytesPerPixel + 3) & ~3U;
    const uint32_t length = stride * height;
    std::vector<uint8_t> bytes{'B', 'M'};
    append(bytes, headLength + length, 4);
    append(bytes, 0, 4);
    append(bytes, headLength, 4);
    append(bytes, infoLength, 4);
    append(bytes, width, 4);
    append(bytes, height, 4);
    append(bytes, 1, 2);
    append(bytes, bytesPerPixel * 8, 2);
    append(bytes, 0, 4);
    append(bytes, length, 4);
    append(bytes, 0, 16);
    for (uint32_t row = height; row-- > 0;) {
        for (uint32_t column = 0; column < width; ++column)
            append(bytes, pixels[size_t{row} * width + column], bytesPerPixel);
        append(bytes, 0, stride - width * bytesPerPixel);
    }
    return bytes;
}

}  // namespace

bool galleryPicture(ctrlWindow& form, const char* path)
{
    // Drawn to memory from the first paint on: whatever is on the screen, this is whole.
    form.SurfaceSize(form.Width(), form.Height());
    form.TargetCreate(nullptr);
    form.Show();
    // Controls measure themselves in their first paint, and are arranged for the next.
    constexpr int paints = 3;
    for (int i = 0; i < paints; ++i) {
        form.InvalidateTree(true);
        Toolkit().PumpPending();
    }
    std::vector<uint32_t> pixels;
    if (!form.Read(pixels) || pixels.size() < size_t{form.Width()} * form.Height())
        return false;
    const std::vector<uint8_t> bytes = encoded(pixels, form.Width(), form.Height());
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "wb"), std::fclose);
    return file && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size() &&
           std::fflush(file.get()) == 0;
}
