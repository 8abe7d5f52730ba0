// What the concerns of the fake platform share: one mutex over all state, the record of calls, and the
// script.
#pragma once

#include "platform/file.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace fakes {

// Guards all state of the fake. It is the innermost lock: nothing that can block is called under it.
std::mutex& stateMutex();

// What the script says of one call.
struct verdict {
    bool Scripted = false;  // the call does not do its work
    fileStatus Status = fileStatus::Ok;
};

// Opens a call: records it, runs the closures that wait for it, asks the script. Call it without the mutex.
verdict enter(const std::string& function, const std::string& arguments = {});

// The same for a question that is not recorded.
verdict ask(const std::string& function);

// The closures due in this call of a function, taken out of the script.
std::vector<std::function<void()>> takeClosures(const std::string& function);
void record(const std::string& function, const std::string& arguments);

// Reports a use of the platform that no caller may make, and ends the test program.
[[noreturn]] void misuse(const char* what);

// A path as it is written in the record; a lone surrogate becomes a question mark.
std::string narrow(std::u16string_view text);

// The clock, for waits of other concerns. Under the mutex.
struct clockView {
    int64_t Now;
    bool SleepMoves;  // a wait moves the clock itself
};
clockView clockNow();

// One for each concern, called with the mutex held.
void resetCrash();
void resetDebug();
void resetClock();
void resetHeap();
void resetFile();
void resetRegistry();
void resetLocale();
void resetProcess();
void resetComm();
void resetSocket();
void resetWindow();
void resetDraw();

}  // namespace fakes
