#include "platform/linux/screen/windowClicks.h"

#include <cstdlib>

bool windowClicks::Press(windowId window, uint32_t button, uint32_t timeMs, int32_t x, int32_t y)
{
    // The server's clock wraps; the difference does not mind.
    const bool isSecond = window != 0 && window == Window && button == Button &&
                          timeMs - Time <= LongestPauseMs && std::abs(x - X) <= FarthestPixels &&
                          std::abs(y - Y) <= FarthestPixels;
    Window = isSecond ? 0 : window;
    Button = button;
    Time = timeMs;
    X = x;
    Y = y;
    return isSecond;
}
