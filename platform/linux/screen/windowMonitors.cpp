#include "platform/linux/screen/windowMonitors.h"

#include <xcb/randr.h>

#include <algorithm>
#include <charconv>

namespace {

constexpr uint32_t NormalDPI = 96;
constexpr uint32_t LargestDPI = 960;
constexpr size_t AreaWords = 4;

windowArea common(const windowArea& first, const windowArea& second)
{
    return {std::max(first.Left, second.Left), std::max(first.Top, second.Top),
            std::min(first.Right, second.Right), std::min(first.Bottom, second.Bottom)};
}

bool isEmpty(const windowArea& area)
{
    return area.Right <= area.Left || area.Bottom <= area.Top;
}

int64_t size(const windowArea& area)
{
    return isEmpty(area) ? 0 : int64_t{area.Right - area.Left} * (area.Bottom - area.Top);
}

}  // namespace

std::vector<windowArea> windowMonitorAreas(const windowDisplay& display)
{
    std::vector<windowArea> areas;
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(display.Connection, &xcb_randr_id);
    if (extension != nullptr && extension->present != 0) {
        const xcbReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
            display.Connection, xcb_randr_get_monitors(display.Connection, display.Screen->root, 1),
            nullptr));
        xcb_randr_monitor_info_iterator_t all{};
        if (reply)
            all = xcb_randr_get_monitors_monitors_iterator(reply.get());
        for (; all.rem > 0; xcb_randr_monitor_info_next(&all)) {
            const xcb_randr_monitor_info_t& one = *all.data;
            const windowArea area{one.x, one.y, one.x + one.width, one.y + one.height};
            areas.insert(one.primary != 0 ? areas.begin() : areas.end(), area);
        }
    }
    if (!areas.empty())
        return areas;
    // The setup tells the size that the screen had when the connection was made.
    const xcbReply<xcb_get_geometry_reply_t> whole(xcb_get_geometry_reply(
        display.Connection, xcb_get_geometry(display.Connection, display.Screen->root), nullptr));
    if (whole)
        areas.push_back({0, 0, whole->width, whole->height});
    return areas;
}

windowArea windowWorkArea(const windowDisplay& display, const windowArea& monitor)
{
    const xcb_window_t root = display.Screen->root;
    const std::vector<uint32_t> areas = display.Words(root, display.Atom(atomNetWorkArea));
    const std::vector<uint32_t> desktop = display.Words(root, display.Atom(atomNetDesktop));
    size_t first = desktop.empty() ? 0 : desktop[0] * AreaWords;
    if (first + AreaWords > areas.size())
        first = 0;
    if (first + AreaWords > areas.size() || !display.HasManager())
        return monitor;
    const auto left = static_cast<int32_t>(areas[first]);
    const auto top = static_cast<int32_t>(areas[first + 1]);
    const windowArea work{left, top, left + static_cast<int32_t>(areas[first + 2]),
                          top + static_cast<int32_t>(areas[first + 3])};
    const windowArea cut = common(work, monitor);
    return isEmpty(cut) ? monitor : cut;
}

const windowArea* windowMonitorOf(const std::vector<windowArea>& monitors, const windowArea& area)
{
    const windowArea point{area.Left, area.Top, std::max(area.Right, area.Left + 1),
                           std::max(area.Bottom, area.Top + 1)};
    const windowArea* best = nullptr;
    int64_t most = 0;
    for (const windowArea& monitor : monitors) {
        const int64_t shared = size(common(monitor, point));
        if (shared > most) {
            most = shared;
            best = &monitor;
        }
    }
    return best;
}

uint32_t windowDesktopDPI(const windowDisplay& display)
{
    return windowDPIOfResources(display.Text(display.Screen->root, XCB_ATOM_RESOURCE_MANAGER));
}

// Xft.dpi:	144
uint32_t windowDPIOfResources(std::string_view resources)
{
    constexpr std::string_view name = "Xft.dpi:";
    while (!resources.empty()) {
        const size_t end = std::min(resources.find('\n'), resources.size());
        std::string_view line = resources.substr(0, end);
        resources.remove_prefix(std::min(end + 1, resources.size()));
        if (!line.starts_with(name))
            continue;
        line.remove_prefix(name.size());
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        uint32_t dpi = 0;
        std::from_chars(line.data(), line.data() + line.size(), dpi);
        return dpi >= NormalDPI / 2 && dpi <= LargestDPI ? dpi : NormalDPI;
    }
    return NormalDPI;
}
