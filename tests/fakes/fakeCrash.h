// A crash that tests make up: its facts go in, and the report comes out.
#pragma once

#include "platform/crash.h"

#include <map>
#include <string>
#include <vector>

// Thrown by a fact whose look-up is to meet an exception itself.
struct fakeCrashFault {
    crashRecord Record;
};

struct fakeCrashFacts {
    // What happened, the exception first, then those that it was chained from; and where.
    std::vector<crashRecord> Records;
    crashContext Context;

    // The program and its parts.
    crashRange Program{0x400000, 0x10000};
    uint32_t SnapshotError = 0;
    std::vector<crashModule> Modules;
    std::map<uint64_t, std::string> Paths;  // by a module's base
    std::map<std::string, std::vector<uint16_t>> Versions;
    std::vector<crashThread> Threads;
    std::map<uint32_t, crashContext> Contexts;  // by thread
    bool ContextFaults = false;                 // asking for the crash's own context throws

    bool SymbolsWork = true;
    std::map<uint64_t, crashSymbol> Symbols;  // by the address asked for
    std::map<uint64_t, crashLine> Lines;

    std::string SystemName = "at least Windows 10";
    std::string Documents = "/documents";
    std::string ProgramPath = "/opt/sky/skyreckoning.exe";
    crashTime Now{2026, 11, 22, 9, 8, 7};
    std::map<std::string, std::string> Files;  // that can be read
    bool Creates = true;                       // whether files can be made

    // What came of it.
    std::map<std::string, std::string> Written;
    std::vector<std::string> Told;  // "caption: text"
};

// Since the last fakeReset().
fakeCrashFacts& fakeCrash();

// The exception happens now, on this thread. False when nobody watches.
bool fakeCrashHappens();
