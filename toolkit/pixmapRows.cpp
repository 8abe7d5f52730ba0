#include "toolkit/pixmapRows.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr uint8_t Opaque = 0xFF;

void Put32(uint8_t* out, uint32_t value)
{
    out[0] = static_cast<uint8_t>(value);
    out[1] = static_cast<uint8_t>(value >> 8);
    out[2] = static_cast<uint8_t>(value >> 16);
    out[3] = static_cast<uint8_t>(value >> 24);
}

uint32_t Get32(const uint8_t* pixel)
{
    return pixel[0] | uint32_t{pixel[1]} << 8 | uint32_t{pixel[2]} << 16 | uint32_t{pixel[3]} << 24;
}

void Row1(const uint8_t* row, size_t width, const pixmapColours& colours, uint8_t* out)
{
    for (size_t x = 0; x < width; ++x)
        Put32(out + 4 * x, colours[row[x / 8] >> (7 - x % 8) & 1]);
}

void Row4(const uint8_t* row, size_t width, const pixmapColours& colours, uint8_t* out)
{
    for (size_t x = 0; x < width; ++x)
        Put32(out + 4 * x, colours[row[x / 2] >> (x % 2 == 0 ? 4 : 0) & 0xF]);
}

void Row8(const uint8_t* row, size_t width, const pixmapColours& colours, uint8_t* out)
{
    for (size_t x = 0; x < width; ++x)
        Put32(out + 4 * x, colours[row[x]]);
}

// The free low bits of a channel stay 0, so full brightness becomes 0xF8, or 0xFC in green.
void Row16(const uint8_t* row, size_t width, const pixmapColours& /*colours*/, uint8_t* out)
{
    for (size_t x = 0; x < width; ++x) {
        const uint8_t low = row[2 * x];
        const uint8_t high = row[2 * x + 1];
        uint8_t* const pixel = out + 4 * x;
        pixel[0] = static_cast<uint8_t>(low << 3);
        pixel[1] = static_cast<uint8_t>((low >> 3 & 0x1C) | high << 5);
        pixel[2] = high & 0xF8;
        pixel[3] = Opaque;
    }
}

void Row24(const uint8_t* row, size_t width, const pixmapColours& /*colours*/, uint8_t* out)
{
    for (size_t x = 0; x < width; ++x) {
        std::copy_n(row + 3 * x, 3, out + 4 * x);
        out[4 * x + 3] = Opaque;
    }
}

struct converterRow {
    int32_t Bits;
    pixmapRowConverter Convert;
};

constexpr converterRow Converters[] = {
    {1, Row1}, {4, Row4}, {8, Row8}, {16, Row16}, {24, Row24},
};

}  // namespace

pixmapRowConverter pixmapRowTo32(int32_t bits)
{
    const auto* const row = std::ranges::find(Converters, bits, &converterRow::Bits);
    return row == std::end(Converters) ? nullptr : row->Convert;
}

void pixmapRow32To16(const uint8_t* row, size_t width, uint8_t* out)
{
    for (size_t x = 0; x < width; ++x) {
        const uint32_t value = Get32(row + 4 * x);
        const uint32_t packed = (value >> 8 & 0xF800) | (value >> 5 & 0x7E0) | (value >> 3 & 0x1F);
        out[2 * x] = static_cast<uint8_t>(packed);
        out[2 * x + 1] = static_cast<uint8_t>(packed >> 8);
    }
}
