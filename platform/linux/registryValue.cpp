#include "platform/linux/registryValue.h"

#include "foundations/text/utfConvert.h"

#include <charconv>
#include <concepts>

namespace {

constexpr std::string_view Blanks = " \t\r\n";
constexpr char HexDigits[] = "0123456789abcdef";

struct escapeRow {
    char Letter;
    char Meaning;
};

constexpr escapeRow Escapes[] = {{'\\', '\\'}, {'"', '"'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}};

void AppendHex(std::string& text, uint8_t byte)
{
    text += HexDigits[byte >> 4];
    text += HexDigits[byte & 15];
}

int HexValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::optional<uint8_t> HexByte(std::string_view text)
{
    if (text.size() < 2 || HexValue(text[0]) < 0 || HexValue(text[1]) < 0)
        return std::nullopt;
    return static_cast<uint8_t>(HexValue(text[0]) * 16 + HexValue(text[1]));
}

std::string_view TakeWord(std::string_view& text)
{
    const size_t length = std::min(text.find_first_of(Blanks), text.size());
    const std::string_view word = text.substr(0, length);
    text = registryTrim(text.substr(length));
    return word;
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
    AppendHex(quoted, byte);
}

// Takes what follows a backslash.
std::optional<char> TakeEscape(std::string_view& text)
{
    if (text.empty())
        return std::nullopt;
    if (text[0] == 'x') {
        const std::optional<uint8_t> byte = HexByte(text.substr(1));
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

template <std::unsigned_integral T>
T FromBytes(const std::vector<uint8_t>& data)
{
    T number = 0;
    for (size_t i = sizeof(T); i-- > 0;)
        number = static_cast<T>(number << 8 | data[i]);
    return number;
}

template <std::unsigned_integral T>
std::optional<registryValue> ParseNumber(registryType type, std::string_view text)
{
    T number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    registryValue value{type, {}};
    for (size_t i = 0; i < sizeof(T); i++)
        value.Data.push_back(static_cast<uint8_t>(number >> (8 * i)));
    return value;
}

std::vector<uint8_t> TextBytes(const std::string& text)
{
    std::u16string units;
    utfAppend16From8(units, text.data(), text.size());
    units.push_back(0);
    std::vector<uint8_t> data;
    data.reserve(2 * units.size());
    for (const char16_t unit : units) {
        data.push_back(static_cast<uint8_t>(unit & 0xFF));
        data.push_back(static_cast<uint8_t>(unit >> 8));
    }
    return data;
}

std::optional<registryValue> ParseText(std::string_view text)
{
    const std::optional<std::string> content = registryUnquote(text);
    if (!content || !text.empty() || !registryIsUTF8(*content))
        return std::nullopt;
    return registryValue{registryType::Text, TextBytes(*content)};
}

std::optional<registryValue> ParseBytes(registryType type, std::string_view text)
{
    registryValue value{type, {}};
    while (!text.empty()) {
        const std::string_view word = TakeWord(text);
        const std::optional<uint8_t> byte = HexByte(word);
        if (!byte || word.size() != 2)
            return std::nullopt;
        value.Data.push_back(*byte);
    }
    return value;
}

std::optional<registryValue> ParseRaw(std::string_view text)
{
    const std::string_view word = TakeWord(text);
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size())
        return std::nullopt;
    return ParseBytes(static_cast<registryType>(number), text);
}

// The text in UTF-8 if it comes back from there as the same bytes, which a cut or doubly ended one does not.
std::optional<std::string> CleanText(const std::vector<uint8_t>& data)
{
    std::u16string units;
    for (size_t i = 0; i + 1 < data.size(); i += 2)
        units += static_cast<char16_t>(data[i] | data[i + 1] << 8);
    std::string text;
    utfAppend8From16(text, units.data(), units.size());
    if (TextBytes(text) != data)
        return std::nullopt;
    return text;
}

void AppendBytes(std::string& text, const std::vector<uint8_t>& data)
{
    text.reserve(text.size() + 3 * data.size());
    for (const uint8_t byte : data) {
        text += ' ';
        AppendHex(text, byte);
    }
}

std::optional<std::string> FormatInWords(const registryValue& value)
{
    if (value.Type == registryType::Dword && value.Data.size() == sizeof(uint32_t))
        return "dword " + std::to_string(FromBytes<uint32_t>(value.Data));
    if (value.Type == registryType::Qword && value.Data.size() == sizeof(uint64_t))
        return "qword " + std::to_string(FromBytes<uint64_t>(value.Data));
    if (value.Type != registryType::Text)
        return std::nullopt;
    const std::optional<std::string> text = CleanText(value.Data);
    return text ? std::optional("text " + registryQuote(*text)) : std::nullopt;
}

}  // namespace

std::string registryFormat(const registryValue& value)
{
    if (const std::optional<std::string> words = FormatInWords(value))
        return *words;
    std::string text = "binary";
    if (value.Type != registryType::Binary)
        text = "raw " + std::to_string(static_cast<uint32_t>(value.Type));
    AppendBytes(text, value.Data);
    return text;
}

std::optional<registryValue> registryParse(std::string_view text)
{
    text = registryTrim(text);
    const std::string_view kind = TakeWord(text);
    if (kind == "dword")
        return ParseNumber<uint32_t>(registryType::Dword, text);
    if (kind == "qword")
        return ParseNumber<uint64_t>(registryType::Qword, text);
    if (kind == "text")
        return ParseText(text);
    if (kind == "binary")
        return ParseBytes(registryType::Binary, text);
    if (kind == "raw")
        return ParseRaw(text);
    return std::nullopt;
}

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
