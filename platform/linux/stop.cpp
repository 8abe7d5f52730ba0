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

void OnSignal(int);

bool IsWatched(int number)
{
    struct sigaction action = {};
    return sigaction(number, nullptr, &action) == 0 && action.sa_handler == OnSignal;
}

// The next one, of whatever kind, finds the system's own handler, which ends a program that does not listen.
void OnSignal(int)
{
    Asked.store(true);
    for (const int number : Signals) {
        if (IsWatched(number))
            signal(number, SIG_DFL);
    }
}

// A program that is to outlive its terminal is started so that the end of that asks nothing of it.
bool IsToOutliveTheTerminal()
{
    struct sigaction action = {};
    return sigaction(SIGHUP, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void stopWatch()
{
    // A second call must not undo what a first signal has done to its handler.
    if (Watching.exchange(true))
        return;
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigemptyset(&action.sa_mask);
    const bool outlivesTerminal = IsToOutliveTheTerminal();
    for (const int number : Signals) {
        if (number != SIGHUP || !outlivesTerminal)
            sigaction(number, &action, nullptr);
    }
}

bool stopAsked()
{
    return Asked.load();
}
