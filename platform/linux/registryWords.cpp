#include "platform/linux/registryWords.h"

#include "foundations/text/utfConvert.h"

#include <algorithm>

namespace {

constexpr std::string_view Blanks = " \t\r\n";
constexpr char HexDigits[] = "0123456789abcdef";

struct escapeRow {
    char Letter;
    char Meaning;
};

constexpr escapeRow Escapes[] = {{'\\', '\\'}, {'"', '"'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}};

int HexValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

void AppendQuoted(std::string& quoted, char character)
{
    const uint8_t byte = static_cast<uint8_t>(character);
    for (const escapeRow& row : Escapes) {
        if (row.Meaning != character)
            continue;
        quoted += '\\';
        quoted += row.Letter;
        return;
    }
    if (byte >= 0x20 && byte != 0x7F) {
        quoted += character;
        return;
    }
    quoted += "\\x";
    registryAppendHex(quoted, byte);
}

// Takes what follows a backslash.
std::optional<char> TakeEscape(std::string_view& text)
{
    if (text.empty())
        return std::nullopt;
    if (text[0] == 'x') {
        const std::optional<uint8_t> byte = registryHexByte(text.substr(1));
        text.remove_prefix(byte ? 3 : 0);
        return byte ? std::optional(static_cast<char>(*byte)) : std::nullopt;
    }
    for (const escapeRow& row : Escapes) {
        if (row.Letter != text[0])
            continue;
        text.remove_prefix(1);
        return row.Meaning;
    }
    return std::nullopt;
}

}  // namespace

bool registryIsUTF8(std::string_view text)
{
    // Overlong forms and the like are taken one way and do not come back.
    std::u16string units;
    utfAppend16From8(units, text.data(), text.size());
    std::string again;
    utfAppend8From16(again, units.data(), units.size());
    return again == text;
}

std::string registryQuote(std::string_view text)
{
    std::string quoted = "\"";
    for (const char character : text)
        AppendQuoted(quoted, character);
    return quoted + '"';
}

std::optional<std::string> registryUnquote(std::string_view& text)
{
    if (!text.starts_with('"'))
        return std::nullopt;
    text.remove_prefix(1);
    std::string content;
    while (!text.empty()) {
        const char character = text[0];
        text.remove_prefix(1);
        if (character == '"') {
            text = registryTrim(text);
            return content;
        }
        const std::optional<char> plain = character == '\\' ? TakeEscape(text) : character;
        if (!plain)
            return std::nullopt;
        content += *plain;
    }
    return std::nullopt;
}

std::string_view registryTrim(std::string_view text)
{
    const size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

std::string_view registryTakeWord(std::string_view& text)
{
    const size_t length = std::min(text.find_first_of(Blanks), text.size());
    const std::string_view word = text.substr(0, length);
    text = registryTrim(text.substr(length));
    return word;
}

void registryAppendHex(std::string& text, uint8_t byte)
{
    text += HexDigits[byte >> 4];
    text += HexDigits[byte & 15];
}

std::optional<uint8_t> registryHexByte(std::string_view text)
{
    if (text.size() < 2 || HexValue(text[0]) < 0 || HexValue(text[1]) < 0)
        return std::nullopt;
    return static_cast<uint8_t>(HexValue(text[0]) * 16 + HexValue(text[1]));
}
