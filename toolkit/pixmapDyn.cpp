#include "toolkit/pixmapDyn.h"

#include "foundations/fatal/crashFatal.h"
#include "toolkit/pixmapDecode.h"
#include "toolkit/pixmapRows.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// Fits all depths that name their colours.
constexpr uint32_t PaletteMost = 256;

std::span<const uint8_t> PixelsOf(const pixmap& image)
{
    if (!image.Pixels)
        return {};
    return {image.Pixels, image.Size};
}

std::span<const uint32_t> PaletteOf(const pixmap& image)
{
    if (!image.Palette)
        return {};
    return {image.Palette, std::min(image.PaletteSize, PaletteMost)};
}

// The pixels of an image with all rows that it tells; those that are missing are added as zeros.
class wholeRows
{
public:
    explicit wholeRows(const pixmap& image)
        : Stride(pixmapStride(static_cast<uint32_t>(image.Bits), image.Width)), First(image.Pixels)
    {
        const std::span<const uint8_t> there = PixelsOf(image);
        const uint64_t needed = Stride * image.Height;
        if (there.size() >= needed)
            return;
        Padded = pixmapZeroed(needed);
        if (Padded)
            std::ranges::copy(there, Padded.get());
        First = Padded.get();
    }

    // False when there was no memory for what is missing.
    bool IsWhole() const { return First != nullptr; }
    const uint8_t* Row(uint64_t y) const { return First + y * Stride; }

private:
    uint64_t Stride;
    const uint8_t* First;
    pixmapBlock Padded;
};

}  // namespace

// The new image is made beside the old one, because the source may lie in that.
pixmapDyn& pixmapDyn::operator=(const pixmap& source)
{
    if (&source == this)
        return *this;
    pixmapDyn made;
    made.Bits = Bits;
    made.RowMultiple = RowMultiple;
    made.Take(source);
    static_cast<pixmap&>(*this) = made;
    PaletteBlock = std::move(made.PaletteBlock);
    PixelBlock = std::move(made.PixelBlock);
    return *this;
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the one that it calls handles it
pixmapDyn& pixmapDyn::operator=(const pixmapDyn& source)
{
    return *this = static_cast<const pixmap&>(source);
}

void pixmapDyn::Take(const pixmap& source)
{
    if (source.Bits == Bits)
        TakeSame(source);
    else if (source.Bits < 0 && source.Bits > std::numeric_limits<int32_t>::min())
        TakeCompressed(source);
    else if (Bits == 16 && (source.Bits == 32 || pixmapRowTo32(source.Bits)))
        TakeAs16(source);
    else if (Bits == 32 && pixmapRowTo32(source.Bits))
        TakeAs32(source);
    else {
        Make(source);
        crashFatal("pixmapDyn - No conversion between these depths");
    }
}

// All zeros in the size of `source`. False when that cannot be had, and the image is empty.
bool pixmapDyn::Make(const pixmap& source)
{
    MakeEmpty();
    const bool isStream = Bits < 0;
    const uint64_t stride = isStream ? 0 : pixmapStride(static_cast<uint32_t>(Bits), source.Width);
    const uint64_t multiple = std::max(RowMultiple, uint32_t{1});
    const uint64_t rows = (source.Height + multiple - 1) / multiple * multiple;
    if (stride > pixmapBytesMost || (stride > 0 && rows > pixmapBytesMost / stride))
        return false;
    const uint64_t bytes = isStream ? source.Size : stride * rows;
    if (bytes > pixmapBytesMost)
        return false;
    PixelBlock = pixmapZeroed(bytes);
    if (!PixelBlock && bytes > 0)
        return false;
    Pixels = PixelBlock.get();
    Width = source.Width;
    Height = source.Height;
    Stride = static_cast<uint32_t>(stride);
    Size = isStream ? source.Size : static_cast<uint32_t>(stride * Height);
    return true;
}

void pixmapDyn::MakeEmpty()
{
    const int32_t bits = Bits;
    const uint32_t multiple = RowMultiple;
    PaletteBlock.reset();
    PixelBlock.reset();
    static_cast<pixmap&>(*this) = pixmap{};
    Bits = bits;
    RowMultiple = multiple;
}

void pixmapDyn::TakeSame(const pixmap& source)
{
    if (!Make(source))
        return;
    const std::span<const uint8_t> there = PixelsOf(source);
    std::ranges::copy(there.first(std::min<size_t>(there.size(), Size)), PixelBlock.get());
    TakePalette(source);
}

void pixmapDyn::TakePalette(const pixmap& source)
{
    const std::span<const uint32_t> there = PaletteOf(source);
    if (there.empty())
        return;
    PaletteBlock.reset(static_cast<uint8_t*>(memAlloc(there.size_bytes(), true)));
    if (!PaletteBlock)
        return MakeEmpty();
    std::memcpy(PaletteBlock.get(), there.data(), there.size_bytes());
    // The heap aligns every block to more than a number needs.
    Palette = static_cast<const uint32_t*>(static_cast<const void*>(PaletteBlock.get()));
    PaletteSize = static_cast<uint32_t>(there.size());
}

void pixmapDyn::TakeCompressed(const pixmap& source)
{
    pixmapDyn plain;
    plain.Bits = -source.Bits;
    if (plain.Make(source)) {
        pixmapBytes decoded(pixmapBytesMost);
        pixmapDecode(PixelsOf(source), decoded);
        const std::span<const uint8_t> there = decoded.Held();
        std::ranges::copy(there.first(std::min<size_t>(there.size(), plain.Size)), plain.PixelBlock.get());
        plain.TakePalette(source);
    }
    Take(plain);
}

void pixmapDyn::TakeAs16(const pixmap& source)
{
    pixmapDyn full;
    full.Bits = 32;
    full = source;
    // Rows without pixels can be told by the thousand million.
    if (!Make(full) || Size == 0)
        return;
    for (uint64_t y = 0; y < Height; ++y)
        pixmapRow32To16(full.Pixels + y * full.Stride, Width, PixelBlock.get() + y * Stride);
}

void pixmapDyn::TakeAs32(const pixmap& source)
{
    if (!Make(source) || Size == 0)
        return;
    const wholeRows rows(source);
    if (!rows.IsWhole())
        return MakeEmpty();
    pixmapColours colours{};
    std::ranges::copy(PaletteOf(source), colours.begin());
    const pixmapRowConverter convert = pixmapRowTo32(source.Bits);
    for (uint64_t y = 0; y < Height; ++y)
        convert(rows.Row(y), Width, colours, PixelBlock.get() + y * Stride);
}
