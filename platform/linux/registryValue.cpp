#include "platform/linux/registryValue.h"

#include "foundations/text/utfConvert.h"
#include "platform/linux/registryWords.h"

#include <charconv>
#include <concepts>

namespace {

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
        const std::string_view word = registryTakeWord(text);
        const std::optional<uint8_t> byte = registryHexByte(word);
        if (!byte || word.size() != 2)
            return std::nullopt;
        value.Data.push_back(*byte);
    }
    return value;
}

std::optional<registryValue> ParseRaw(std::string_view text)
{
    const std::string_view word = registryTakeWord(text);
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
        registryAppendHex(text, byte);
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
    const std::string_view kind = registryTakeWord(text);
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
