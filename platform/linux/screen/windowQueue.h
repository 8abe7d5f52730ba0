// The interface thread's queue: what is posted, what comes from the display, and what other threads send.
// Knows nothing of the display. Any thread may call what is not said to belong to the interface thread.
#pragma once

#include "platform/windowMessages.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <unordered_set>

// Where a message in the queue came from.
enum class windowOrigin : uint8_t {
    Posted,
    Input,   // its window is settled when it is taken
    Notice,  // something changed and is to be compared with what the windows were told
};

struct windowQueued {
    windowMessage Message;
    windowOrigin Origin = windowOrigin::Posted;
};

class windowQueue
{
public:
    static constexpr size_t PostLimit = 10000;

    windowQueue();
    ~windowQueue();
    windowQueue(const windowQueue&) = delete;
    windowQueue& operator=(const windowQueue&) = delete;

    // A window is known from Admit to Forget, which drops what waits for it and frees those who sent to it.
    // Both on the interface thread.
    void Admit(windowId window);
    void Forget(windowId window);

    // False when the window is not known or too many posted messages wait already.
    bool Post(const windowMessage& message);

    // Waits until the interface thread has handled the message. 0 when the window is or becomes unknown. Not
    // for the interface thread itself.
    int64_t Send(const windowMessage& message);

    // From the display, without a limit; on the interface thread. A move replaces a move that nothing came
    // after.
    void Append(const windowQueued& item);

    // On the interface thread: the oldest message; false when there is none.
    bool Take(windowQueued& item);

    // On the interface thread: has `handle` called for all that was sent; true when something was.
    bool RunSent(int64_t (*handle)(const windowMessage& message));

    // Frees all who wait in Send, now and later.
    void Close();

    // Readable when something may have come since Calm. Calm is for the interface thread.
    int Descriptor() const { return Event; }
    void Wake();
    void Calm();

private:
    // Lives on the sender's stack.
    struct sending {
        const windowMessage* Message;
        int64_t Result = 0;
        bool Done = false;
        std::condition_variable Finished;
    };

    void WakeLocked();
    static void Finish(sending& entry, int64_t result);

    std::mutex Mutex;
    std::unordered_set<windowId> Known;
    std::deque<windowQueued> Items;
    std::deque<sending*> Sent;
    size_t Posted = 0;
    int Event = -1;
    bool Woken = false;
    bool Closed = false;
};
