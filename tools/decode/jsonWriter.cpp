#include "tools/decode/jsonWriter.h"

#include <charconv>
#include <cmath>
#include <iterator>

namespace {

// The longest number: the sign, 17 digits, the point, and an exponent of three digits.
constexpr size_t LongestNumber = 32;

template <class Value>
void append(std::string& json, Value value)
{
    char digits[LongestNumber];
    json.append(digits, std::to_chars(digits, std::end(digits), value).ptr);
}

void appendEscaped(std::string& json, char character)
{
    constexpr std::string_view hexadecimal = "0123456789abcdef";
    const unsigned code = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
        json += '\\';
        json += character;
    } else if (code < ' ') {
        json += "\\u00";
        json += hexadecimal[code >> 4];
        json += hexadecimal[code & 15];
    } else {
        json += character;
    }
}

}  // namespace

jsonWriter& jsonWriter::Key(std::string_view name)
{
    Text(name);
    Json += ": ";
    AfterKey = true;
    return *this;
}

void jsonWriter::End()
{
    const char closing = Closings.back();
    const bool inLines = !IsFirst && Closings.size() <= LevelsInLines;
    Closings.pop_back();
    if (inLines)
        NextLine();
    Json += closing;
    IsFirst = false;
}

void jsonWriter::Text(std::string_view utf8)
{
    Separate();
    Json += jsonQuoted(utf8);
}

void jsonWriter::Truth(bool value)
{
    Separate();
    Json += value ? "true" : "false";
}

void jsonWriter::Count(uint64_t value)
{
    Separate();
    append(Json, value);
}

void jsonWriter::Number(double value)
{
    Separate();
    if (std::isfinite(value))
        append(Json, value);
    else
        Json += "null";
}

void jsonWriter::Begin(char opening, char closing)
{
    Separate();
    Json += opening;
    Closings += closing;
    IsFirst = true;
}

void jsonWriter::Separate()
{
    if (AfterKey) {
        AfterKey = false;
        return;
    }
    if (!IsFirst)
        Json += ',';
    if (Closings.empty())
        return;
    if (Closings.size() <= LevelsInLines)
        NextLine();
    else if (!IsFirst)
        Json += ' ';
    IsFirst = false;
}

void jsonWriter::NextLine()
{
    Json += '\n';
    Json.append(Closings.size(), ' ');
}

std::string jsonQuoted(std::string_view utf8)
{
    std::string quoted = "\"";
    for (const char character : utf8)
        appendEscaped(quoted, character);
    return quoted += '"';
}
