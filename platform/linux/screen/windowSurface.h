// What drawing needs to know of a window. All of it belongs to the interface thread.
#pragma once

#include "platform/windowMessages.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>

struct windowSurface {
    xcb_connection_t* Connection = nullptr;
    xcb_window_t Window = 0;
    xcb_visualtype_t* Visual = nullptr;
    uint8_t Depth = 0;
    bool Shm = false;                     // the server can read this program's shared memory
    std::weak_ptr<const void> Connected;  // expires with the connection, which may outlive the window
};

// False when there is no such window. What it gives holds as long as the window lives.
bool windowSurfaceOf(windowId window, windowSurface& surface);

// Called when a part of the window was uncovered and must be shown again from what is retained.
using windowExposed = void (*)(void* context, int x, int y, int width, int height);

// One for each window; null ends it. Without one, what is uncovered asks for a msgPaint.
void windowOnExpose(windowId window, windowExposed exposed, void* context);
