#include "platform/linux/screen/drawShared.h"

#include "platform/linux/screen/drawBitmap.h"

#include <algorithm>
#include <bit>
#include <cairo-xcb.h>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

namespace {

constexpr size_t PixelBytes = 4;

bool storesPixelsAsWeDo(const windowSurface& surface)
{
    const xcb_setup_t* setup = xcb_get_setup(surface.Connection);
    const bool sameOrder = (setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST) ==
                           (std::endian::native == std::endian::little);
    const xcb_visualtype_t* visual = surface.Visual;
    if (!sameOrder || visual == nullptr || visual->red_mask != 0xFF0000 || visual->green_mask != 0xFF00 ||
        visual->blue_mask != 0xFF)
        return false;
    const std::span<const xcb_format_t> formats(xcb_setup_pixmap_formats(setup),
                                                static_cast<size_t>(xcb_setup_pixmap_formats_length(setup)));
    return std::ranges::any_of(formats, [&](const xcb_format_t& format) {
        return format.depth == surface.Depth && format.bits_per_pixel == 32 && format.scanline_pad == 32;
    });
}

// How many bytes of pixels one request takes.
size_t mostBytes(xcb_connection_t* connection)
{
    constexpr size_t RequestHead = 64;
    return size_t{xcb_get_maximum_request_length(connection)} * 4 - RequestHead;
}

bool Attaches(xcb_connection_t* connection, uint32_t segment, uint32_t memory)
{
    xcb_generic_error_t* const refused =
        xcb_request_check(connection, xcb_shm_attach_checked(connection, segment, memory, true));
    std::free(refused);
    return refused == nullptr;
}

}  // namespace

std::unique_ptr<drawShared> drawShared::Make(const windowSurface& surface, uint32_t width, uint32_t height)
{
    std::unique_ptr<drawShared> made(new drawShared(surface));
    const int columns = static_cast<int>(std::max(width, 1u));
    const int rows = static_cast<int>(std::max(height, 1u));
    made->IsDirect = storesPixelsAsWeDo(surface);
    if (!made->IsDirect || !surface.Shm || !made->Share(columns, rows))
        made->Surface_ = drawMakeSurface(CAIRO_FORMAT_RGB24, width, height);
    if (!made->Surface_)
        return nullptr;
    made->Context = xcb_generate_id(surface.Connection);
    constexpr uint32_t Off = 0;
    xcb_create_gc(surface.Connection, made->Context, surface.Window, XCB_GC_GRAPHICS_EXPOSURES, &Off);
    return made;
}

drawShared::~drawShared()
{
    // The window system may have closed the connection in the meantime.
    if (Context != 0 && !System.Connected.expired()) {
        Await();
        if (Segment != 0)
            xcb_shm_detach(System.Connection, Segment);
        xcb_free_gc(System.Connection, Context);
        xcb_flush(System.Connection);
    }
    Surface_.reset();
    if (Memory != nullptr)
        shmdt(Memory);
}

// False when the server cannot reach our memory, as over a network.
bool drawShared::Share(int width, int height)
{
    const size_t stride = static_cast<size_t>(width) * PixelBytes;
    const int id = shmget(IPC_PRIVATE, stride * static_cast<size_t>(height), IPC_CREAT | 0600);
    if (id < 0)
        return false;
    void* memory = shmat(id, nullptr, 0);
    const bool hasMemory = memory != reinterpret_cast<void*>(-1);
    const uint32_t segment = xcb_generate_id(System.Connection);
    const bool isShared = hasMemory && Attaches(System.Connection, segment, static_cast<uint32_t>(id));
    // It goes with the last who uses it, also when this program is killed.
    shmctl(id, IPC_RMID, nullptr);
    if (!isShared) {
        if (hasMemory)
            shmdt(memory);
        return false;
    }
    Memory = memory;
    Segment = segment;
    Surface_.reset(cairo_image_surface_create_for_data(
        static_cast<unsigned char*>(memory), CAIRO_FORMAT_RGB24, width, height, static_cast<int>(stride)));
    return cairo_surface_status(Surface_.get()) == CAIRO_STATUS_SUCCESS;
}

void drawShared::Show(const cairo_rectangle_int_t& part)
{
    if (!IsDirect) {
        ShowConverted(part);
    } else if (Segment == 0) {
        ShowSent(part);
    } else {
        const auto width = static_cast<uint16_t>(cairo_image_surface_get_width(Surface()));
        const auto height = static_cast<uint16_t>(cairo_image_surface_get_height(Surface()));
        const auto x = static_cast<int16_t>(part.x);
        const auto y = static_cast<int16_t>(part.y);
        xcb_shm_put_image(System.Connection, System.Window, Context, width, height,
                          static_cast<uint16_t>(part.x), static_cast<uint16_t>(part.y),
                          static_cast<uint16_t>(part.width), static_cast<uint16_t>(part.height), x, y,
                          System.Depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, Segment, 0);
    }
}

void drawShared::ShowSent(const cairo_rectangle_int_t& part)
{
    const size_t row = static_cast<size_t>(part.width) * PixelBytes;
    const int most = static_cast<int>(std::max<size_t>(mostBytes(System.Connection) / row, 1));
    const int stride = cairo_image_surface_get_stride(Surface());
    const unsigned char* pixels = cairo_image_surface_get_data(Surface());
    std::vector<uint8_t> rows;
    for (int done = 0; done < part.height; done += most) {
        const int count = std::min(most, part.height - done);
        rows.clear();
        for (int y = part.y + done; y < part.y + done + count; ++y) {
            const unsigned char* first = pixels + ptrdiff_t{stride} * y + ptrdiff_t{part.x} * 4;
            rows.insert(rows.end(), first, first + row);
        }
        xcb_put_image(System.Connection, XCB_IMAGE_FORMAT_Z_PIXMAP, System.Window, Context,
                      static_cast<uint16_t>(part.width), static_cast<uint16_t>(count),
                      static_cast<int16_t>(part.x), static_cast<int16_t>(part.y + done), 0, System.Depth,
                      static_cast<uint32_t>(rows.size()), rows.data());
    }
}

// For screens of few colours.
void drawShared::ShowConverted(const cairo_rectangle_int_t& part)
{
    if (System.Visual == nullptr)
        return;
    const cairoOwned<cairo_surface_t> window(cairo_xcb_surface_create(
        System.Connection, System.Window, System.Visual, cairo_image_surface_get_width(Surface()),
        cairo_image_surface_get_height(Surface())));
    const cairoOwned<cairo_t> context(cairo_create(window.get()));
    cairo_set_source_surface(context.get(), Surface(), 0, 0);
    cairo_rectangle(context.get(), part.x, part.y, part.width, part.height);
    cairo_fill(context.get());
    cairo_surface_flush(window.get());
    cairo_surface_finish(window.get());
}

void drawShared::Commit()
{
    if (Segment != 0) {
        Await();
        Reading = xcb_get_input_focus(System.Connection).sequence;
        IsReading = true;
    }
    xcb_flush(System.Connection);
}

void drawShared::Await()
{
    if (!IsReading)
        return;
    IsReading = false;
    std::free(xcb_get_input_focus_reply(System.Connection, {Reading}, nullptr));
}
