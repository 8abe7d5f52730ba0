#include "tests/foundations/crash/native/crashText.h"

#include <charconv>
#include <string_view>

namespace {

constexpr std::string_view Separator =
    "--------------------------------------------------------------------------------";

class reader
{
public:
    explicit reader(std::string_view bytes) : Left(bytes) {}

    std::string Fault;

    bool AtEnd() const { return Left.empty() || !Fault.empty(); }

    // The next line, which stays.
    std::string_view Line() const { return Left.substr(0, Left.find("\r\n")); }

    std::string_view Take()
    {
        const std::string_view line = Line();
        if (line.size() == Left.size() && Fault.empty())
            Fault = "no line end after: " + std::string(line);
        Left.remove_prefix(line.size() == Left.size() ? line.size() : line.size() + 2);
        return line;
    }

    bool Has(std::string_view start) const { return Line().substr(0, start.size()) == start; }

    // What follows `start` in the next line, which must begin so.
    std::string Expect(std::string_view start)
    {
        if (!Has(start)) {
            if (Fault.empty())
                Fault = "\"" + std::string(start) + "\" expected, found: " + std::string(Line());
            return {};
        }
        return std::string(Take().substr(start.size()));
    }

    // The next line is `text` and nothing else.
    void ExpectLine(std::string_view text)
    {
        if (!Expect(text).empty() && Fault.empty())
            Fault = "more than \"" + std::string(text) + "\"";
    }

    std::string_view Rest() const { return Left; }

private:
    std::string_view Left;
};

uint64_t Hex(std::string_view text)
{
    uint64_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return value;
}

// "    BASE - END - NAME - PATH", with a version before the path where there is one.
crashTextModule ModuleOf(const std::string& text)
{
    constexpr size_t Digits = 16, Between = 3;
    crashTextModule module;
    module.Base = Hex(text.substr(0, Digits));
    module.End = Hex(text.substr(Digits + Between, Digits));
    const size_t name = 2 * (Digits + Between);
    const size_t behind = text.find(" - ", name);
    module.Name = text.substr(name, behind - name);
    module.Path = text.substr(text.rfind(" - ") + Between);
    return module;
}

// "      NAME + DISPLACEMENT ADDRESS"
std::string CallOf(std::string_view line)
{
    line = line.substr(0, line.rfind(' '));
    const size_t plus = line.rfind(" + ");
    return std::string(line.substr(0, plus));
}

void ReadContext(reader& lines, crashTextThread& thread)
{
    lines.ExpectLine("");  // the one that sets it off
    while (!lines.AtEnd() && !lines.Has("    Backtrace"))
        thread.Registers += std::string(lines.Take()) + "\n";
    lines.ExpectLine("    Backtrace");
    while (lines.Has("      ")) {
        const std::string_view line = lines.Take();
        if (line.substr(0, 10) != "          ")  // that one is a line of a source
            thread.Calls.push_back(CallOf(line.substr(6)));
    }
}

crashTextThread ThreadOf(reader& lines)
{
    crashTextThread thread;
    const std::string head = lines.Expect("Thread ID: ");
    thread.Id = static_cast<uint32_t>(Hex(head.substr(0, 8)));
    if (lines.Line().empty()) {
        ReadContext(lines, thread);
        lines.ExpectLine("");
    }
    return thread;
}

crashTextException ExceptionOf(reader& lines)
{
    crashTextException one;
    const std::string head = lines.Expect("Exception: ");
    const size_t comma = head.rfind(", ");
    one.Code = head.substr(0, 8);
    one.Name = head.substr(8, comma - 8);
    one.Flags = head.substr(comma + 2);
    const std::string place = lines.Expect("Address: ");
    one.Address = Hex(place.substr(0, 16));
    if (place.size() > 16) {
        const size_t plus = place.rfind(" + ");
        one.Module = place.substr(19, plus - 19);
        one.Offset = Hex(place.substr(plus + 3));
    }
    lines.ExpectLine("Parameters:");
    while (lines.Has("    "))
        one.Parameters.emplace_back(lines.Take().substr(4));
    return one;
}

void ReadHead(reader& lines, crashText& text)
{
    lines.ExpectLine("System information:");
    text.Processor = lines.Expect("  CPU: ");
    text.System = lines.Expect("  OS: ");
    lines.ExpectLine("");
    if (lines.Has("Application version: "))
        text.Version = lines.Expect("Application version: ");
    lines.ExpectLine("Loaded modules:");
    while (lines.Has("    "))
        text.Modules.push_back(ModuleOf(std::string(lines.Take().substr(4))));
}

}  // namespace

crashText crashTextOf(const std::string& bytes)
{
    crashText text;
    reader lines(bytes);
    ReadHead(lines, text);
    lines.ExpectLine(Separator);
    while (lines.Has("Thread ID: ")) {
        text.Threads.push_back(ThreadOf(lines));
        lines.ExpectLine(Separator);
    }
    while (!lines.AtEnd() && !lines.Line().empty()) {
        text.Exceptions.push_back(ExceptionOf(lines));
        if (lines.Line() == Separator)
            lines.Take();
    }
    lines.ExpectLine("");
    lines.ExpectLine("Exception context:");
    ReadContext(lines, text.Crashed);
    lines.ExpectLine(Separator);
    lines.ExpectLine("Memory management:");
    if (!lines.Has("Reference address ") && lines.Fault.empty())
        lines.Fault = "the heap does not tell of itself";
    text.Memory = lines.Rest();
    text.Fault = lines.Fault;
    return text;
}
