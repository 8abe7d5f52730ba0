// Fingers on a screen: asking for them, and the gestures that they make.
#include "platform/linux/screen/windowBackend.h"

#include <xcb/xinput.h>

namespace {

constexpr int FixedPointBits = 16;
constexpr size_t MostGestures = 256;

}  // namespace

void windowBackend::OpenTouch()
{
    constexpr uint16_t major = 2;
    constexpr uint16_t minor = 2;
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(Display.Connection, &xcb_input_id);
    if (extension == nullptr || extension->present == 0)
        return;
    const xcbReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        Display.Connection, xcb_input_xi_query_version(Display.Connection, major, minor), nullptr));
    const bool hasTouch = version && (version->major_version > major ||
                                      (version->major_version == major && version->minor_version >= minor));
    if (hasTouch)
        InputOpcode = extension->major_opcode;
}

void windowBackend::AskGestures(windowId window)
{
    struct {
        xcb_input_event_mask_t Head;
        uint32_t Mask;
    } asked{};
    const windowRecord* const record = Find(window);
    if (record == nullptr || InputOpcode == 0)
        return;
    asked.Head.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
    asked.Head.mask_len = 1;
    asked.Mask = XCB_INPUT_XI_EVENT_MASK_TOUCH_BEGIN | XCB_INPUT_XI_EVENT_MASK_TOUCH_UPDATE |
                 XCB_INPUT_XI_EVENT_MASK_TOUCH_END;
    xcb_input_xi_select_events(Display.Connection, record->Window, 1, &asked.Head);
    xcb_flush(Display.Connection);
}

void windowBackend::OnTouch(const xcb_ge_generic_event_t& event)
{
    using phase = windowTouch::phase;
    if (InputOpcode == 0 || event.extension != InputOpcode || event.event_type < XCB_INPUT_TOUCH_BEGIN ||
        event.event_type > XCB_INPUT_TOUCH_END)
        return;
    const auto& touched = reinterpret_cast<const xcb_input_touch_begin_event_t&>(event);
    windowRecord* const record = FindNative(touched.event);
    if (record == nullptr)
        return;
    LastTime = touched.time;
    const phase which = event.event_type == XCB_INPUT_TOUCH_BEGIN ? phase::Begin
                        : event.event_type == XCB_INPUT_TOUCH_END ? phase::End
                                                                  : phase::Move;
    const windowTouch touch{which, touched.detail, touched.time, touched.root_x >> FixedPointBits,
                            touched.root_y >> FixedPointBits};
    if (which == phase::Begin)
        NoteUserTime(*record, touched.time);
    std::vector<windowTouched> meant;
    record->Touches.Feed(touch, meant);
    for (const windowTouched& each : meant)
        QueueTouched(*record, each, touched.time);
}

// A tap is a click: the server makes none of touches that somebody listens to.
void windowBackend::QueueTouched(windowRecord& record, const windowTouched& touched, uint32_t time)
{
    windowMessage message{record.Id, msgGesture, 0, 0, time, touched.Gesture.X, touched.Gesture.Y};
    if (touched.Kind == windowTouched::kind::Gesture) {
        if (Gestures.size() >= MostGestures)
            Gestures.erase(Gestures.begin());
        message.Second = ++LastGesture;
        Gestures.emplace(LastGesture, touched.Gesture);
        return QueueInput(message);
    }
    const bool isLeft = touched.Kind == windowTouched::kind::LeftClick;
    const windowEdges& area = record.Area;
    message.Second = windowPoint(touched.Gesture.X - area.Left, touched.Gesture.Y - area.Top);
    message.Number = msgMouseMove;
    QueueInput(message);
    message.Number = isLeft ? msgLeftDown : msgRightDown;
    message.First = isLeft ? keysLeft : keysRight;
    QueueInput(message);
    message.Number = isLeft ? msgLeftUp : msgRightUp;
    message.First = 0;
    QueueInput(message);
}

bool windowBackend::GestureRead(int64_t second, windowGesture& gesture)
{
    const auto found = Gestures.find(second);
    if (found == Gestures.end())
        return false;
    gesture = found->second;
    return true;
}

void windowBackend::GestureClose(int64_t second)
{
    Gestures.erase(second);
}
