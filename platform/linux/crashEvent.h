// A signal that ends the program, as the handler gets it.
#pragma once

#include "platform/crash.h"

#include <csignal>
#include <ucontext.h>

struct crashEvent {
    int Signal;
    const siginfo_t* Info;
    ucontext_t* Context;
};

// Whether the program would meet the same signal again if it went on where it was.
bool crashComesAgain(const crashEvent& event);

// Registers from a signal's context; and the calls that led to it, from inside the handler of that signal
// alone.
void crashReadRegisters(const ucontext_t& machine, crashContext& context);
void crashReadCalls(ucontext_t& machine, crashContext& context);

// The threads of the program into a snapshot: 0, or the system's number for why there are none.
uint32_t crashReadThreads(crashSnapshot& snapshot);

// Lets the threads of the program be asked where they are.
void crashThreadsWatch();
