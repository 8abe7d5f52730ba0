// Rectangles of whole pixels, as controls and surfaces are placed.
#pragma once

#include <algorithm>
#include <cstdint>

struct rect {
    int32_t Left = 0, Top = 0, Right = 0, Bottom = 0;  // right and bottom are just outside

    int32_t Width() const { return Right - Left; }
    int32_t Height() const { return Bottom - Top; }
    bool IsEmpty() const { return Right <= Left || Bottom <= Top; }
    bool operator==(const rect&) const = default;
};

constexpr rect rectCut(const rect& a, const rect& b)
{
    return {std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
            std::min(a.Bottom, b.Bottom)};
}

constexpr bool rectMeet(const rect& a, const rect& b)
{
    return a.Left < b.Right && b.Left < a.Right && a.Top < b.Bottom && b.Top < a.Bottom;
}

constexpr bool rectHas(const rect& area, int32_t x, int32_t y)
{
    return x >= area.Left && x < area.Right && y >= area.Top && y < area.Bottom;
}

// Whether `outer` has every pixel of `inner`.
constexpr bool rectCovers(const rect& outer, const rect& inner)
{
    return outer.Left <= inner.Left && outer.Top <= inner.Top && outer.Right >= inner.Right &&
           outer.Bottom >= inner.Bottom;
}
