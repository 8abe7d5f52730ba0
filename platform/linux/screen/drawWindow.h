// The target on a window: an image of its client area, of which the window is shown what was drawn.
#pragma once

#include "platform/linux/screen/drawCairo.h"

// Null when the window is gone or memory fails; `error` is then a code of the system.
std::unique_ptr<drawTarget> drawMakeWindowTarget(windowId window, uint32_t width, uint32_t height,
                                                 uint32_t& error);
