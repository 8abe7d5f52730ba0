// Showing and hiding, and what a window is between: maximised or minimised. A window manager does it where
// one runs; without one it is done here.
#include "platform/linux/screen/windowBackend.h"

namespace {

constexpr int64_t SettleMs = 300;
constexpr uint32_t StateIconic = 3;
constexpr uint32_t FromProgram = 1;

enum : uint32_t {
    stateRemove = 0,
    stateAdd = 1,
};

}  // namespace

void windowBackend::Show(windowId window, windowShow how)
{
    if (how == windowShow::Hide)
        return Hide(window);
    windowRecord* record = Find(window);
    if (record == nullptr || (record->Dying && !record->Visible))
        return;
    if (!record->Visible && !Appear(window, how))
        return;
    switch (how) {
    case windowShow::Maximise:
        Maximise(window);
        break;
    case windowShow::Minimise:
        Minimise(window);
        break;
    case windowShow::Restore:
        Restore(window);
        break;
    default:
        break;
    }
    record = Find(window);
    if (record == nullptr)
        return;
    if (how != windowShow::NoActivate && how != windowShow::Minimise && !record->Minimised)
        Activate(window);
    xcb_flush(Display.Connection);
}

// False when the window went meanwhile.
bool windowBackend::Appear(windowId window, windowShow how)
{
    windowRecord* record = Find(window);
    record->Visible = true;
    record->PaintAsked = true;
    record->Order = ++LastOrder;
    if (!Tell(window, msgShowWindow, 1, 0))
        return false;
    record = Find(window);
    if (!record->Visible)
        return false;
    MapWindow(*record, how);
    UpdateModal();
    return true;
}

void windowBackend::MapWindow(windowRecord& record, windowShow how)
{
    SetSizeHints(record);
    Configure(record);
    std::vector<uint32_t> states;
    const auto state = [&](bool is, windowAtom atom) {
        if (is)
            states.push_back(Display.Atom(atom));
    };
    record.IsModal = false;
    state((record.StyleExtended & styleTopmost) != 0, atomNetStateAbove);
    state((record.StyleExtended & styleTool) != 0, atomNetStateSkipTaskbar);
    state((record.StyleExtended & styleTool) != 0, atomNetStateSkipPager);
    Display.SetWords(record.Window, Display.Atom(atomNetState), XCB_ATOM_ATOM, states);
    // A time of 0 asks that the focus stays where it is.
    const uint32_t time[] = {how == windowShow::NoActivate ? 0 : LastTime};
    if (how == windowShow::NoActivate || LastTime != 0)
        Display.SetWords(record.Window, Display.Atom(atomNetUserTime), XCB_ATOM_CARDINAL, time);
    else
        xcb_delete_property(Display.Connection, record.Window, Display.Atom(atomNetUserTime));
    xcb_map_window(Display.Connection, record.Window);
    ExpectPlace(record);
    if (record.IsMenu || !Display.HasManager())
        Stack(record);
    xcb_flush(Display.Connection);
}

void windowBackend::Hide(windowId window)
{
    windowRecord* record = Find(window);
    if (record == nullptr || !record->Visible)
        return;
    record->Visible = false;
    record->FocusWhenMapped = false;
    record->PlaceUntil = 0;
    if (!Tell(window, msgShowWindow, 0, 0))
        return;
    if (Captured == window) {
        DropCapture(0);
        if (Find(window) == nullptr)
            return;
    }
    record = Find(window);
    if (record->Visible)
        return;
    // The window manager learns from the message that it is not only minimised.
    xcb_unmap_window(Display.Connection, record->Window);
    xcb_unmap_notify_event_t event{};
    event.response_type = XCB_UNMAP_NOTIFY;
    event.event = Display.Screen->root;
    event.window = record->Window;
    if (!record->IsMenu)
        xcb_send_event(Display.Connection, 0, Display.Screen->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
    record->Mapped = false;
    record->Minimised = false;
    if (FocusTold == window)
        PassFocusOn(window);
    UpdateModal();
    xcb_flush(Display.Connection);
}

void windowBackend::Maximise(windowId window)
{
    windowRecord* const record = Find(window);
    if (record == nullptr || record->IsMenu || (record->Maximised && !record->Minimised))
        return;
    if (Display.HasManager()) {
        if (record->Minimised)
            xcb_map_window(Display.Connection, record->Window);
        AskState(*record, true, atomNetStateMaximisedX, atomNetStateMaximisedY);
        return SettleState(window, false, true);
    }
    if (record->Minimised)
        xcb_map_window(Display.Connection, record->Window);
    const windowEdges old = record->Area;
    if (!record->Maximised)
        record->Restored = old;
    record->Minimised = false;
    record->Maximised = true;
    MoveTo(*record, WorkEdgesOf(*record));
    TellPlace(window, old, true);
}

void windowBackend::Minimise(windowId window)
{
    windowRecord* const record = Find(window);
    if (record == nullptr || record->IsMenu || record->Minimised)
        return;
    if (Display.HasManager()) {
        const uint32_t words[] = {StateIconic};
        Display.AskManager(record->Window, atomChangeState, words);
        return SettleState(window, true, record->Maximised);
    }
    record->Minimised = true;
    xcb_unmap_window(Display.Connection, record->Window);
    if (Tell(window, msgSize, sizedMinimised, 0) && FocusTold == window)
        PassFocusOn(window);
}

// What was maximised before it was minimised becomes so again.
void windowBackend::Restore(windowId window)
{
    windowRecord* const record = Find(window);
    if (record == nullptr || (!record->Minimised && !record->Maximised))
        return;
    const windowEdges old = record->Area;
    const bool wasMinimised = record->Minimised;
    if (wasMinimised) {
        xcb_map_window(Display.Connection, record->Window);
        record->PaintAsked = true;
    }
    if (Display.HasManager()) {
        if (!wasMinimised)
            AskState(*record, false, atomNetStateMaximisedX, atomNetStateMaximisedY);
        return SettleState(window, false, wasMinimised && record->Maximised);
    }
    record->Minimised = false;
    if (!wasMinimised) {
        record->Maximised = false;
        MoveTo(*record, record->Restored);
    }
    TellPlace(window, old, true);
}

// The window manager decides; what it made of the request is told before the call returns, if it is not slow.
void windowBackend::SettleState(windowId window, bool minimised, bool maximised)
{
    xcb_flush(Display.Connection);
    TellsStateCommand = true;
    AwaitEvents(SettleMs, [&] {
        const windowRecord* const record = Find(window);
        actual state;
        return record == nullptr || !Ask(*record, state) ||
               (state.Minimised == minimised && state.Maximised == maximised && record->Mapped != minimised);
    });
    Reconcile(window, false);
    TellsStateCommand = false;
}

void windowBackend::AskState(const windowRecord& record, bool on, windowAtom first, windowAtom second)
{
    const uint32_t words[] = {on ? stateAdd : stateRemove, Display.Atom(first),
                              second == atomCount ? xcb_atom_t{XCB_ATOM_NONE} : Display.Atom(second),
                              FromProgram};
    Display.AskManager(record.Window, atomNetState, words);
}
