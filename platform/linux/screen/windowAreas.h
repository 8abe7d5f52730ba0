// What is asked of areas on the screen, in one word each.
#pragma once

#include "platform/windowMessages.h"

#include <cstdint>

inline int32_t widthOf(const windowEdges& area)
{
    return area.Right - area.Left;
}

inline int32_t heightOf(const windowEdges& area)
{
    return area.Bottom - area.Top;
}

inline bool hasMoved(const windowEdges& from, const windowEdges& to)
{
    return from.Left != to.Left || from.Top != to.Top;
}

inline bool hasGrown(const windowEdges& from, const windowEdges& to)
{
    return widthOf(from) != widthOf(to) || heightOf(from) != heightOf(to);
}

inline bool isSame(const windowEdges& one, const windowEdges& other)
{
    return !hasMoved(one, other) && !hasGrown(one, other);
}
