// What the window manager is told of a window's size and frame. Computed only: nothing here asks the display.
#pragma once

#include "platform/window.h"

#include <array>
#include <cstdint>

// WM_NORMAL_HINTS: 18 words.
using windowNormalHints = std::array<uint32_t, 18>;

// The client area has `area` and may have sizes from `least` to `most`, where 0 is no limit. A window that
// cannot be resized has the one size, unless it can become maximised.
windowNormalHints windowHintsOfSize(uint32_t style, const windowEdges& area, const windowExtent& least,
                                    const windowExtent& most);

// _MOTIF_WM_HINTS: 5 words.
using windowFrameHints = std::array<uint32_t, 5>;

windowFrameHints windowHintsOfFrame(uint32_t style);
