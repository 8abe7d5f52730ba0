#include "platform/linux/screen/windowQueue.h"

#include <algorithm>

#include <sys/eventfd.h>
#include <unistd.h>

namespace {

// The later of two moves says all that the earlier said.
bool isOutrun(const windowQueued& last, const windowQueued& next)
{
    return last.Origin == next.Origin && last.Message.Window == next.Message.Window &&
           last.Message.Number == next.Message.Number && last.Message.First == next.Message.First &&
           (next.Origin == windowOrigin::Notice ||
            (next.Origin == windowOrigin::Input && next.Message.Number == msgMouseMove));
}

}  // namespace

windowQueue::windowQueue() : Event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

windowQueue::~windowQueue()
{
    Close();
    if (Event >= 0)
        close(Event);
}

void windowQueue::Admit(windowId window)
{
    const std::lock_guard lock(Mutex);
    Known.insert(window);
}

void windowQueue::Forget(windowId window)
{
    const std::lock_guard lock(Mutex);
    Known.erase(window);
    const auto isFor = [window](const windowQueued& item) { return item.Message.Window == window; };
    const auto wasPosted = [&](const windowQueued& item) {
        return isFor(item) && item.Origin == windowOrigin::Posted;
    };
    Posted -= static_cast<size_t>(std::count_if(Items.begin(), Items.end(), wasPosted));
    std::erase_if(Items, isFor);
    std::erase_if(Sent, [window](sending* entry) {
        if (entry->Message->Window != window)
            return false;
        Finish(*entry, 0);
        return true;
    });
}

bool windowQueue::Post(const windowMessage& message)
{
    const std::lock_guard lock(Mutex);
    if (Posted >= PostLimit || !Known.contains(message.Window))
        return false;
    Items.push_back({message, windowOrigin::Posted});
    ++Posted;
    WakeLocked();
    return true;
}

int64_t windowQueue::Send(const windowMessage& message)
{
    std::unique_lock lock(Mutex);
    if (Closed || !Known.contains(message.Window))
        return 0;
    sending entry;
    entry.Message = &message;
    Sent.push_back(&entry);
    WakeLocked();
    entry.Finished.wait(lock, [&] { return entry.Done; });
    return entry.Result;
}

void windowQueue::Append(const windowQueued& item)
{
    const std::lock_guard lock(Mutex);
    if (!Items.empty() && isOutrun(Items.back(), item))
        Items.back() = item;
    else
        Items.push_back(item);
}

bool windowQueue::Take(windowQueued& item)
{
    const std::lock_guard lock(Mutex);
    if (Items.empty())
        return false;
    item = Items.front();
    Items.pop_front();
    if (item.Origin == windowOrigin::Posted)
        --Posted;
    return true;
}

bool windowQueue::RunSent(int64_t (*handle)(const windowMessage& message))
{
    bool ran = false;
    for (;;) {
        sending* entry = nullptr;
        {
            const std::lock_guard lock(Mutex);
            if (Sent.empty())
                return ran;
            entry = Sent.front();
            Sent.pop_front();
        }
        const int64_t result = handle(*entry->Message);
        const std::lock_guard lock(Mutex);
        Finish(*entry, result);
        ran = true;
    }
}

void windowQueue::Close()
{
    const std::lock_guard lock(Mutex);
    Closed = true;
    for (sending* entry : Sent)
        Finish(*entry, 0);
    Sent.clear();
}

void windowQueue::Wake()
{
    const std::lock_guard lock(Mutex);
    WakeLocked();
}

void windowQueue::Calm()
{
    const std::lock_guard lock(Mutex);
    if (!Woken)
        return;
    uint64_t count = 0;
    [[maybe_unused]] const ssize_t done = read(Event, &count, sizeof count);
    Woken = false;
}

void windowQueue::WakeLocked()
{
    if (Woken)
        return;
    Woken = true;
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t done = write(Event, &one, sizeof one);
}

// Under the lock: the entry is gone as soon as its sender gets it.
void windowQueue::Finish(sending& entry, int64_t result)
{
    entry.Result = result;
    entry.Done = true;
    entry.Finished.notify_one();
}
