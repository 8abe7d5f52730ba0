// One window, as the interface thread knows it. What other threads may touch is atomic.
#pragma once

#include "platform/linux/screen/windowSurface.h"
#include "platform/linux/screen/windowTouches.h"
#include "platform/window.h"

#include <xcb/xcb.h>

#include <atomic>
#include <cstdint>

struct windowRecord {
    windowId Id = 0;
    xcb_window_t Window = 0;
    windowId Owner = 0;
    uint32_t Style = 0;
    uint32_t StyleExtended = 0;
    bool PerMonitor = false;
    bool IsMenu = false;  // the window manager has nothing to do with it

    std::atomic<void*> Object{nullptr};
    std::atomic<bool> PaintAsked{false};

    // What the receiver was told.
    windowEdges Area{};
    bool Enabled = true;
    bool Visible = false;
    bool Minimised = false;
    bool Maximised = false;

    bool Mapped = false;           // the server shows it
    bool FocusWhenMapped = false;  // asked for when it could not be had yet
    bool IsModal = false;          // the window manager was told so
    bool Dying = false;
    uint64_t Order = 0;      // the highest was raised last
    int64_t PlaceUntil = 0;  // until then what the program asked for counts as done; 0 once it is
    windowEdges Restored{};  // the area to come back to, where no window manager keeps it
    windowExtent Least{};
    windowExtent Most{};
    xcb_cursor_t Cursor = XCB_CURSOR_NONE;

    windowTouches Touches;
    windowExposed Exposed = nullptr;
    void* ExposedContext = nullptr;
};
