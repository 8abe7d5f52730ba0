// Any bytes are an image: no stream and no size is too wrong to be brought to another depth, a compressed
// image gives what its unpacked pixels give, and how much an output may hold does not change what is right.
#include "fuzz/require.h"
#include "tests/fakes/fakes.h"
#include "toolkit/pixmapDecode.h"
#include "toolkit/pixmapDyn.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr uint64_t Most = uint64_t{1} << 20;
constexpr uint64_t Few = 4000;
constexpr int32_t Depths[] = {1, 4, 8, 16, 24, 32};

constexpr uint8_t HugeUnit = 0xA7;

// What stands before the palette and the pixels.
struct header {
    uint8_t Unit;  // HugeUnit makes an image beyond all limits
    uint8_t Width;
    uint8_t Height;
    uint8_t Depth;
    uint8_t Told;  // how many bytes fewer than there are the image tells of
    uint8_t Colours;
};

struct input {
    pixmap Image;
    std::vector<uint32_t> Palette;
    std::vector<uint8_t> Pixels;
};

input readInput(std::span<const uint8_t> bytes)
{
    header head = {};
    const size_t headBytes = std::min(bytes.size(), sizeof head);
    std::memcpy(&head, bytes.data(), headBytes);
    bytes = bytes.subspan(headBytes);

    input made;
    made.Palette.resize(std::min<size_t>(head.Colours, bytes.size() / 4));
    if (!made.Palette.empty())
        std::memcpy(made.Palette.data(), bytes.data(), 4 * made.Palette.size());
    bytes = bytes.subspan(4 * made.Palette.size());
    made.Pixels.assign(bytes.begin(), bytes.end());
    const uint32_t unit = head.Unit == HugeUnit ? 1U << 20 : 1;
    made.Image.Width = head.Width * unit;
    made.Image.Height = head.Height * unit;
    made.Image.Bits = Depths[head.Depth % std::size(Depths)];
    made.Image.PaletteSize = static_cast<uint32_t>(made.Palette.size());
    made.Image.Palette = made.Palette.data();
    made.Image.Pixels = made.Pixels.data();
    made.Image.Size = static_cast<uint32_t>(bytes.size() - std::min<size_t>(head.Told, bytes.size()));
    return made;
}

std::vector<uint8_t> copyOf(std::span<const uint8_t> bytes)
{
    return {bytes.begin(), bytes.end()};
}

// Gives what the stream decodes to, as far as it is not too much.
std::vector<uint8_t> decodesAlikeInAnyRoom(std::span<const uint8_t> stream, bool& isLarge)
{
    pixmapBytes much(Most);
    pixmapBytes few(Few);
    const bool isRight = pixmapDecode(stream, much);
    require(pixmapDecode(stream, few) == isRight);
    require(much.Count() == few.Count());
    require(isRight || much.Count() == 0);
    require(much.Held().size() == (much.Count() > Most ? 0 : much.Count()));
    if (few.Count() <= Few)
        require(copyOf(few.Held()) == copyOf(much.Held()));
    else
        require(few.Held().empty());
    isLarge = much.Count() > Most;
    return copyOf(much.Held());
}

// All of its bytes can be read, and are as many as it tells.
uint64_t sumOf(const pixmap& image)
{
    require(image.Size == uint64_t{image.Stride} * image.Height);
    require(image.Bits < 0 || image.Width == 0 ||
            image.Stride == pixmapStride(static_cast<uint32_t>(image.Bits), image.Width));
    uint64_t sum = 0;
    for (uint32_t i = 0; i < image.Size; ++i)
        sum = sum * 31 + image.Pixels[i];
    for (uint32_t i = 0; i < image.PaletteSize; ++i)
        sum = sum * 31 + image.Palette[i];
    return sum;
}

uint64_t sumAt(int32_t bits, const pixmap& image)
{
    pixmapDyn made;
    made.Bits = bits;
    made = image;
    require(made.Width == image.Width || made.Width == 0);
    require(made.Height == image.Height || made.Width == 0);
    return sumOf(made);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fakeReset();
    const input made = readInput({data, size});
    pixmap image = made.Image;
    for (const int32_t bits : {image.Bits, 16, 32})
        sumAt(bits, image);

    bool isLarge = false;
    const std::vector<uint8_t> pixels = decodesAlikeInAnyRoom({image.Pixels, image.Size}, isLarge);
    if (isLarge)
        return 0;
    pixmap plain = image;
    plain.Pixels = pixels.data();
    plain.Size = static_cast<uint32_t>(pixels.size());
    image.Bits = -image.Bits;
    for (const int32_t bits : {plain.Bits, 16, 32})
        require(sumAt(bits, image) == sumAt(bits, plain));
    require(fakeDebugText().empty());
    return 0;
}
