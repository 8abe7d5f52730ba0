// Who gets the input that was taken from the queue: that depends on the focus and the capture of now.
#include "platform/linux/screen/windowBackend.h"

#include <iterator>

namespace {

struct pressRow {
    uint32_t Down;
    uint32_t Double;
};

constexpr pressRow Presses[] = {
    {msgLeftDown, msgLeftDouble},
    {msgRightDown, msgRightDouble},
    {msgMiddleDown, msgMiddleDouble},
};

const pressRow* pressOf(uint32_t number)
{
    for (const pressRow& row : Presses) {
        if (row.Down == number)
            return &row;
    }
    return nullptr;
}

bool isInside(int64_t point, const windowEdges& area)
{
    return windowPointX(point) >= 0 && windowPointX(point) < area.Right - area.Left &&
           windowPointY(point) >= 0 && windowPointY(point) < area.Bottom - area.Top;
}

}  // namespace

bool windowBackend::ResolveInput(windowMessage& message)
{
    const windowRecord* const record = Find(message.Window);
    switch (message.Number) {
    case msgKeyDown:
    case msgKeyUp:
    case msgChar:
        return ResolveKey(message);
    case msgSysCommand:
        if (record != nullptr && record->Enabled)
            return true;
        ActivateModal(message.Window);
        return false;
    case msgGesture:
        if (record != nullptr && record->Enabled)
            return true;
        GestureClose(message.Second);
        return false;
    default:
        return ResolveMouse(message);
    }
}

// The text goes where the key went, also when the focus moved on meanwhile.
bool windowBackend::ResolveKey(windowMessage& message)
{
    const windowId focused = FocusTold != 0 ? FocusTold : message.Window;
    if (message.Number == msgKeyDown)
        KeyWindow = focused;
    message.Window = message.Number == msgChar ? KeyWindow : focused;
    const windowRecord* const target = Find(message.Window);
    if (target != nullptr && target->Enabled)
        return true;
    if (message.Number == msgKeyDown)
        KeyWindow = 0;
    return false;
}

bool windowBackend::ResolveMouse(windowMessage& message)
{
    const windowId at = message.Window;
    const windowRecord* target = Find(Captured != 0 ? Captured : at);
    if (target == nullptr || !target->Visible)
        return false;
    const bool isPress = pressOf(message.Number) != nullptr;
    if (!target->Enabled) {
        if (isPress)
            ActivateModal(target->Id);
        return false;
    }
    // The server lets a pressed button hold the mouse; here only a capture does.
    if (Captured == 0 && !isInside(message.Second, target->Area))
        return false;
    if (target->Id != at) {
        message.Window = target->Id;
        windowEdges area = target->Area;
        ClientArea(target->Id, area);
        message.Second = windowPoint(message.ScreenX - area.Left, message.ScreenY - area.Top);
    }
    if (message.Number == msgMouseWheel)
        message.Second = windowPoint(message.ScreenX, message.ScreenY);
    if (!isPress)
        return true;
    ResolvePress(message);
    return Find(message.Window) != nullptr;
}

void windowBackend::ResolvePress(windowMessage& message)
{
    const pressRow& row = *pressOf(message.Number);
    if (Clicks.Press(message.Window, row.Down, message.Time, message.ScreenX, message.ScreenY))
        message.Number = row.Double;
    // Where nobody manages windows, a click brings the one forward that it is in.
    windowRecord* const managed = ManagedOf(Find(message.Window));
    if (managed != nullptr && managed->Id != FocusHeld && Captured == 0 && !Display.HasManager())
        Raise(managed->Id);
}
