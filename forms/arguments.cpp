#include "forms/arguments.h"

#include <utility>

namespace {

constexpr std::string_view blanks = " \t";
constexpr char quote = '"';

std::vector<std::string>& kept()
{
    static std::vector<std::string> only;
    return only;
}

// Where the argument that begins at `from` ends.
size_t endOf(std::string_view line, size_t from)
{
    bool isQuoted = false;
    for (size_t at = from; at < line.size(); ++at) {
        if (line[at] == quote)
            isQuoted = !isQuoted;
        else if (!isQuoted && blanks.find(line[at]) != std::string_view::npos)
            return at;
    }
    return line.size();
}

std::string_view withoutQuotes(std::string_view argument)
{
    constexpr size_t pair = 2;
    if (argument.size() < pair || argument.front() != quote || argument.back() != quote)
        return argument;
    return argument.substr(1, argument.size() - pair);
}

}  // namespace

std::vector<std::string> argumentsSplit(std::string_view commandLine)
{
    std::vector<std::string> all;
    for (size_t at = commandLine.find_first_not_of(blanks); at < commandLine.size();
         at = commandLine.find_first_not_of(blanks, at)) {
        const size_t end = endOf(commandLine, at);
        all.emplace_back(withoutQuotes(commandLine.substr(at, end - at)));
        at = end;
    }
    return all;
}

void argumentsKeep(std::vector<std::string> arguments)
{
    kept() = std::move(arguments);
}

const std::vector<std::string>& arguments()
{
    return kept();
}
