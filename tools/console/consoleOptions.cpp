#include "tools/console/consoleOptions.h"

#include <algorithm>
#include <charconv>
#include <string_view>

const char consoleUsage[] =
    "usage: skyreckoning-console --port NAME [--serve PORT] [--json] [--lines]\n"
    "       skyreckoning-console --host HOST[:PORT] [--json] [--lines]\n"
    "       skyreckoning-console --list\n"
    "Monitors a GNSS receiver on a serial port, or at the far end of a network.\n"
    "\n"
    "  --port     the serial port, such as ttyUSB0 or COM5\n"
    "  --host     a copy of the program that serves its receiver; port 4003 without one\n"
    "  --serve    serves the receiver to clients on this TCP port, 0 for any that is free\n"
    "  --json     a line is a JSON object\n"
    "  --lines    lines instead of a table also on a terminal\n"
    "  --list     the serial ports of this machine\n"
    "  --version  the version of the program\n";

namespace {

bool takePort(std::string_view value, consoleOptions& options)
{
    options.Port = value;
    return !value.empty();
}

// "host", "host:4003"; only a number is a port here, so that a slip is told at once.
bool takeHost(std::string_view value, consoleOptions& options)
{
    options.Host = value;
    const size_t colon = value.find(':');
    if (colon == std::string_view::npos)
        return !value.empty();
    const std::string_view port = value.substr(colon + 1);
    uint16_t number = 0;
    const auto [stop, error] = std::from_chars(port.data(), port.data() + port.size(), number);
    return colon > 0 && error == std::errc() && stop == port.data() + port.size() && number != 0;
}

bool takeServe(std::string_view value, consoleOptions& options)
{
    uint16_t number = 0;
    const auto [stop, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    options.Serve = number;
    return error == std::errc() && stop == value.data() + value.size();
}

struct valueRow {
    std::string_view Name;
    bool (*Take)(std::string_view value, consoleOptions& options);
    std::string_view Wanted;
};

constexpr valueRow Values[] = {
    {"--port", takePort, "the name of a serial port"},
    {"--host", takeHost, "a host, or a host and a port such as antenna:4003"},
    {"--serve", takeServe, "a port from 0 to 65535"},
};

struct switchRow {
    std::string_view Name;
    void (*Take)(consoleOptions& options);
};

constexpr switchRow Switches[] = {
    {"--json", [](consoleOptions& options) { options.Json = true; }},
    {"--lines", [](consoleOptions& options) { options.Lines = true; }},
    {"--list", [](consoleOptions& options) { options.What = consoleOptions::Task::ListPorts; }},
    {"--help", [](consoleOptions& options) { options.What = consoleOptions::Task::ShowHelp; }},
    {"--version", [](consoleOptions& options) { options.What = consoleOptions::Task::ShowVersion; }},
};

// What follows an option on the command line; null at its end.
bool take(std::string_view name, const char* next, consoleOptions& options, bool& tookNext,
          std::string& fault)
{
    const auto* const plain = std::ranges::find(Switches, name, &switchRow::Name);
    if (plain != std::end(Switches)) {
        plain->Take(options);
        return true;
    }
    const auto* const row = std::ranges::find(Values, name, &valueRow::Name);
    if (row == std::end(Values)) {
        fault = "there is no option \"" + std::string(name) + "\"; see --help";
        return false;
    }
    tookNext = next != nullptr;
    if (tookNext && row->Take(next, options))
        return true;
    fault = std::string(row->Name) + " takes " + std::string(row->Wanted);
    return false;
}

const char* contradiction(const consoleOptions& options)
{
    if (options.What != consoleOptions::Task::Monitor)
        return nullptr;
    if (options.Port.empty() && options.Host.empty())
        return "where is the receiver? --port or --host says so; see --help";
    if (!options.Port.empty() && !options.Host.empty())
        return "--port and --host exclude each other";
    if (!options.Host.empty() && options.Serve)
        return "--serve needs --port: what comes from a server is not served on";
    return nullptr;
}

}  // namespace

std::optional<consoleOptions> consoleParse(std::span<const char* const> arguments, std::string& fault)
{
    consoleOptions options;
    while (!arguments.empty()) {
        bool tookNext = false;
        const char* const next = arguments.size() > 1 ? arguments[1] : nullptr;
        if (!take(arguments[0], next, options, tookNext, fault))
            return std::nullopt;
        arguments = arguments.subspan(tookNext ? 2 : 1);
    }
    if (const char* const reason = contradiction(options)) {
        fault = reason;
        return std::nullopt;
    }
    return options;
}
