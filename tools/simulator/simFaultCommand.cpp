#include "tools/simulator/simFaultCommand.h"

#include "tools/simulator/simNumber.h"

#include <algorithm>
#include <optional>

namespace {

enum class argument : uint8_t {
    None,
    Switch,  // on or off
    Count,
    Share,  // 0 to 1
};

// What is read of an argument; which of it counts is the row's business.
struct value {
    bool On = false;
    unsigned Count = 0;
    double Share = 0;
};

struct commandRow {
    std::string_view Name;
    argument Argument;
    void (*Set)(simFaults& faults, const value& given);
};

constexpr commandRow Commands[] = {
    {"silence", argument::Switch, [](simFaults& faults, const value& given) { faults.Silent = given.On; }},
    {"nak", argument::Switch, [](simFaults& faults, const value& given) { faults.Nak = given.On; }},
    {"lose", argument::Count,
     [](simFaults& faults, const value& given) { faults.LoseAnswers = given.Count; }},
    {"errors", argument::Share,
     [](simFaults& faults, const value& given) { faults.ByteErrors = given.Share; }},
    {"cut", argument::Share, [](simFaults& faults, const value& given) { faults.Cut = given.Share; }},
    {"unplug", argument::None, [](simFaults& faults, const value&) { faults.Unplugged = true; }},
    {"plug", argument::None, [](simFaults& faults, const value&) { faults.Unplugged = false; }},
};

constexpr std::string_view Help = "silence on|off   hears and obeys, but nothing leaves\n"
                                  "nak on|off       refuses all it can refuse\n"
                                  "lose N           the next N answers are lost\n"
                                  "errors SHARE     so many bytes leave with one bit wrong, 0 to 1\n"
                                  "cut SHARE        so many messages break off somewhere, 0 to 1\n"
                                  "unplug, plug     takes the receiver away, and brings it back\n";

constexpr std::string_view Blanks = " \t\r\n";

std::string_view Trimmed(std::string_view text)
{
    const size_t begin = text.find_first_not_of(Blanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(Blanks) + 1 - begin);
}

std::optional<value> ReadValue(argument kind, std::string_view text)
{
    value given;
    if (kind == argument::None)
        return text.empty() ? std::optional(given) : std::nullopt;
    if (kind == argument::Switch) {
        given.On = text == "on";
        return given.On || text == "off" ? std::optional(given) : std::nullopt;
    }
    const std::optional<double> number = simNumberOfText(text);
    if (!number || *number < 0)
        return std::nullopt;
    if (kind == argument::Share) {
        given.Share = *number;
        return given.Share <= 1 ? std::optional(given) : std::nullopt;
    }
    constexpr double Most = 1e6;
    given.Count = static_cast<unsigned>(std::min(*number, Most));
    return given.Count == *number ? std::optional(given) : std::nullopt;
}

}  // namespace

std::string_view simFaultHelp()
{
    return Help;
}

std::string simFaultCommand(simFaults& faults, std::string_view line)
{
    const std::string_view text = Trimmed(line);
    if (text.empty())
        return {};
    const size_t end = std::min(text.find_first_of(Blanks), text.size());
    const std::string_view name = text.substr(0, end);
    const commandRow* const row = std::ranges::find(Commands, name, &commandRow::Name);
    if (row == std::end(Commands))
        return "no such command: " + std::string(name);
    const std::optional<value> given = ReadValue(row->Argument, Trimmed(text.substr(end)));
    if (!given)
        return "not understood: " + std::string(text);
    row->Set(faults, *given);
    return {};
}
