#include "tests/platform/screen/drawContract.h"

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

const char* drawContractLacks(drawAbility)
{
    return nullptr;
}

// Of a screen whose pixels are stored as ours are, as a virtual one's are.
std::optional<uint32_t> drawContractScreen(int32_t x, int32_t y)
{
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    std::optional<uint32_t> pixel;
    if (xcb_connection_has_error(connection) == 0) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
            xcb_get_image_reply(connection,
                                xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root,
                                              static_cast<int16_t>(x), static_cast<int16_t>(y), 1, 1, ~0u),
                                nullptr),
            &std::free);
        if (reply && xcb_get_image_data_length(reply.get()) >= 4) {
            const uint8_t* bytes = xcb_get_image_data(reply.get());
            pixel = static_cast<uint32_t>(bytes[2] << 16 | bytes[1] << 8 | bytes[0]);
        }
    }
    xcb_disconnect(connection);
    return pixel;
}

// The font library links its records by distances, which the leak checker does not take for pointers: what it
// keeps until the end looks lost.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}
