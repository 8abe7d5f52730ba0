// Where windows really are, and what they are told of it.
#include "platform/linux/screen/windowAreas.h"
#include "platform/linux/screen/windowBackend.h"
#include "platform/linux/screen/windowMonitors.h"

#include <algorithm>

namespace {

constexpr int64_t SettleMs = 100;  // between changes that belong together
constexpr int64_t FlightMs = 500;
constexpr uint32_t StateIconic = 3;

bool contains(const std::vector<uint32_t>& words, uint32_t word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

bool windowBackend::ClientArea(windowId window, windowEdges& area)
{
    const windowRecord* const record = Find(window);
    if (record == nullptr)
        return false;
    area = record->Area;
    actual state;
    const bool isSettled = record->Mapped && !record->Minimised && record->PlaceUntil == 0;
    if (isSettled && Ask(*record, state) && !state.Minimised && widthOf(area) > 0 && heightOf(area) > 0)
        area = state.Area;
    return true;
}

// False when the server does not tell.
bool windowBackend::Ask(const windowRecord& record, actual& state) const
{
    xcb_connection_t* const connection = Display.Connection;
    const xcb_window_t root = Display.Screen->root;
    const auto askedRoot = xcb_get_window_attributes(connection, root);
    const auto askedSize = xcb_get_geometry(connection, record.Window);
    const auto askedPlace = xcb_translate_coordinates(connection, record.Window, root, 0, 0);
    const xcbReply<xcb_get_window_attributes_reply_t> about(
        xcb_get_window_attributes_reply(connection, askedRoot, nullptr));
    const xcbReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(connection, askedSize, nullptr));
    const xcbReply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(connection, askedPlace, nullptr));
    if (!about || !size || !place)
        return false;
    state.Area = {place->dst_x, place->dst_y, place->dst_x + size->width, place->dst_y + size->height};
    state.IsManaged = (about->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) != 0 && !record.IsMenu;
    state.Minimised = record.Minimised;
    state.Maximised = record.Maximised;
    if (!state.IsManaged)
        return true;
    const std::vector<uint32_t> shown = Display.Words(record.Window, Display.Atom(atomWMState));
    const std::vector<uint32_t> states = Display.Words(record.Window, Display.Atom(atomNetState));
    state.Minimised = !shown.empty() && shown[0] == StateIconic;
    state.Maximised = contains(states, Display.Atom(atomNetStateMaximisedX)) &&
                      contains(states, Display.Atom(atomNetStateMaximisedY));
    return true;
}

// Tells the window what became of it that it has not been told. A patient one leaves time for what the
// program asked for.
void windowBackend::Reconcile(windowId window, bool patient)
{
    windowRecord* record = Find(window);
    actual state;
    if (record == nullptr || !record->Visible || !Ask(*record, state))
        return;
    const bool sameState = state.Minimised == record->Minimised && state.Maximised == record->Maximised;
    // A size of 0 is told as such, but no window has it.
    const bool isNothing = widthOf(record->Area) == 0 || heightOf(record->Area) == 0;
    if (isNothing && sameState)
        return;
    if (isSame(record->Area, state.Area) && sameState) {
        record->PlaceUntil = record->Mapped ? 0 : record->PlaceUntil;
        return;
    }
    // While it comes back its place means nothing yet.
    if (state.IsManaged && !state.Minimised && !record->Mapped)
        return;
    if (sameState && patient && record->PlaceUntil != 0)
        return;
    if (state.IsManaged)
        Settle(*record, state);
    if (TellStateCommand(window, state))
        TakeOver(window, state);
}

void windowBackend::TakeOver(windowId window, const actual& state)
{
    windowRecord& record = *Find(window);
    const windowEdges old = record.Area;
    const bool changesState = state.Minimised != record.Minimised || state.Maximised != record.Maximised;
    if (state.Maximised && !record.Maximised)
        record.Restored = old;
    record.Minimised = state.Minimised;
    record.Maximised = state.Maximised;
    record.PlaceUntil = 0;
    if (state.Minimised) {
        if (changesState)
            Tell(window, msgSize, sizedMinimised, 0);
        return;
    }
    record.Area = state.Area;
    record.PaintAsked = record.PaintAsked || changesState || hasGrown(old, state.Area);
    TellPlace(window, old, changesState);
}

// State, size and place change one after the other. What they will be is known, and what is in between is not
// worth telling.
void windowBackend::Settle(const windowRecord& record, actual& state)
{
    const bool sameState = state.Minimised == record.Minimised && state.Maximised == record.Maximised;
    if (sameState && !state.Maximised && hasGrown(record.Area, state.Area)) {
        const windowEdges work = WorkEdgesOf(record);
        if (widthOf(state.Area) >= widthOf(work) && heightOf(state.Area) >= heightOf(work))
            AwaitEvents(SettleMs, [&] { return Ask(record, state) && state.Maximised; });
    }
    const bool becomesLarge = state.Maximised && !record.Maximised;
    const bool becomesSmall = !state.Maximised && record.Maximised;
    const bool comesBack = !state.Minimised && record.Minimised;
    if (state.Minimised || (!becomesLarge && !becomesSmall && !comesBack))
        return;
    const auto goal = [&] {
        return becomesLarge ? WorkEdgesOf(record) : becomesSmall ? record.Restored : record.Area;
    };
    // Some window managers let it fly in.
    AwaitEvents(comesBack ? FlightMs : SettleMs,
                [&] { return Ask(record, state) && isSame(state.Area, goal()); });
}

// The user's own command comes before what it does, so that the window can note where it was. False
// when the window is gone.
bool windowBackend::TellStateCommand(windowId window, const actual& state)
{
    const windowRecord* const record = Find(window);
    const bool minimises = state.Minimised && !record->Minimised;
    const bool maximises = state.Maximised && !record->Maximised && !record->Minimised;
    if (TellsStateCommand || (!minimises && !maximises))
        return true;
    TellsStateCommand = true;
    const bool isAlive = Tell(window, msgSysCommand, minimises ? commandMinimise : commandMaximise, 0);
    TellsStateCommand = false;
    return isAlive;
}

// The area that a maximised window gets.
windowEdges windowBackend::WorkEdgesOf(const windowRecord& record)
{
    windowArea work;
    if (!WorkAreaOf(record.Id, work))
        work = DesktopWorkArea();
    const std::vector<uint32_t> frame = Display.Words(record.Window, Display.Atom(atomNetFrameExtents));
    if (frame.size() < 4 || record.IsMenu)
        return {work.Left, work.Top, work.Right, work.Bottom};
    return {work.Left + static_cast<int32_t>(frame[0]), work.Top + static_cast<int32_t>(frame[2]),
            work.Right - static_cast<int32_t>(frame[1]), work.Bottom - static_cast<int32_t>(frame[3])};
}

uint32_t windowBackend::DPI(windowId window)
{
    constexpr uint32_t normal = 96;
    const windowRecord* const record = Find(window);
    return record != nullptr && record->PerMonitor ? DesktopDPI : normal;
}

bool windowBackend::WorkAreaOf(windowId window, windowArea& area)
{
    windowEdges at;
    if (!ClientArea(window, at))
        return false;
    const std::vector<windowArea> monitors = windowMonitorAreas(Display);
    const windowArea* const monitor = windowMonitorOf(monitors, {at.Left, at.Top, at.Right, at.Bottom});
    if (monitor == nullptr)
        return false;
    area = windowWorkArea(Display, *monitor);
    return true;
}

bool windowBackend::WorkAreaAt(int32_t x, int32_t y, windowArea& area)
{
    uint32_t error = 0;
    if (!Open(error))
        return false;
    const std::vector<windowArea> monitors = windowMonitorAreas(Display);
    const windowArea* const monitor = windowMonitorOf(monitors, {x, y, x, y});
    if (monitor == nullptr)
        return false;
    area = windowWorkArea(Display, *monitor);
    return true;
}

windowArea windowBackend::DesktopWorkArea()
{
    uint32_t error = 0;
    if (!Open(error))
        return {};
    const std::vector<windowArea> monitors = windowMonitorAreas(Display);
    return monitors.empty() ? windowArea{} : windowWorkArea(Display, monitors.front());
}
