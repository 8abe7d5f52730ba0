// Images of every depth, and a stored one.
#include "resources/aboutPicture.h"
#include "toolkit/pixmapDyn.h"
#include "tools/gallery/gallery.h"

#include <array>
#include <string>
#include <vector>

namespace {

constexpr uint32_t side = 32;

// A ramp from one corner to the other, in an image of the given depth.
struct ramp {
    explicit ramp(int32_t bits)
    {
        Image.Width = side;
        Image.Height = side;
        Image.Bits = bits;
        Image.Stride = static_cast<uint32_t>(pixmapStride(static_cast<uint32_t>(bits), side));
        Bytes.resize(size_t{Image.Stride} * side);
        MakePalette(bits);
        for (uint32_t y = 0; y < side; ++y) {
            for (uint32_t x = 0; x < side; ++x)
                Put(x, y, (x + y) * 255 / (2 * side - 2));
        }
        Image.Pixels = Bytes.data();
        Image.Size = static_cast<uint32_t>(Bytes.size());
    }

    pixmap Image;

private:
    void MakePalette(int32_t bits)
    {
        if (bits > 8)
            return;
        const uint32_t count = 1U << bits;
        for (uint32_t i = 0; i < count; ++i) {
            const uint32_t level = i * 255 / (count - 1);
            Palette[i] = 0xFF000000 | level << 16 | level << 8 | (255 - level);
        }
        Image.PaletteSize = count;
        Image.Palette = Palette.data();
    }

    // Level 0 is blue, 255 yellow.
    void Put(uint32_t x, uint32_t y, uint32_t level)
    {
        uint8_t* row = Bytes.data() + size_t{Image.Stride} * y;
        const uint32_t blue = 255 - level;
        const auto byte = [](uint32_t value) { return static_cast<uint8_t>(value); };
        switch (Image.Bits) {
        case 1:
            row[x / 8] = byte(row[x / 8] | (level >> 7) << (7 - x % 8));
            break;
        case 4:
            row[x / 2] = byte(row[x / 2] | (level >> 4) << (x % 2 ? 0 : 4));
            break;
        case 8:
            row[x] = byte(level);
            break;
        case 16: {
            const uint32_t pixel = (level >> 3) << 11 | (level >> 2) << 5 | blue >> 3;
            row[size_t{2} * x] = byte(pixel);
            row[size_t{2} * x + 1] = byte(pixel >> 8);
            break;
        }
        default: {
            const size_t step = static_cast<size_t>(Image.Bits) / 8;
            row[step * x] = byte(blue);
            row[step * x + 1] = byte(level);
            row[step * x + 2] = byte(level);
            if (step == 4)
                row[step * x + 3] = 0xFF;
        }
        }
    }

    std::array<uint32_t, 256> Palette{};
    std::vector<uint8_t> Bytes;
};

class imageSheet final : public gallerySheet
{
public:
    imageSheet(ctrlWindow* parent, int32_t x, int32_t y) : gallerySheet(parent, x, y, 320, 160, "Images") {}

private:
    void PaintSheet() override
    {
        float x = 8;
        for (const int32_t bits : {1, 4, 8, 16, 24, 32}) {
            const ramp one(bits);
            constexpr float size = side;
            PixmapDraw(one.Image, x, 26, size, size, 0, 0, size, size, false);
            const auto left = static_cast<int32_t>(x);
            Colour(theme::FaceText);
            Text({left, 60, left + 32, 76}, std::to_string(bits).c_str(), 0);
            x += 36;
        }
        const auto width = static_cast<float>(aboutPicture.Width);
        const auto height = static_cast<float>(aboutPicture.Height);
        PixmapDraw(aboutPicture, 230, 26, width * 0.6F, height * 0.6F, 0, 0, width, height, false);
        // A part, enlarged to twice its size.
        PixmapDraw(aboutPicture, 8, 82, 142, 70, 0, 0, 71, 35, false);
        PaintCopy();
    }

    // A surface of its own, drawn once in memory and copied here half through.
    void PaintCopy()
    {
        Canvas memory;
        memory.SurfaceSize(64, 64);
        memory.TargetCreate(nullptr);
        memory.BeginDraw();
        memory.Colour(theme::Highlight);
        memory.RectFill(0, 0, 64, 64);
        memory.Colour(0);
        memory.EllipseFill(32, 32, 24, 24);
        memory.EndDraw();
        CanvasDraw(160, 90, memory, 0.0F, 0, 0, 64, 64);
        CanvasDraw(236, 92, memory, 0.5F, 0, 0, 64, 64);
    }
};

}  // namespace

ctrlWindow* galleryImages(ctrlWindow* parent, int32_t x, int32_t y)
{
    return new imageSheet(parent, x, y);
}
