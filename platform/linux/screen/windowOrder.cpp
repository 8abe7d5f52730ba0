// Which window lies above which, and which keeps the user from the others.
#include "platform/linux/screen/windowBackend.h"

#include <algorithm>

void windowBackend::SetTopmost(windowRecord& record, bool on)
{
    if (on == ((record.StyleExtended & styleTopmost) != 0))
        return;
    record.StyleExtended = on ? record.StyleExtended | styleTopmost : record.StyleExtended & ~styleTopmost;
    if (record.Visible)
        AskState(record, on, atomNetStateAbove, atomCount);
    if (on && record.Visible)
        Stack(record);
    UpdateModal();
}

// A window for which others are disabled keeps the user from them, and the window manager helps with it.
void windowBackend::UpdateModal()
{
    const bool anyDisabled = std::any_of(Records.begin(), Records.end(), [](const auto& entry) {
        return entry.second->Visible && !entry.second->Enabled && !entry.second->IsMenu;
    });
    for (const auto& entry : Records) {
        windowRecord& record = *entry.second;
        const bool isModal = anyDisabled && record.Visible && record.Enabled && !record.IsMenu &&
                             record.Owner != 0 && (record.StyleExtended & styleTopmost) != 0;
        if (isModal == record.IsModal)
            continue;
        record.IsModal = isModal;
        if (record.Visible)
            AskState(record, isModal, atomNetStateModal, atomCount);
    }
    xcb_flush(Display.Connection);
}

// Above the others, and what it owns above it.
void windowBackend::Stack(windowRecord& record)
{
    record.Order = ++LastOrder;
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(Display.Connection, record.Window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    for (const windowId owned : OwnedBy(record.Id)) {
        windowRecord& each = *Find(owned);
        if (each.Visible)
            Stack(each);
    }
    if ((record.StyleExtended & styleTopmost) != 0)
        return;
    for (const auto& [id, each] : Records) {
        if (each->Visible && each->Owner == 0 && (each->StyleExtended & styleTopmost) != 0)
            Stack(*each);
    }
}

void windowBackend::Raise(windowId window)
{
    windowRecord* const record = Find(window);
    if (record == nullptr || !record->Visible || record->Minimised)
        return;
    Stack(*record);
    Activate(window);
    xcb_flush(Display.Connection);
}
