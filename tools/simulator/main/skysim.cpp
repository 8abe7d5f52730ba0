// skysim: a GNSS receiver to test with, on a virtual serial port or behind a TCP server.
#include "platform/clock.h"
#include "platform/stop.h"
#include "platform/thread.h"
#include "tools/simulator/main/simPtyWay.h"
#include "tools/simulator/main/simServerWay.h"
#include "tools/simulator/main/simStandardInput.h"
#include "tools/simulator/simArguments.h"
#include "tools/simulator/simFaultCommand.h"
#include "tools/simulator/simReplay.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int ExitUsage = 2;
constexpr uint32_t StepMs = 5;
constexpr uint32_t FastStepMs = 1;
constexpr int64_t MomentNs = 5'000'000;

int Fail(const std::string& why)
{
    std::fprintf(stderr, "skysim: %s\n", why.c_str());
    return ExitUsage;
}

int64_t UtcNow()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
}

std::optional<simBytes> ReadWholeFile(const std::string& name)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "rb"), std::fclose);
    if (!file)
        return std::nullopt;
    simBytes all;
    uint8_t bytes[65536];
    size_t count = 0;
    while ((count = std::fread(bytes, 1, sizeof bytes, file.get())) > 0)
        all.insert(all.end(), bytes, bytes + count);
    return std::ferror(file.get()) == 0 ? std::optional(std::move(all)) : std::nullopt;
}

std::string LineText(const simLine& line)
{
    return std::to_string(line.Baud) + line.Parity + std::to_string(line.StopBits);
}

void Say(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

// A receiver and its ways out.
class simulation
{
public:
    // Gives what went wrong, or an empty text.
    std::string Open(const simArguments& arguments);
    void RunUntilStopped();

private:
    std::string OpenSource(const simArguments& arguments);
    std::string OpenWays(const simArguments& arguments);
    void Obey();
    void Step();
    void Live(int64_t now, const simLine& line);
    int64_t Now() const;

    std::unique_ptr<simReceiver> Receiver;
    const simReplay* Recording = nullptr;
    bool SaidEnd = false;
    double Speed = 1;
    int64_t BegunNs = 0;
    int64_t LivedNs = 0;  // up to here on the receiver's clock
    std::unique_ptr<simPtyWay> Pty;
    std::unique_ptr<simServerWay> Server;
};

std::string simulation::Open(const simArguments& arguments)
{
    std::string wrong = OpenSource(arguments);
    if (!wrong.empty())
        return wrong;
    Receiver->Faults = arguments.Faults;
    Speed = arguments.Speed;
    BegunNs = clockSteadyNs();
    return OpenWays(arguments);
}

std::string simulation::OpenSource(const simArguments& arguments)
{
    if (arguments.Replay.empty()) {
        simOptions options = arguments.Receiver;
        if (!arguments.FixedStart)
            options.StartUtcNs = UtcNow();
        Receiver = simMake(options);
        return {};
    }
    std::optional<simBytes> recorded = ReadWholeFile(arguments.Replay);
    if (!recorded)
        return "cannot be read: " + arguments.Replay;
    auto replay = std::make_unique<simReplay>(std::move(*recorded), arguments.Recording);
    Recording = replay.get();
    Receiver = std::move(replay);
    return {};
}

std::string simulation::OpenWays(const simArguments& arguments)
{
    if (!arguments.Pty.empty()) {
        const simPort port = arguments.Receiver.Port;
        Pty = std::make_unique<simPtyWay>(arguments.Pty, port == simPort::UART1 || port == simPort::UART2);
        std::string wrong = Pty->Plug();
        if (!wrong.empty())
            return wrong;
        if (Receiver->Faults.Unplugged)
            Pty->Unplug();
    }
    if (arguments.Serve) {
        Server = std::make_unique<simServerWay>();
        std::string wrong = Server->Open(*arguments.Serve);
        if (!wrong.empty())
            return wrong;
    }
    if (Pty)
        Say("ready " + arguments.Pty + " " + LineText(Receiver->Line()));
    if (Server)
        Say("ready tcp " + std::to_string(Server->Port()));
    return {};
}

void simulation::RunUntilStopped()
{
    while (!stopAsked()) {
        Obey();
        Step();
        // In the longer step a fast receiver would say more at once than a virtual port holds.
        threadSleep(Speed > 1 ? FastStepMs : StepMs);
    }
}

// The receiver's clock, which may go faster than the machine's.
int64_t simulation::Now() const
{
    return static_cast<int64_t>(static_cast<double>(clockSteadyNs() - BegunNs) * Speed);
}

void simulation::Obey()
{
    for (const std::string& line : simStandardInputLines()) {
        const std::string wrong = simFaultCommand(Receiver->Faults, line);
        if (!wrong.empty())
            Fail(wrong);
    }
    if (!Pty || Receiver->Faults.Unplugged != Pty->IsPlugged())
        return;
    if (Receiver->Faults.Unplugged) {
        Pty->Unplug();
        return;
    }
    const std::string wrong = Pty->Plug();
    if (!wrong.empty()) {
        // Said once; the next "plug" tries again.
        Receiver->Faults.Unplugged = true;
        Fail(wrong);
    }
}

void simulation::Step()
{
    const simLine line = Receiver->Line();
    if (Pty)
        Receiver->Take(Pty->Receive(line));
    if (Server)
        Receiver->Take(Server->Receive());
    // However fast its clock goes or however late this is, the line carries one moment's bytes before the
    // next moment adds to them.
    const int64_t now = Now();
    while (LivedNs < now) {
        LivedNs = std::min(now, LivedNs + MomentNs);
        Live(LivedNs, line);
    }
    if (Recording != nullptr && Recording->Ended() && !SaidEnd) {
        SaidEnd = true;
        Say("ended");
    }
}

void simulation::Live(int64_t now, const simLine& line)
{
    const std::vector<uint8_t> due = Receiver->Advance(now);
    if (Pty) {
        Pty->Send(due, line, now);
        Receiver->Backlog = Pty->Backlog();
        Receiver->BacklogLimit = Pty->BacklogLimit(Receiver->Line());
    }
    if (Server)
        Server->Send(due);
}

int Run(const std::vector<std::string_view>& words)
{
    const simArguments arguments = simReadArguments(words);
    if (arguments.Help) {
        std::fputs(simUsage().c_str(), stdout);
        return 0;
    }
    if (!arguments.Wrong.empty())
        return Fail(arguments.Wrong + " (--help tells what there is)");
    stopWatch();
    simulation play;
    const std::string wrong = play.Open(arguments);
    if (!wrong.empty())
        return Fail(wrong);
    simStandardInputStart();
    play.RunUntilStopped();
    return 0;
}

}  // namespace

int main(int count, char** arguments)
{
    const int code = Run({arguments + 1, arguments + count});
    std::fflush(stdout);
    // Everything of ours is closed by now; the thread that waits at standard input cannot be ended.
    std::_Exit(code);
}
