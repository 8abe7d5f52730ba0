#include "platform/word.h"

#include <condition_variable>
#include <mutex>

namespace {

// One sleeping place for all words: who is woken for another's sake looks at its own word and sleeps again.
struct sleepers {
    std::mutex Mutex;
    std::condition_variable Condition;
    std::atomic<unsigned> Count{0};
};

sleepers& place()
{
    static sleepers& only = *new sleepers;
    return only;
}

}  // namespace

void wordWait(const std::atomic<uint32_t>& word, uint32_t value)
{
    std::unique_lock lock(place().Mutex);
    ++place().Count;
    if (word.load() == value)
        place().Condition.wait(lock);
    --place().Count;
}

void wordWake(const std::atomic<uint32_t>&)
{
    // Nobody's sleep is no reason to take the mutex: it would order threads that nothing else orders, and so
    // hide their races from the thread sanitizer.
    if (place().Count.load() == 0)
        return;
    {
        const std::lock_guard passed(place().Mutex);
    }
    place().Condition.notify_all();
}
