#include "toolkit/pixmapBits.h"

#include <algorithm>
#include <iterator>

namespace {

// How many bits a number has, by the 1 bits before it.
constexpr unsigned NumberWidths[] = {7, 14, 21, 28, 32};

}  // namespace

uint32_t pixmapBits::Take(unsigned count)
{
    unsigned missing = static_cast<unsigned>(std::min<uint64_t>(count, Left()));
    uint32_t value = 0;
    while (missing > 0) {
        const unsigned unread = 8 - static_cast<unsigned>(Position % 8);
        const unsigned taken = std::min(missing, unread);
        const uint32_t byte = Bytes[static_cast<size_t>(Position / 8)];
        value = value << taken | (byte >> (unread - taken) & ((1U << taken) - 1));
        Position += taken;
        missing -= taken;
    }
    return value;
}

uint64_t pixmapBits::Number()
{
    for (const unsigned width : NumberWidths)
        if (Take(1) == 0)
            return uint64_t{Take(width)} + 1;
    return 0;
}
