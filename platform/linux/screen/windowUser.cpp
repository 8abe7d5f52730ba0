// What the user does with keys and mouse, as the display tells it.
#include "platform/linux/screen/windowBackend.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr uint32_t WheelNotch = 120;

enum : uint8_t {
    buttonLeft = 1,
    buttonMiddle = 2,
    buttonRight = 3,
    buttonWheelUp = 4,
    buttonWheelDown = 5,
};

struct buttonRow {
    uint8_t Button;
    uint32_t Keys;
    uint32_t Down;
    uint32_t Up;
};

constexpr buttonRow Buttons[] = {
    {buttonLeft, keysLeft, msgLeftDown, msgLeftUp},
    {buttonMiddle, keysMiddle, msgMiddleDown, msgMiddleUp},
    {buttonRight, keysRight, msgRightDown, msgRightUp},
};

struct keysRow {
    uint16_t State;
    uint32_t Keys;
};

constexpr keysRow KeysRows[] = {
    {XCB_BUTTON_MASK_1, keysLeft},   {XCB_BUTTON_MASK_2, keysMiddle},     {XCB_BUTTON_MASK_3, keysRight},
    {XCB_MOD_MASK_SHIFT, keysShift}, {XCB_MOD_MASK_CONTROL, keysControl},
};

uint32_t keysOf(uint16_t state)
{
    uint32_t keys = 0;
    for (const keysRow& row : KeysRows)
        keys |= (state & row.State) != 0 ? row.Keys : 0;
    return keys;
}

}  // namespace

void windowBackend::QueueInput(const windowMessage& message)
{
    Queue.Append({message, windowOrigin::Input});
}

void windowBackend::OnKey(const xcb_key_press_event_t& event, bool isDown)
{
    windowRecord* const record = FindNative(event.event);
    LastTime = event.time;
    std::u16string text;
    const uint32_t key = isDown ? Keys.Press(event.detail, text) : Keys.Release(event.detail);
    if (record == nullptr)
        return;
    if (isDown)
        NoteUserTime(*record, event.time);
    QueueInput(MessageOf(record->Id, isDown ? msgKeyDown : msgKeyUp, key, 1));
    for (const char16_t unit : text)
        QueueInput(MessageOf(record->Id, msgChar, unit, 1));
}

void windowBackend::OnButton(const xcb_button_press_event_t& event, bool isDown)
{
    windowRecord* const record = FindNative(event.event);
    if (record == nullptr)
        return;
    LastTime = event.time;
    MouseX = event.root_x;
    MouseY = event.root_y;
    EnterMouse(*record);
    const uint32_t keys = keysOf(event.state);
    const int64_t point = windowPoint(event.event_x, event.event_y);
    if (event.detail == buttonWheelUp || event.detail == buttonWheelDown) {
        const uint32_t turn = event.detail == buttonWheelUp ? WheelNotch : 0 - WheelNotch;
        if (isDown)
            QueueInput(MessageOf(record->Id, msgMouseWheel, keys | turn << 16, point));
        return;
    }
    const auto* const row = std::find_if(std::begin(Buttons), std::end(Buttons),
                                         [&](const buttonRow& each) { return each.Button == event.detail; });
    if (row == std::end(Buttons))
        return;
    if (isDown) {
        NoteUserTime(*record, event.time);
        QueueInput(MessageOf(record->Id, row->Down, keys | row->Keys, point));
    } else {
        QueueInput(MessageOf(record->Id, row->Up, keys & ~row->Keys, point));
    }
}

void windowBackend::OnMotion(const xcb_motion_notify_event_t& event)
{
    windowRecord* const record = FindNative(event.event);
    if (record == nullptr)
        return;
    LastTime = event.time;
    MouseX = event.root_x;
    MouseY = event.root_y;
    EnterMouse(*record);
    QueueInput(
        MessageOf(record->Id, msgMouseMove, keysOf(event.state), windowPoint(event.event_x, event.event_y)));
}

// Coming in is a move. So is going out, for one that holds the capture and would hear nothing more.
void windowBackend::OnCrossing(const xcb_enter_notify_event_t& event, bool isIn)
{
    windowRecord* const record = FindNative(event.event);
    if (record == nullptr || event.mode != XCB_NOTIFY_MODE_NORMAL)
        return;
    LastTime = event.time;
    MouseX = event.root_x;
    MouseY = event.root_y;
    if (isIn)
        EnterMouse(*record);
    if (isIn || Captured == record->Id)
        QueueInput(MessageOf(record->Id, msgMouseMove, keysOf(event.state),
                             windowPoint(event.event_x, event.event_y)));
}

// The cursor is the program's, whichever of its windows the mouse comes to.
void windowBackend::EnterMouse(windowRecord& record)
{
    MouseWindow = record.Id;
    if (record.Cursor == Cursor)
        return;
    record.Cursor = Cursor;
    xcb_change_window_attributes(Display.Connection, record.Window, XCB_CW_CURSOR, &Cursor);
}

// The window manager gives the focus to whom the user turned to last.
void windowBackend::NoteUserTime(windowRecord& record, uint32_t time)
{
    const windowRecord* const managed = ManagedOf(&record);
    const uint32_t times[] = {time};
    if (managed != nullptr)
        Display.SetWords(managed->Window, Display.Atom(atomNetUserTime), XCB_ATOM_CARDINAL, times);
}
