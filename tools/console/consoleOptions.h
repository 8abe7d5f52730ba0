// What skyreckoning-console is asked to do.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

struct consoleOptions {
    enum class Task : uint8_t {
        Monitor,
        ListPorts,
        ShowHelp,
        ShowVersion,
    };

    Task What = Task::Monitor;
    std::string Port;               // the serial port; empty with Host
    std::string Host;               // "host" or "host:port"; empty with Port
    std::optional<uint16_t> Serve;  // the TCP port for clients, 0 for any that is free
    bool Json = false;              // a JSON object a line
    bool Lines = false;             // lines also on a terminal
};

// A page that says how to call the program.
extern const char consoleUsage[];

// Takes the arguments, without the program's name. Nothing when they make no sense; `fault` then says why, on
// one line.
std::optional<consoleOptions> consoleParse(std::span<const char* const> arguments, std::string& fault);
