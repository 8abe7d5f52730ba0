// The keyboard's focus. Which of the program's windows has it, the window manager decides. A menu never has
// the server's focus: its nearest owner that the window manager knows holds it for the menu.
#include "platform/linux/screen/windowBackend.h"

namespace {

constexpr int64_t FocusPatienceMs = 500;
constexpr uint32_t FromProgram = 1;

}  // namespace

bool windowBackend::CanHaveFocus(const windowRecord* record) const
{
    return record != nullptr && record->Enabled && record->Visible && !record->Minimised && !record->Dying;
}

void windowBackend::SetFocus(windowId window)
{
    windowRecord* const record = Find(window);
    if (record == nullptr || !record->Enabled)
        return;
    if (CanHaveFocus(record))
        Activate(window);
    else
        record->FocusWhenMapped = true;
    xcb_flush(Display.Connection);
}

// What the program asks for has happened when the call returns, unless the window manager is slow or refuses;
// then the focus is told when it comes.
void windowBackend::Activate(windowId window)
{
    windowRecord* const record = Find(window);
    windowRecord* const managed = ManagedOf(record);
    if (!CanHaveFocus(record) || managed == nullptr)
        return;
    AskFocus(*managed);
    // What is not on the screen gets none, however long it is waited for.
    if (!managed->Visible || managed->Minimised)
        return;
    const bool hasIt = AwaitEvents(FocusPatienceMs, [&] { return FocusHeld == managed->Id; });
    if (hasIt)
        TellFocus(window);
}

void windowBackend::AskFocus(windowRecord& record)
{
    record.FocusWhenMapped = false;
    if (FocusHeld == record.Id)
        return;
    const bool isManaged = Display.HasManager();
    if (isManaged && !record.Mapped) {
        record.FocusWhenMapped = true;
    } else if (isManaged && Display.ManagerKnows(atomNetActive)) {
        const windowRecord* const active = Find(FocusHeld);
        const uint32_t words[] = {FromProgram, LastTime, active == nullptr ? 0 : active->Window};
        Display.AskManager(record.Window, atomNetActive, words);
    } else {
        xcb_set_input_focus(Display.Connection, XCB_INPUT_FOCUS_PARENT, record.Window, XCB_CURRENT_TIME);
    }
    xcb_flush(Display.Connection);
}

// Each step may lead to another focus, and then the rest of this one is history.
void windowBackend::TellFocus(windowId window)
{
    const windowId old = FocusTold;
    if (old == window)
        return;
    FocusTold = window;
    const auto isCurrent = [&] { return FocusTold == window; };
    Tell(old, msgActivate, 0, static_cast<int64_t>(window));
    if (isCurrent())
        Tell(window, msgActivate, 1, static_cast<int64_t>(old));
    Tell(old, msgKillFocus, window, 0);
    if (isCurrent())
        Tell(window, msgSetFocus, old, 0);
}

// To the owner, if it can have it. Else the window manager chooses; where there is none, the window that lies
// next gets it.
void windowBackend::PassFocusOn(windowId from)
{
    const windowRecord* const record = Find(from);
    const windowRecord* next = record == nullptr ? nullptr : Find(record->Owner);
    if (!CanHaveFocus(next)) {
        next = nullptr;
        const bool chooses = !Display.HasManager();
        for (const auto& [id, candidate] : Records) {
            if (chooses && id != from && !candidate->IsMenu && CanHaveFocus(candidate.get()) &&
                (next == nullptr || next->Order < candidate->Order))
                next = candidate.get();
        }
    }
    if (next == nullptr)
        TellFocus(0);
    else
        Activate(next->Id);
}

// The server gave the focus to somebody, or took it.
void windowBackend::ReconcileFocus()
{
    if (FocusHeld == 0) {
        const windowRecord* const holder = Find(Captured);
        const bool menuIsOpen = holder != nullptr && (holder->Style & stylePopup) != 0;
        TellFocus(0);
        if (menuIsOpen)
            Tell(Captured, msgCancelMode, 0, 0);
        return;
    }
    const windowRecord* const managed = ManagedOf(Find(FocusTold));
    if (managed != nullptr && managed->Id == FocusHeld)
        return;
    if (CanHaveFocus(Find(FocusHeld)))
        TellFocus(FocusHeld);
    else
        ActivateModal(FocusHeld);
}

// Who turns to a disabled window means the one that it waits for.
void windowBackend::ActivateModal(windowId window)
{
    const windowRecord* best = nullptr;
    for (const auto& entry : Records) {
        const windowRecord& candidate = *entry.second;
        const windowRecord* owner = Find(candidate.Owner);
        while (owner != nullptr && owner->Id != window)
            owner = Find(owner->Owner);
        if (owner != nullptr && CanHaveFocus(&candidate) &&
            (best == nullptr || best->Order < candidate.Order))
            best = &candidate;
    }
    if (best != nullptr)
        Raise(best->Id);
}

void windowBackend::Enable(windowId window, bool on)
{
    windowRecord* const record = Find(window);
    if (record == nullptr || record->Enabled == on)
        return;
    if (!on && !Tell(window, msgCancelMode, 0, 0))
        return;
    record->Enabled = on;
    if (!on && Captured == window)
        DropCapture(0);
    if (!on && FocusTold == window)
        TellFocus(0);
    if (Find(window) == nullptr)
        return;
    UpdateModal();
    Tell(window, msgEnable, on ? 1 : 0, 0);
    // The focus may have come while it could not be had.
    const windowRecord* const enabled = Find(window);
    if (on && FocusTold == 0 && FocusHeld == window && CanHaveFocus(enabled))
        TellFocus(window);
}
