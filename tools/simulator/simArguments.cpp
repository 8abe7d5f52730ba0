#include "tools/simulator/simArguments.h"

#include "tools/simulator/simFaultCommand.h"
#include "tools/simulator/simModels.h"
#include "tools/simulator/simNumber.h"
#include "tools/simulator/simTime.h"

#include <algorithm>
#include <utility>

namespace {

// Whether an option could be used; false when its value makes no sense.
using setter = bool (*)(simArguments& arguments, std::string_view value);

struct optionRow {
    std::string_view Name;
    std::string_view Value;  // what stands for it in the usage; empty for an option without one
    std::string_view Help;
    setter Set;
};

bool SetModel(simArguments& arguments, std::string_view value)
{
    const simModelRow* const row = simModelNamed(value);
    if (row == nullptr)
        return false;
    arguments.Receiver.Model = row->Model;
    return true;
}

bool SetPty(simArguments& arguments, std::string_view value)
{
    constexpr std::string_view Prefix = "tty";
    arguments.Pty = value;
    return value.starts_with(Prefix) && value.size() > Prefix.size() && value.find('/') == value.npos;
}

bool SetServe(simArguments& arguments, std::string_view value)
{
    const std::optional<double> port = simNumberOfText(value);
    if (!port || *port < 0 || *port > 65535 || static_cast<int>(*port) != *port)
        return false;
    arguments.Serve = static_cast<uint16_t>(*port);
    return true;
}

bool SetLine(simArguments& arguments, std::string_view value)
{
    const std::optional<simLine> line = simLineOfText(value);
    arguments.Receiver.Line = line.value_or(simLine());
    arguments.Recording.Line = arguments.Receiver.Line;
    return line.has_value();
}

bool SetPort(simArguments& arguments, std::string_view value)
{
    constexpr std::pair<std::string_view, simPort> Ports[] = {
        {"i2c", simPort::I2C}, {"uart1", simPort::UART1}, {"uart2", simPort::UART2}, {"usb", simPort::USB}};
    for (const auto& [name, port] : Ports) {
        if (name == value) {
            arguments.Receiver.Port = port;
            return true;
        }
    }
    return false;
}

bool SetRate(simArguments& arguments, std::string_view value)
{
    constexpr double Fastest = 10e6;
    const std::optional<double> rate = simNumberOfText(value);
    if (!rate || *rate < 1 || *rate > Fastest)
        return false;
    // One word for both: solutions a second of a receiver, bytes a second of a recording.
    arguments.Receiver.Rate = static_cast<unsigned>(*rate);
    arguments.Recording.BytesPerSecond = *rate;
    return true;
}

// "47.3769,8.5417" or with an altitude behind.
bool SetPosition(simArguments& arguments, std::string_view value)
{
    double numbers[3] = {0, 0, arguments.Receiver.Place.Altitude};
    size_t count = 0;
    while (count < std::size(numbers)) {
        const size_t comma = std::min(value.find(','), value.size());
        const std::optional<double> number = simNumberOfText(value.substr(0, comma));
        if (!number)
            return false;
        numbers[count++] = *number;
        if (comma == value.size())
            break;
        value.remove_prefix(comma + 1);
        if (count == std::size(numbers))
            return false;
    }
    simPlace& place = arguments.Receiver.Place;
    place.Latitude = numbers[0];
    place.Longitude = numbers[1];
    place.Altitude = numbers[2];
    return count >= 2 && place.Latitude >= -90 && place.Latitude <= 90 && place.Longitude >= -180 &&
           place.Longitude <= 180 && place.Altitude >= -500 && place.Altitude <= 20'000;
}

bool SetTime(simArguments& arguments, std::string_view value)
{
    const std::optional<int64_t> start = simUtcOfText(value);
    arguments.Receiver.StartUtcNs = start.value_or(0);
    arguments.FixedStart = true;
    return start.has_value();
}

bool SetSpeed(simArguments& arguments, std::string_view value)
{
    constexpr double Fastest = 100;
    const std::optional<double> speed = simNumberOfText(value);
    arguments.Speed = speed.value_or(0);
    return arguments.Speed >= 1 && arguments.Speed <= Fastest;
}

bool SetSeed(simArguments& arguments, std::string_view value)
{
    const std::optional<double> seed = simNumberOfText(value);
    if (!seed || *seed < 0 || *seed > 1e15)
        return false;
    arguments.Receiver.Seed = static_cast<uint64_t>(*seed);
    return true;
}

// A fault on the command line is said as while running.
bool SetFault(simArguments& arguments, std::string_view name, std::string_view value)
{
    return simFaultCommand(arguments.Faults, std::string(name) + " " + std::string(value)).empty();
}

constexpr optionRow Options[] = {
    {"--model", "NAME", "the receiver, see below; m9 without it", SetModel},
    {"--pty", "NAME", "a virtual serial port, a link NAME (tty...) in $XDG_RUNTIME_DIR/skyreckoning", SetPty},
    {"--serve", "PORT", "a server on this TCP port, 0 for any", SetServe},
    {"--line", "9600N1", "where the receiver's line stands; without it as from its factory", SetLine},
    {"--port", "NAME", "of a u-blox: i2c, uart1, uart2 or usb, which has no line", SetPort},
    {"--nmea", "", "a u-blox starts with NMEA, as from the factory",
     [](simArguments& arguments, std::string_view) { return arguments.Receiver.NMEA = true; }},
    {"--rate", "N", "solutions a second, 1 to 25; of a recording, bytes a second", SetRate},
    {"--position", "LAT,LON[,ALT]", "where the antenna stands, degrees and metres", SetPosition},
    {"--time", "2026-11-21T12:00:00", "when it begins, UTC; without it now", SetTime},
    {"--speed", "N", "its clock and its line go so many times as fast, 1 to 100", SetSpeed},
    {"--seed", "N", "another run of what looks random", SetSeed},
    {"--silence", "", "starts silent",
     [](simArguments& arguments, std::string_view) { return SetFault(arguments, "silence", "on"); }},
    {"--nak", "", "starts refusing",
     [](simArguments& arguments, std::string_view) { return SetFault(arguments, "nak", "on"); }},
    {"--lose", "N", "loses the first N answers",
     [](simArguments& arguments, std::string_view value) { return SetFault(arguments, "lose", value); }},
    {"--errors", "SHARE", "so many bytes are wrong, 0 to 1",
     [](simArguments& arguments, std::string_view value) { return SetFault(arguments, "errors", value); }},
    {"--cut", "SHARE", "so many messages are cut, 0 to 1",
     [](simArguments& arguments, std::string_view value) { return SetFault(arguments, "cut", value); }},
    {"--unplugged", "", "starts unplugged",
     [](simArguments& arguments, std::string_view) { return SetFault(arguments, "unplug", ""); }},
    {"--loop", "", "a recording begins again at its end",
     [](simArguments& arguments, std::string_view) { return arguments.Recording.Loop = true; }},
    {"--help", "", "this text",
     [](simArguments& arguments, std::string_view) { return arguments.Help = true; }},
};

// Takes one option and its value off the front; gives what is wrong.
std::string TakeOption(simArguments& arguments, std::span<const std::string_view>& words)
{
    const std::string_view name = words.front();
    const optionRow* const row = std::ranges::find(Options, name, &optionRow::Name);
    if (row == std::end(Options))
        return "no such option: " + std::string(name);
    words = words.subspan(1);
    std::string_view value;
    if (!row->Value.empty()) {
        if (words.empty())
            return std::string(name) + " wants a value";
        value = words.front();
        words = words.subspan(1);
    }
    if (!row->Set(arguments, value))
        return "makes no sense: " + std::string(name) + " " + std::string(value);
    return {};
}

void AddColumn(std::string& text, std::string_view left, std::string_view right)
{
    constexpr size_t Width = 30;
    text += "  ";
    text += left;
    text.append(Width - std::min(Width - 1, left.size()), ' ');
    text += right;
    text += '\n';
}

}  // namespace

simArguments simReadArguments(std::span<const std::string_view> words)
{
    simArguments arguments;
    const bool lineGiven = std::ranges::find(words, std::string_view("--line")) != words.end();
    const bool rateGiven = std::ranges::find(words, std::string_view("--rate")) != words.end();
    if (!words.empty() && words.front() == "replay") {
        if (words.size() < 2)
            arguments.Wrong = "replay wants a file";
        else
            arguments.Replay = words[1];
        words = words.subspan(std::min<size_t>(words.size(), 2));
    }
    while (!words.empty() && arguments.Wrong.empty())
        arguments.Wrong = TakeOption(arguments, words);
    for (const simModelRow& row : simModels()) {
        if (!lineGiven && row.Model == arguments.Receiver.Model)
            arguments.Receiver.Line = row.Line;
    }
    // A recording goes as fast as its line unless it is told otherwise.
    if (lineGiven && !rateGiven)
        arguments.Recording.BytesPerSecond = arguments.Recording.Line.Baud / 10.0;
    constexpr unsigned Fastest = 25;
    if (arguments.Wrong.empty() && arguments.Replay.empty() && arguments.Receiver.Rate > Fastest)
        arguments.Wrong = "no receiver has more than 25 solutions a second";
    const bool goesNowhere = arguments.Pty.empty() && !arguments.Serve;
    if (arguments.Wrong.empty() && !arguments.Help && goesNowhere)
        arguments.Wrong = "--pty or --serve is wanted, or both";
    return arguments;
}

std::string simUsage()
{
    std::string text =
        "usage: skysim [OPTION ...]\n"
        "       skysim replay FILE [OPTION ...]\n"
        "Plays a GNSS receiver, or a recording of one, on a virtual serial port or as a server.\n\n";
    for (const optionRow& row : Options)
        AddColumn(text, std::string(row.Name) + (row.Value.empty() ? "" : " ") + std::string(row.Value),
                  row.Help);
    text += "\nModels:\n";
    for (const simModelRow& row : simModels())
        AddColumn(text, row.Name, row.Description);
    text += "\nWhile it runs, lines on standard input:\n";
    text += simFaultHelp();
    return text;
}
