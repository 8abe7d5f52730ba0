#include "tools/simulator/simNmeaText.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>

namespace {

constexpr size_t LongestSentence = 256;

uint8_t SumOf(std::string_view body)
{
    uint8_t sum = 0;
    for (const char letter : body)
        sum = static_cast<uint8_t>(sum ^ static_cast<uint8_t>(letter));
    return sum;
}

}  // namespace

simNmeaSentence& simNmeaSentence::Text(std::string_view text)
{
    Body += ',';
    Body += text;
    return *this;
}

simNmeaSentence& simNmeaSentence::Empty(unsigned count)
{
    Body.append(count, ',');
    return *this;
}

simNmeaSentence& simNmeaSentence::Whole(int64_t value, unsigned digits)
{
    return Text(simNmeaReal(static_cast<double>(value), 0, digits));
}

simNmeaSentence& simNmeaSentence::Real(double value, int decimals, unsigned digits)
{
    return Text(simNmeaReal(value, decimals, digits));
}

std::string simNmeaSentence::Finished() const
{
    return simNmeaFinish(Body);
}

std::string simNmeaFinish(std::string_view body)
{
    char end[8];
    std::snprintf(end, sizeof end, "*%02X\r\n", static_cast<unsigned>(SumOf(body)));
    std::string sentence = "$";
    sentence += body;
    sentence += end;
    return sentence;
}

std::string simNmeaReal(double value, int decimals, unsigned digits)
{
    char text[64];
    const std::to_chars_result written =
        std::to_chars(text, text + sizeof text, std::fabs(value), std::chars_format::fixed, decimals);
    std::string number(text, written.ptr);
    const size_t before = number.find('.') == std::string::npos ? number.size() : number.find('.');
    if (before < digits)
        number.insert(0, digits - before, '0');
    if (value < 0 && number.find_first_not_of("0.") != std::string::npos)
        number.insert(0, 1, '-');
    return number;
}

std::vector<std::string> simNmeaParser::Take(std::span<const uint8_t> bytes)
{
    std::vector<std::string> found;
    for (const uint8_t byte : bytes) {
        const char letter = static_cast<char>(byte);
        if (letter == '$') {
            Inside = true;
            Body.clear();
        } else if (Inside && (letter == '\r' || letter == '\n')) {
            EndLine(found);
        } else if (Inside && Body.size() < LongestSentence) {
            Body += letter;
        } else {
            Inside = false;
        }
    }
    return found;
}

void simNmeaParser::EndLine(std::vector<std::string>& found)
{
    Inside = false;
    const size_t star = Body.rfind('*');
    if (star == std::string::npos) {
        found.push_back(Body);
        return;
    }
    unsigned sum = 0;
    const char* const end = Body.data() + Body.size();
    const std::from_chars_result read = std::from_chars(Body.data() + star + 1, end, sum, 16);
    if (read.ec != std::errc() || read.ptr != end || sum != SumOf(std::string_view(Body).substr(0, star)))
        return;
    found.push_back(Body.substr(0, star));
}

std::vector<std::string_view> simNmeaFields(std::string_view body)
{
    std::vector<std::string_view> fields;
    size_t begin = 0;
    for (size_t comma = body.find(','); comma != std::string_view::npos; comma = body.find(',', begin)) {
        fields.push_back(body.substr(begin, comma - begin));
        begin = comma + 1;
    }
    fields.push_back(body.substr(begin));
    return fields;
}

simBytes simBytesOf(std::string_view text)
{
    return {text.begin(), text.end()};
}
