// Cursors: the theme's, and those of the program's own shapes.
#pragma once

#include "platform/window.h"

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>

struct xcb_cursor_context_t;

// The picture of a shape, 32 by 32 pixels of 0xAARRGGBB, from the top. What lets the screen through is clear;
// a pixel that would invert the screen shows in black, as nothing here can invert.
std::array<uint32_t, 1024> windowCursorPixels(const windowCursorShape& shape);

class windowCursors
{
public:
    windowCursors() = default;
    ~windowCursors();
    windowCursors(const windowCursors&) = delete;
    windowCursors& operator=(const windowCursors&) = delete;

    void Open(xcb_connection_t* connection, xcb_screen_t* screen);

    // 0 when the theme has none of its names.
    xcb_cursor_t System(windowCursor which);

    // 0 when the server cannot.
    xcb_cursor_t Make(const windowCursorShape& shape);

    // One that Make gave; others are left alone.
    void Destroy(xcb_cursor_t cursor);

private:
    xcb_connection_t* Connection = nullptr;
    xcb_screen_t* Screen = nullptr;
    xcb_cursor_context_t* Theme = nullptr;
    xcb_render_pictformat_t Format = 0;
    std::array<xcb_cursor_t, 9> Loaded{};
};
