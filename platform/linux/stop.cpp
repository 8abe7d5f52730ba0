#include "platform/stop.h"

#include <atomic>
#include <csignal>

#include <signal.h>

namespace {

// What a terminal, a service manager and the end of a session send.
constexpr int Signals[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<bool> Asked{false};
std::atomic<bool> Watching{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler takes no locks");

void OnSignal(int)
{
    Asked.store(true);
}

}  // namespace

void stopWatch()
{
    // A second call must not undo what a first signal has done to its handler.
    if (Watching.exchange(true))
        return;
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    // The second signal of a kind finds the system's own handler, which ends a program that does not listen.
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigemptyset(&action.sa_mask);
    for (const int number : Signals)
        sigaction(number, &action, nullptr);
}

bool stopAsked()
{
    return Asked.load();
}
