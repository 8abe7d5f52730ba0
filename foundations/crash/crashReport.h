// What a report says, in its order.
#pragma once

#include "foundations/crash/crashFile.h"
#include "platform/crash.h"

constexpr std::string_view crashLineEnd = "\r\n";

// 80 dashes and a line end.
constexpr std::string_view crashSeparatorLine =
    "--------------------------------------------------------------------------------\r\n";

// The whole report of an exception. A section that meets an exception itself is left at that place, with a
// line that says so, and the next one follows.
void crashReport(crashFile& file, const crashEvent& event);

// The processor's name as it tells it, closed by NUL; "Unknown" for one that does not tell.
constexpr size_t crashProcessorRoom = 49;
void crashProcessor(char (&name)[crashProcessorRoom]);

// --- Parts of the report

// How many words of each thread's stack are shown.
constexpr unsigned crashStackWords = 32;

// What a report knows while it is written.
struct crashFacts {
    crashSnapshot Snapshot;
    bool Symbols = false;  // whether addresses can be named

    // The module that an address lies in, or null.
    const crashModule* ModuleAt(uint64_t address) const;
};

// A thread's registers, its stack and the calls that led to where it stands.
void crashWriteContext(crashFile& file, const crashFacts& facts, const crashContext& context,
                       unsigned stackWords);

// An exception with its parameters.
void crashWriteException(crashFile& file, const crashFacts& facts, const crashRecord& record);
