// skyreckoning-console: the program without its screen, for machines that have none.
#include "link/serialPortList.h"
#include "platform/stop.h"
#include "platform/terminal.h"
#include "tools/console/consoleMonitor.h"
#include "tools/console/consoleOptions.h"
#include "tools/console/consoleView.h"

#include <cstdio>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr int ExitFault = 1;
constexpr int ExitUsage = 2;
constexpr uint32_t TurnMs = 50;

constexpr char HideCursor[] = "\x1B[?25l\x1B[2J";
constexpr char ShowCursor[] = "\x1B[?25h";
constexpr char Home[] = "\x1B[H";
constexpr char ClearBelow[] = "\x1B[J";

int complain(const std::string& reason, int exitCode)
{
    std::fprintf(stderr, "skyreckoning-console: %s\n", reason.c_str());
    return exitCode;
}

// False when nobody reads any more.
bool put(const std::string& text)
{
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}

// Whoever watches: a person at a terminal, or a program that reads lines.
class screen
{
public:
    screen(const consoleOptions& options, consoleMonitor& monitor) : Options(options), Monitor(monitor)
    {
        IsTable = !options.Json && !options.Lines && terminalReady();
        Monitor.OnStatus = [this](const std::string& status) { ShowStatus(status); };
        Monitor.OnGroup = [this] { ShowGroup(); };
        if (IsTable)
            Put(HideCursor);
    }

    ~screen()
    {
        if (IsTable)
            put(ShowCursor);
    }
    screen(const screen&) = delete;
    screen& operator=(const screen&) = delete;

    bool IsRead() const { return Readable; }

    // Clients come and go without a word of the receiver.
    void Refresh()
    {
        if (IsTable && Monitor.Clients() != Clients)
            ShowTable();
        if (!SaidServing && Monitor.ServingPort() != 0)
            SayServing();
    }

private:
    void ShowStatus(const std::string& status)
    {
        if (IsTable)
            ShowTable();
        else
            Put(Options.Json ? consoleJsonStatus(status) + "\n" : status + "\n");
    }

    void ShowGroup()
    {
        if (IsTable)
            ShowTable();
        else
            Put((Options.Json ? consoleJson(Monitor.Link()) : consoleLine(Monitor.Link())) + "\n");
    }

    void SayServing()
    {
        SaidServing = true;
        if (!IsTable)
            ShowStatus("Serving on port " + std::to_string(Monitor.ServingPort()));
    }

    void ShowTable()
    {
        Clients = Monitor.Clients();
        consoleFacts facts;
        facts.Source = Options.Host.empty()
                           ? Options.Port + ", " + std::to_string(Monitor.Link().BaudRate()) + " baud"
                           : Options.Host;
        facts.Status = Monitor.Status();
        facts.Serving = Options.Serve.has_value();
        facts.ServingPort = Monitor.ServingPort();
        facts.Clients = Clients;
        Put(Home + consoleTable(Monitor.Link(), facts, terminalNow()) + ClearBelow);
    }

    void Put(const std::string& text) { Readable = Readable && put(text); }

    const consoleOptions& Options;
    consoleMonitor& Monitor;
    bool IsTable = false;
    bool Readable = true;
    bool SaidServing = false;
    unsigned Clients = 0;
};

int monitor(const consoleOptions& options)
{
    stopWatch();
    consoleMonitor watched(options);
    std::string fault;
    {
        screen shown(options, watched);
        bool goesOn = watched.Start(fault);
        while (goesOn && !stopAsked() && shown.IsRead()) {
            goesOn = watched.Turn(TurnMs, fault);
            shown.Refresh();
        }
        watched.Stop();
    }
    return fault.empty() ? 0 : complain(fault, ExitFault);
}

int listPorts()
{
    std::string text;
    for (const serialPortInfo& port : serialPortList())
        text += port.port + "\t" + port.friendlyName + "\n";
    return put(text) ? 0 : ExitFault;
}

}  // namespace

int main(int count, char** arguments)
{
    std::string fault;
    const std::vector<const char*> given(arguments + (count > 0 ? 1 : 0), arguments + count);
    const std::optional<consoleOptions> options = consoleParse(given, fault);
    if (!options)
        return complain(fault, ExitUsage);
    switch (options->What) {
    case consoleOptions::Task::ShowHelp:
        return put(consoleUsage) ? 0 : ExitFault;
    case consoleOptions::Task::ShowVersion:
        return put("skyreckoning-console " SKY_VERSION "\n") ? 0 : ExitFault;
    case consoleOptions::Task::ListPorts:
        return listPorts();
    case consoleOptions::Task::Monitor:
        return monitor(*options);
    }
    return ExitUsage;
}
