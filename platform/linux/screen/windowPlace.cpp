// Where windows are, and how large: what the program asks for.
#include "platform/clock.h"
#include "platform/linux/screen/windowAreas.h"
#include "platform/linux/screen/windowBackend.h"
#include "platform/linux/screen/windowHints.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int32_t LargestSize = 16384;
constexpr int64_t PlacePatienceNs = 250'000'000;

int32_t coordinate(int32_t value)
{
    return std::clamp<int32_t>(value, std::numeric_limits<int16_t>::min(),
                               std::numeric_limits<int16_t>::max());
}

int64_t sizeOf(const windowEdges& area)
{
    return windowPoint(widthOf(area), heightOf(area));
}

// What a placing makes of an area.
windowEdges placed(const windowPlacing& placing, const windowEdges& area)
{
    const bool keepsPosition = (placing.Flags & placeKeepPosition) != 0;
    const bool keepsSize = (placing.Flags & placeKeepSize) != 0;
    const int32_t x = keepsPosition ? area.Left : coordinate(placing.X);
    const int32_t y = keepsPosition ? area.Top : coordinate(placing.Y);
    const int32_t width = keepsSize ? widthOf(area) : std::clamp(placing.Width, 0, LargestSize);
    const int32_t height = keepsSize ? heightOf(area) : std::clamp(placing.Height, 0, LargestSize);
    return {x, y, x + width, y + height};
}

}  // namespace

bool windowBackend::Place(windowId window, windowOrder order, const windowEdges& frame, uint32_t flags)
{
    if (Find(window) == nullptr)
        return false;
    windowPlacing placing{window, 0, frame.Left, frame.Top, widthOf(frame), heightOf(frame), flags};
    if (!Tell(window, msgPosChanging, 0, static_cast<int64_t>(reinterpret_cast<intptr_t>(&placing))))
        return false;
    windowRecord* record = Find(window);
    const windowEdges area = placed(placing, record->Area);
    if (hasMoved(record->Area, area) || hasGrown(record->Area, area)) {
        const windowEdges old = record->Area;
        MoveTo(*record, area);
        TellPlace(window, old, false);
    }
    record = Find(window);
    if (record != nullptr && order != windowOrder::Keep && (flags & placeKeepOrder) == 0) {
        SetTopmost(*record, order == windowOrder::Topmost);
        if (order == windowOrder::Topmost && record->Visible && (flags & placeNoActivate) == 0)
            Raise(window);
    }
    xcb_flush(Display.Connection);
    return true;
}

void windowBackend::MoveTo(windowRecord& record, const windowEdges& area)
{
    record.PaintAsked = record.PaintAsked || (record.Visible && hasGrown(record.Area, area));
    record.Area = area;
    SetSizeHints(record);
    Configure(record);
    ExpectPlace(record);
}

// A window manager takes its time.
void windowBackend::ExpectPlace(windowRecord& record)
{
    record.PlaceUntil = record.Visible && !record.IsMenu ? clockSteadyNs() + PlacePatienceNs : 0;
}

void windowBackend::TellPlace(windowId window, const windowEdges& old, bool sizeAnyway)
{
    const windowRecord* record = Find(window);
    const windowEdges area = record->Area;
    if (hasMoved(old, area) && !Tell(window, msgMove, 0, windowPoint(area.Left, area.Top)))
        return;
    record = Find(window);
    if (hasGrown(old, area) || sizeAnyway)
        Tell(window, msgSize, record->Maximised ? sizedMaximised : sizedRestored, sizeOf(area));
}

void windowBackend::Configure(const windowRecord& record)
{
    const uint32_t values[] = {static_cast<uint32_t>(record.Area.Left),
                               static_cast<uint32_t>(record.Area.Top),
                               static_cast<uint32_t>(std::max(widthOf(record.Area), 1)),
                               static_cast<uint32_t>(std::max(heightOf(record.Area), 1))};
    xcb_configure_window(Display.Connection, record.Window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
}

void windowBackend::SetSizeHints(const windowRecord& record)
{
    Display.SetWords(record.Window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                     windowHintsOfSize(record.Style, record.Area, record.Least, record.Most));
}
