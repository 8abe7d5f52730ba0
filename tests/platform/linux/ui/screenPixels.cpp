#include "tests/platform/screen/screenPixels.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace {

struct freeing {
    void operator()(void* block) const { std::free(block); }
};

struct leaving {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

constexpr uint32_t AllPlanes = ~uint32_t{0};
constexpr uint32_t Colours = 0xFFFFFF;

}  // namespace

std::vector<uint32_t> screenPixels(const windowArea& area)
{
    const std::unique_ptr<xcb_connection_t, leaving> connection(xcb_connect(nullptr, nullptr));
    const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
    const auto width = static_cast<uint16_t>(area.Right - area.Left);
    const auto height = static_cast<uint16_t>(area.Bottom - area.Top);
    const std::unique_ptr<xcb_get_image_reply_t, freeing> reply(
        xcb_get_image_reply(connection.get(),
                            xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root,
                                          static_cast<int16_t>(area.Left), static_cast<int16_t>(area.Top),
                                          width, height, AllPlanes),
                            nullptr));
    std::vector<uint32_t> pixels(size_t{width} * height);
    const size_t size = pixels.size() * sizeof(uint32_t);
    if (!reply || static_cast<size_t>(xcb_get_image_data_length(reply.get())) < size)
        return {};
    std::memcpy(pixels.data(), xcb_get_image_data(reply.get()), size);
    for (uint32_t& pixel : pixels)
        pixel &= Colours;
    return pixels;
}
