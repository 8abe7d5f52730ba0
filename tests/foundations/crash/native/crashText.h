// A report read back: every section in its place, and what they say.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct crashTextModule {
    uint64_t Base = 0, End = 0;
    std::string Name, Path;
};

struct crashTextThread {
    uint32_t Id = 0;
    std::string Registers;           // and the stack
    std::vector<std::string> Calls;  // names of functions, or modules with offsets
};

struct crashTextException {
    std::string Code, Name, Flags;
    uint64_t Address = 0;
    std::string Module;  // empty outside all of them
    uint64_t Offset = 0;
    std::vector<std::string> Parameters;
};

struct crashText {
    std::string Fault;  // what is not as a report has to be; empty when all is
    std::string Processor, System, Version;
    std::vector<crashTextModule> Modules;
    std::vector<crashTextThread> Threads;  // but the one that crashed
    std::vector<crashTextException> Exceptions;
    crashTextThread Crashed;
    std::string Memory;
};

crashText crashTextOf(const std::string& bytes);
