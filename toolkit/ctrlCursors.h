// The thirteen cursors of the toolkit.
#pragma once

#include "platform/window.h"

enum : uint8_t {
    cursorTurnUp = 1,    // a curved bar open upward, with arrow heads
    cursorTurnDown = 2,  // the same upside down
    cursorNo = 3,
    cursorSplitRows = 4,     // two horizontal bars, arrows up and down
    cursorSplitColumns = 5,  // two vertical bars, arrows left and right
    cursorHand = 6,
    cursorSizeAll = 7,
    cursorSizeUpDown = 8,
    cursorSizeLeftRight = 9,
    cursorArrow = 10,
    cursorText = 11,
    cursorSizeFalling = 12,
    cursorSizeRising = 13,
};

// Loads the system's cursor or draws one of ours. 0 when it cannot be had.
cursorId ctrlCursorMake(windowSystem& system, unsigned id);

// The shape of a drawn cursor, id 1, 2, 4 or 5: white, with a black outline of one pixel.
windowCursorShape ctrlCursorShape(unsigned id);
