#include "platform/linux/screen/windowCursors.h"

#include <xcb/xcb_cursor.h>
#include <xcb/xcb_renderutil.h>

#include <algorithm>
#include <cstddef>
#include <span>

namespace {

constexpr uint16_t ShapeSize = 32;
constexpr uint32_t Opaque = 0xFF000000;
constexpr uint32_t White = 0xFFFFFFFF;

// Themes know the names of the web, or those of old, or both.
struct cursorRow {
    const char* Names[3];
};

// In the order of windowCursor.
constexpr cursorRow Rows[] = {
    {{"not-allowed", "crossed_circle", "X_cursor"}},
    {{"pointer", "hand2", "hand1"}},
    {{"all-scroll", "move", "fleur"}},
    {{"ns-resize", "size_ver", "sb_v_double_arrow"}},
    {{"ew-resize", "size_hor", "sb_h_double_arrow"}},
    {{"default", "left_ptr", "arrow"}},
    {{"text", "ibeam", "xterm"}},
    {{"nwse-resize", "size_fdiag", "bottom_right_corner"}},
    {{"nesw-resize", "size_bdiag", "bottom_left_corner"}},
};

}  // namespace

std::array<uint32_t, 1024> windowCursorPixels(const windowCursorShape& shape)
{
    std::array<uint32_t, 1024> pixels{};
    for (size_t y = 0; y < ShapeSize; ++y) {
        for (size_t x = 0; x < ShapeSize; ++x) {
            const uint32_t bit = 0x80000000u >> x;
            const bool keeps = (shape.And[y] & bit) != 0;
            const bool flips = (shape.Xor[y] & bit) != 0;
            if (!keeps)
                pixels[y * ShapeSize + x] = flips ? White : Opaque;
            else if (flips)
                pixels[y * ShapeSize + x] = Opaque;
        }
    }
    return pixels;
}

windowCursors::~windowCursors()
{
    if (Theme != nullptr)
        xcb_cursor_context_free(Theme);
}

void windowCursors::Open(xcb_connection_t* connection, xcb_screen_t* screen)
{
    Connection = connection;
    Screen = screen;
    if (xcb_cursor_context_new(connection, screen, &Theme) != 0)
        Theme = nullptr;
    const xcb_render_query_pict_formats_reply_t* const formats = xcb_render_util_query_formats(connection);
    if (formats == nullptr)
        return;
    const xcb_render_pictforminfo_t* const colour =
        xcb_render_util_find_standard_format(formats, XCB_PICT_STANDARD_ARGB_32);
    Format = colour == nullptr ? 0 : colour->id;
}

xcb_cursor_t windowCursors::System(windowCursor which)
{
    const auto row = static_cast<size_t>(which);
    if (row >= Loaded.size() || Theme == nullptr)
        return XCB_CURSOR_NONE;
    for (const char* const name : Rows[row].Names) {
        if (Loaded[row] == XCB_CURSOR_NONE)
            Loaded[row] = xcb_cursor_load_cursor(Theme, name);
    }
    return Loaded[row];
}

xcb_cursor_t windowCursors::Make(const windowCursorShape& shape)
{
    if (Format == 0)
        return XCB_CURSOR_NONE;
    std::array<uint32_t, 1024> pixels = windowCursorPixels(shape);
    const xcb_setup_t* const setup = xcb_get_setup(Connection);
    if (setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) {
        for (uint32_t& pixel : pixels)
            pixel = __builtin_bswap32(pixel);
    }
    const xcb_pixmap_t image = xcb_generate_id(Connection);
    const xcb_gcontext_t context = xcb_generate_id(Connection);
    const xcb_render_picture_t picture = xcb_generate_id(Connection);
    const xcb_cursor_t cursor = xcb_generate_id(Connection);
    xcb_create_pixmap(Connection, 32, image, Screen->root, ShapeSize, ShapeSize);
    xcb_create_gc(Connection, context, image, 0, nullptr);
    xcb_put_image(Connection, XCB_IMAGE_FORMAT_Z_PIXMAP, image, context, ShapeSize, ShapeSize, 0, 0, 0, 32,
                  sizeof pixels, reinterpret_cast<const uint8_t*>(pixels.data()));
    xcb_render_create_picture(Connection, picture, image, Format, 0, nullptr);
    xcb_render_create_cursor(Connection, cursor, picture,
                             static_cast<uint16_t>(std::min<uint32_t>(shape.HotX, ShapeSize - 1)),
                             static_cast<uint16_t>(std::min<uint32_t>(shape.HotY, ShapeSize - 1)));
    xcb_render_free_picture(Connection, picture);
    xcb_free_gc(Connection, context);
    xcb_free_pixmap(Connection, image);
    return cursor;
}

void windowCursors::Destroy(xcb_cursor_t cursor)
{
    const bool isSystems = std::find(Loaded.begin(), Loaded.end(), cursor) != Loaded.end();
    if (cursor != XCB_CURSOR_NONE && !isSystems)
        xcb_free_cursor(Connection, cursor);
}
