// Runs the program that ends badly, and sees how.
#pragma once

#include <cstdint>
#include <string>

struct victimEnd {
    // What the system tells of the end: on Linux the exit code, or the signal's number with the upper bit
    // set; on Windows the exit code alone, which may be an exception's.
    uint32_t Status = 0;
    int64_t Milliseconds = 0;
    std::string Told;  // on standard error, where the system has such a place for it
};

enum class victimUnder {
    Nothing,
    Debugger
};

// In `documents` (UTF-8, an absolute path) the reports are to appear; it need not be a folder.
victimEnd victimRun(const std::string& way, bool watched, const std::string& documents,
                    victimUnder under = victimUnder::Nothing);

// Whether this system lets a program see that its stack is used up.
bool victimSeesOverflow();

// The path that a report gets when the user has no documents folder at all begins with it.
std::string victimRoot();
