// What the windows of the fake platform are made of. All data is guarded by the mutex of core.h; the receiver
// is always called without it.
#pragma once

#include "platform/window.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace fakes {

struct window {
    windowReceiver Receiver = nullptr;
    const windowSystem* System = nullptr;
    windowCreate Made;
    uint32_t Style = 0;
    void* Object = nullptr;
    std::string Title = "Untitled";
    windowEdges Frame{};
    windowEdges Restored{};           // the frame to come back to
    uint64_t State = sizedRestored;   // a windowSized
    uint64_t Before = sizedRestored;  // what a minimised one comes back to
    uint32_t DPI = 96;
    windowExtent Least{};
    windowExtent Most{};
    bool Visible = false;
    bool Enabled = true;
    bool Topmost = false;
    bool PaintAsked = false;
    bool GesturesAsked = false;
};

// Sent from another thread, which waits until it is done.
struct sentMessage {
    windowMessage Message;
    int64_t Result = 0;
    bool Done = false;
};

// A message, or what makes one (or none) when its turn has come.
using queueAction = std::function<std::optional<windowMessage>()>;
struct queueRow {
    windowMessage Message = {};
    bool Posted = false;
    queueAction Action = nullptr;
};

constexpr windowArea FirstMonitor{0, 0, 1920, 1040};

struct deskState {
    std::map<windowId, window> Windows;
    std::vector<windowId> Order;  // from the bottom to the top
    windowId Last = 0;            // given out
    windowId Active = 0;
    windowId Focus = 0;
    windowId Capture = 0;
    std::thread::id Interface;

    std::deque<queueRow> Queue;
    size_t Posted = 0;  // of the queue
    std::deque<std::shared_ptr<sentMessage>> Sent;
    std::map<int64_t, std::u16string> Characters;  // of key presses, by their second parameter
    int64_t LastCharacters = 0;
    bool Lost = false;
    bool Ended = false;

    int32_t MouseX = 0;
    int32_t MouseY = 0;
    uint32_t Keys = 0;  // keys... bits
    std::map<int64_t, windowGesture> Gestures;
    int64_t LastGesture = 0;

    uint32_t DPI = 96;
    std::vector<windowArea> Monitors{FirstMonitor};
    cursorId Cursor = 0;
    cursorId LastCursor = 0;
    std::map<cursorId, windowCursorShape> Cursors;
    std::set<iconId> Icons;
    iconId LastIcon = 0;
    std::optional<std::string> Clipboard;
    std::vector<std::pair<std::string, std::string>> Alerts;
};

// The mutex, and the desk behind it.
class desk
{
public:
    desk();
    deskState* operator->() const;
    window* Find(windowId id) const;  // null when there is none

    // Takes a window and all that waits for it off the desk.
    void Forget(windowId id) const;

    // Where a window belongs while `raised` is brought up: the lower ones first.
    int Layer(windowId id, windowId raised) const;

    std::unique_lock<std::mutex> Lock;
};

// Notified when a message came, was done, or its window is gone.
std::condition_variable& deskChanged();

// Fills in the time and the mouse.
windowMessage deskMessage(windowId window, uint32_t number, uint64_t first = 0, int64_t second = 0);

// Ends the test program when the caller is not the interface thread.
void deskRequireInterface();

// The client area in a frame of this window, and the frame around a client area.
windowEdges deskClient(const window& of);
windowEdges deskFrame(const window& of, const windowEdges& client, uint32_t dpi);

// --- Steps that send messages. Without the mutex, on the interface thread; a window that is gone is
// harmless.

int64_t deskTell(windowId window, uint32_t number, uint64_t first = 0, int64_t second = 0);
int64_t deskTell(const windowMessage& message);
void deskQueue(queueAction action);

void deskRaise(windowId window);
void deskActivate(windowId window, uint64_t how = 1);  // 0 is no window of this program
void deskActivateNext(windowId instead);               // when this one can be active no longer
void deskFocus(windowId window);
void deskCapture(windowId window);  // 0 releases it
bool deskPlace(windowId window, const windowEdges& frame, uint32_t flags);
void deskShow(windowId window, windowShow how);
void deskDestroy(windowId window);

}  // namespace fakes
