#include "tools/simulator/main/simStandardInput.h"

#include "foundations/thread/thrSpin.h"
#include "platform/thread.h"

#include <cstdio>
#include <thread>
#include <utility>

namespace {

struct waitingLines {
    thrSpin Lock;
    std::vector<std::string> Lines;
};

// Never destroyed, for the reading outlives main.
waitingLines& Waiting()
{
    static waitingLines& only = *new waitingLines;
    return only;
}

void ReadLines()
{
    threadName("standard input");
    char line[256];
    while (std::fgets(line, sizeof line, stdin) != nullptr) {
        waitingLines& waiting = Waiting();
        const thrSpinHold hold(waiting.Lock);
        waiting.Lines.emplace_back(line);
    }
}

}  // namespace

void simStandardInputStart()
{
    // Nothing in common to all systems wakes a thread that waits for a person to type.
    std::thread(ReadLines).detach();
}

std::vector<std::string> simStandardInputLines()
{
    waitingLines& waiting = Waiting();
    const thrSpinHold hold(waiting.Lock);
    return std::exchange(waiting.Lines, {});
}
