#include "platform/win32/commandLine.h"

#include "platform/win32/text.h"

#include <algorithm>

namespace {

// The system's limit, without the NUL at the end.
constexpr size_t longestLine = 32'766;

// Backslashes stand for themselves, except before a quote: there each takes another one to keep it from the
// quote. The closing quote counts as one too.
void appendQuoted(std::u16string& line, const std::u16string& argument)
{
    line += u'"';
    size_t backslashes = 0;
    for (const char16_t unit : argument) {
        if (unit == u'\\') {
            ++backslashes;
        } else {
            if (unit == u'"')
                line.append(backslashes + 1, u'\\');
            backslashes = 0;
        }
        line += unit;
    }
    line.append(backslashes, u'\\');
    line += u'"';
}

bool endsWith(const std::u16string& text, std::u16string_view asciiLower)
{
    if (text.size() < asciiLower.size())
        return false;
    return std::equal(asciiLower.rbegin(), asciiLower.rend(), text.rbegin(),
                      [](char16_t wanted, char16_t unit) {
                          return wanted == (unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit);
                      });
}

}  // namespace

std::optional<std::u16string> commandLineOf(const std::vector<std::string>& arguments)
{
    // The program's own name ends at the next quote, whatever stands before that.
    if (arguments.empty() || arguments.front().find('"') != std::string::npos)
        return std::nullopt;
    const std::optional<std::u16string> program = textTo16(arguments.front());
    if (!program)
        return std::nullopt;
    std::u16string line = u'"' + *program + u'"';
    for (size_t at = 1; at < arguments.size(); ++at) {
        const std::optional<std::u16string> argument = textTo16(arguments[at]);
        if (!argument)
            return std::nullopt;
        line += u' ';
        appendQuoted(line, *argument);
    }
    if (line.size() > longestLine)
        return std::nullopt;
    return line;
}

bool commandLineRunsShell(const std::u16string& program)
{
    return endsWith(program, u".bat") || endsWith(program, u".cmd");
}
