// The queue: taking messages, waiting for them, handing them out.
#include "platform/clock.h"
#include "platform/linux/screen/windowBackend.h"

#include <algorithm>

#include <poll.h>

namespace {

constexpr int64_t NsPerMs = 1'000'000;

using eventPointer = xcbReply<xcb_generic_event_t>;

}  // namespace

windowMessage windowBackend::MessageOf(windowId window, uint32_t number, uint64_t first, int64_t second) const
{
    return {window, number, first, second, LastTime, MouseX, MouseY};
}

bool windowBackend::Tell(windowId window, uint32_t number, uint64_t first, int64_t second)
{
    if (Find(window) == nullptr)
        return false;
    Receiver(MessageOf(window, number, first, second));
    return Find(window) != nullptr;
}

bool windowBackend::Post(windowId window, uint32_t number, uint64_t first, int64_t second)
{
    windowMessage message{window, number, first, second};
    message.Time = static_cast<uint32_t>(clockSteadyNs() / NsPerMs);
    return Queue.Post(message);
}

int64_t windowBackend::Send(windowId window, uint32_t number, uint64_t first, int64_t second)
{
    bool isOurs = false;
    {
        const std::lock_guard lock(RecordsMutex);
        isOurs = std::this_thread::get_id() == Interface;
    }
    if (!isOurs)
        return Queue.Send({window, number, first, second});
    return Find(window) == nullptr ? 0 : Receiver(MessageOf(window, number, first, second));
}

windowTake windowBackend::Peek(windowMessage& message)
{
    for (;;) {
        Queue.RunSent(Receiver);
        // What is posted needs no display, and whoever ends windows waits for it.
        if (Display.IsLost())
            return TakeQueued(message) ? windowTake::Taken : windowTake::Failed;
        ReadEvents();
        if (TakeQueued(message))
            return windowTake::Taken;
        if (Display.IsLost())
            return windowTake::Failed;
        // Asking the server something reads events too, and those do not show at the connection any more.
        if (!RunDue() && !ReadEvents())
            break;
    }
    if (TakePaint(message))
        return windowTake::Taken;
    return windowTake::None;
}

windowTake windowBackend::Wait(windowMessage& message)
{
    for (;;) {
        const windowTake taken = Peek(message);
        if (taken != windowTake::None)
            return taken;
        pollfd sources[] = {{Queue.Descriptor(), POLLIN, 0}, {-1, POLLIN, 0}};
        if (Display.IsOpen())
            sources[1].fd = xcb_get_file_descriptor(Display.Connection);
        poll(sources, 2, MillisecondsToDue());
        Queue.Calm();
    }
}

// True when there were any.
bool windowBackend::ReadEvents()
{
    if (!Display.IsOpen())
        return false;
    bool any = false;
    xcb_flush(Display.Connection);
    while (const eventPointer event{xcb_poll_for_event(Display.Connection)}) {
        Translate(*event);
        any = true;
    }
    return any;
}

bool windowBackend::TakeQueued(windowMessage& message)
{
    windowQueued item;
    while (Queue.Take(item)) {
        switch (item.Origin) {
        case windowOrigin::Posted:
            message = item.Message;
            return true;
        case windowOrigin::Input:
            message = item.Message;
            if (ResolveInput(message))
                return true;
            break;
        case windowOrigin::Notice:
            TakeNotice(item.Message);
            break;
        }
    }
    return false;
}

void windowBackend::TakeNotice(const windowMessage& notice)
{
    switch (notice.Number) {
    case noticePlace:
        Reconcile(notice.Window, true);
        break;
    case noticeFocus:
        ReconcileFocus();
        break;
    case noticeDPI:
        Tell(notice.Window, msgDPIChanged, notice.First, 0);
        break;
    default:
        break;
    }
}

void windowBackend::Notice(windowId window, uint32_t number)
{
    Queue.Append({MessageOf(window, number, 0, 0), windowOrigin::Notice});
}

// What waits for a time and not for an event. True when something was due.
bool windowBackend::RunDue()
{
    const int64_t now = clockSteadyNs();
    bool any = false;
    if (GrabAt != 0 && now >= GrabAt) {
        TryGrab();
        any = true;
    }
    for (const auto& [id, record] : Records) {
        if (record->PlaceUntil != 0 && now >= record->PlaceUntil) {
            record->PlaceUntil = 0;
            Notice(id, noticePlace);
            any = true;
        }
    }
    return any;
}

// -1 for never.
int windowBackend::MillisecondsToDue() const
{
    int64_t next = INT64_MAX;
    const auto heed = [&next](int64_t due) { next = due == 0 ? next : std::min(next, due); };
    heed(GrabAt);
    for (const auto& entry : Records)
        heed(entry.second->PlaceUntil);
    if (next == INT64_MAX)
        return -1;
    return static_cast<int>(std::max<int64_t>(0, (next - clockSteadyNs()) / NsPerMs + 1));
}

// Waits for something from the server, and translates it. False when the time is over.
bool windowBackend::PollEvents(int64_t untilNs)
{
    if (Display.IsLost())
        return false;
    if (ReadEvents())
        return true;
    const int64_t left = untilNs - clockSteadyNs();
    if (left <= 0)
        return false;
    pollfd source{xcb_get_file_descriptor(Display.Connection), POLLIN, 0};
    // Where a frame is moved, nobody says so.
    constexpr int64_t glanceMs = 20;
    poll(&source, 1, static_cast<int>(std::min(left / NsPerMs + 1, glanceMs)));
    return true;
}

bool windowBackend::AwaitEvents(int64_t milliseconds, const std::function<bool()>& isTrue)
{
    const int64_t until = clockSteadyNs() + milliseconds * NsPerMs;
    while (!isTrue()) {
        if (!PollEvents(until))
            return isTrue();
    }
    return true;
}

void windowBackend::Dispatch(const windowMessage& message)
{
    if (Find(message.Window) != nullptr)
        Receiver(message);
}

int64_t windowBackend::Default(const windowMessage& message)
{
    switch (message.Number) {
    case msgClose:
        Destroy(message.Window);
        return 0;
    case msgPaint:
        PaintDone(message.Window);
        return 0;
    case msgGesture:
        GestureClose(message.Second);
        return 0;
    case msgFrameHit:
        return hitClient;
    case msgEraseBackground:
        return 1;
    case msgSysCommand:
        break;
    default:
        return 0;
    }
    constexpr uint64_t undefinedBits = 0xF;
    switch (message.First & ~undefinedBits) {
    case commandClose:
        Send(message.Window, msgClose, 0, 0);
        break;
    case commandMinimise:
        TellsStateCommand ? void() : Show(message.Window, windowShow::Minimise);
        break;
    case commandMaximise:
        TellsStateCommand ? void() : Show(message.Window, windowShow::Maximise);
        break;
    case commandRestore:
        Show(message.Window, windowShow::Restore);
        break;
    default:
        break;
    }
    return 0;
}
