#include "tools/decode/decodeOptions.h"

#include "tools/decode/jsonWriter.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <string_view>

const char decodeUsage[] =
    "usage: skydecode [--protocol nmea|tsip|ubx] [--chunk N] [--today YYYY-MM-DD] [FILE]\n"
    "Decodes what a receiver sent, from FILE or standard input (-), and prints the end state as JSON.\n"
    "\n"
    "  --protocol  one decoder instead of all three\n"
    "  --chunk     bytes that are fed at a time, 1 to 16777216; 4096 without it\n"
    "  --today     the date in UTC by which rolled-over dates are placed, instead of the computer's\n"
    "  --          what follows is no option\n";

namespace {

constexpr size_t LargestChunk = 16777216;

struct protocolRow {
    std::string_view Name;
    uint8_t Protocol;
};

constexpr protocolRow Protocols[] = {
    {"nmea", decodeOptions::NMEA},
    {"tsip", decodeOptions::TSIP},
    {"ubx", decodeOptions::UBX},
};

template <class Number>
bool parse(std::string_view text, Number& number)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

bool takeProtocol(std::string_view value, decodeOptions& options)
{
    const auto* const row = std::ranges::find(Protocols, value, &protocolRow::Name);
    if (row == std::end(Protocols))
        return false;
    options.Protocols = row->Protocol;
    return true;
}

bool takeChunk(std::string_view value, decodeOptions& options)
{
    return parse(value, options.Chunk) && options.Chunk > 0 && options.Chunk <= LargestChunk;
}

// 2026-11-20
bool takeToday(std::string_view value, decodeOptions& options)
{
    if (value.size() != 10 || value[4] != '-' || value[7] != '-')
        return false;
    clockDate date = {};
    if (!parse(value.substr(0, 4), date.Year) || !parse(value.substr(5, 2), date.Month) ||
        !parse(value.substr(8, 2), date.Day))
        return false;
    options.Today = date;
    using namespace std::chrono;
    return year_month_day(year(date.Year), month(date.Month), day(date.Day)).ok();
}

struct optionRow {
    std::string_view Name;
    bool (*Take)(std::string_view value, decodeOptions& options);
    std::string_view Wanted;
};

constexpr optionRow Options[] = {
    {"--protocol", takeProtocol, "nmea, tsip or ubx"},
    {"--chunk", takeChunk, "a number from 1 to 16777216"},
    {"--today", takeToday, "a date such as 2026-11-20"},
};

// Takes arguments one after the other.
class argumentParser
{
public:
    argumentParser(std::span<const char* const> arguments, std::string& fault) : Left(arguments), Fault(fault)
    {}

    std::optional<decodeOptions> Parse()
    {
        while (!Left.empty() && !Options.Help) {
            if (!TakeNext(Next()))
                return std::nullopt;
        }
        return Options;
    }

private:
    const char* Next()
    {
        const char* const argument = Left.front();
        Left = Left.subspan(1);
        return argument;
    }

    bool TakeNext(const char* argument)
    {
        const std::string_view text = argument;
        if (OnlyFiles || !text.starts_with('-') || text == "-")
            return TakeFile(argument);
        if (text == "--help")
            return Options.Help = true;
        if (text == "--")
            return OnlyFiles = true;
        const auto* const row = std::ranges::find(::Options, text, &optionRow::Name);
        if (row == std::end(::Options))
            return Fail("there is no option " + jsonQuoted(text) + "; see --help");
        return TakeOption(*row);
    }

    bool TakeFile(const char* name)
    {
        if (HasFile)
            return Fail("takes one file, but " + jsonQuoted(name) + " is the second; see --help");
        HasFile = true;
        Options.File = std::string_view(name) == "-" ? nullptr : name;
        return true;
    }

    bool TakeOption(const optionRow& row)
    {
        const std::string wanted = std::string(row.Name) + " takes " + std::string(row.Wanted);
        if (Left.empty())
            return Fail(wanted + ", but nothing follows it");
        const std::string_view value = Next();
        return row.Take(value, Options) || Fail(wanted + ", not " + jsonQuoted(value));
    }

    bool Fail(const std::string& reason)
    {
        Fault = reason;
        return false;
    }

    std::span<const char* const> Left;
    std::string& Fault;
    decodeOptions Options;
    bool OnlyFiles = false;
    bool HasFile = false;
};

}  // namespace

std::optional<decodeOptions> decodeParse(std::span<const char* const> arguments, std::string& fault)
{
    return argumentParser(arguments, fault).Parse();
}
