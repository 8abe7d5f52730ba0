// Tells double clicks from clicks.
#pragma once

#include "platform/windowMessages.h"

#include <cstdint>

class windowClicks
{
public:
    static constexpr uint32_t LongestPauseMs = 500;
    static constexpr int32_t FarthestPixels = 4;

    // A button went down. True when it is the second press of a double click; a third begins anew.
    bool Press(windowId window, uint32_t button, uint32_t timeMs, int32_t x, int32_t y);

private:
    windowId Window = 0;
    uint32_t Button = 0;
    uint32_t Time = 0;
    int32_t X = 0;
    int32_t Y = 0;
};
