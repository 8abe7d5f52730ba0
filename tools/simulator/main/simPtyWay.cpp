#include "tools/simulator/main/simPtyWay.h"

#include <algorithm>

namespace {

// How fast a port without a line goes, bytes a second: little enough for what a system holds between two
// calls.
constexpr double WithoutLine = 400'000;

std::string FaultText(ptyFault fault, const std::string& name)
{
    switch (fault) {
    case ptyFault::None:
        return {};
    case ptyFault::Unavailable:
        return "this system has no virtual serial ports; use --serve";
    case ptyFault::Name:
        return "the name of a port begins with tty: " + name;
    case ptyFault::NoFolder:
        return "XDG_RUNTIME_DIR names no folder that can be written";
    case ptyFault::Taken:
        return "there is another " + name;
    case ptyFault::System:
        break;
    }
    return "the system gives no virtual serial port";
}

}  // namespace

std::string simPtyWay::Plug()
{
    ptyFault fault = ptyFault::None;
    Port.reset(ptyOpen(Name, fault));
    return FaultText(fault, Name);
}

void simPtyWay::Unplug()
{
    Port.reset();
    Pace.Clear();
}

simBytes simPtyWay::Receive(const simLine& receiver)
{
    simBytes heard;
    if (!Port)
        return heard;
    uint8_t bytes[4096];
    size_t count = 0;
    while ((count = ptyRead(Port.get(), bytes, sizeof bytes)) > 0)
        heard.insert(heard.end(), bytes, bytes + count);
    const simLine host = HostLine();
    return !HasLine || simUartAgrees(host, receiver) ? heard : simUartMisread(heard, host, receiver);
}

void simPtyWay::Send(std::span<const uint8_t> bytes, const simLine& receiver, int64_t nowNs)
{
    if (!Port)
        return;
    Pace.Add(bytes);
    const double speed = HasLine ? static_cast<double>(receiver.Baud) / simUartBits(receiver) : WithoutLine;
    simBytes due = Pace.Due(nowNs, speed);
    const simLine host = HostLine();
    if (HasLine && !simUartAgrees(receiver, host))
        due = simUartMisread(due, receiver, host);
    // What the host does not fetch in time is lost, as at a real port.
    ptyWrite(Port.get(), due.data(), due.size());
}

size_t simPtyWay::BacklogLimit(const simLine& receiver) const
{
    constexpr size_t longest = 4096;
    const double second = static_cast<double>(receiver.Baud) / simUartBits(receiver);
    return HasLine ? std::min(longest, static_cast<size_t>(second / 2)) : longest;
}

simLine simPtyWay::HostLine() const
{
    const ptySetting setting = ptyHostSetting(Port.get());
    return {setting.BaudRate, setting.Odd ? 'O' : 'N', setting.StopBits};
}
