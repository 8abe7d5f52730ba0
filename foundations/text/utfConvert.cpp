#include "foundations/text/utfConvert.h"

namespace {

constexpr char32_t LargestCodePoint = 0x10FFFF;

// What stops a conversion. No sequence of four bytes comes this far.
constexpr char32_t Unreadable = 0xFFFFFFFF;

template <class Unit>
class reader
{
public:
    reader(const Unit* text, size_t count) : Text(text), Left(count) {}

    bool AtEnd() const { return Left == 0 || *Text == 0; }

    // The next unit; NUL at the end of the text, over which it does not step.
    Unit Next()
    {
        if (AtEnd())
            return 0;
        --Left;
        return *Text++;
    }

private:
    const Unit* Text;
    size_t Left;
};

char32_t ReadContinuations(reader<char>& text, char32_t leadBits, int count)
{
    char32_t codePoint = leadBits;
    for (; count > 0; --count) {
        const auto byte = static_cast<unsigned char>(text.Next());
        if ((byte & 0xC0) != 0x80)
            return Unreadable;
        codePoint = codePoint << 6 | (byte & 0x3Fu);
    }
    return codePoint;
}

char32_t ReadCodePoint(reader<char>& text)
{
    const auto lead = static_cast<unsigned char>(text.Next());
    if (lead < 0x80)
        return lead;
    if (lead < 0xC0)
        return Unreadable;
    if (lead < 0xE0)
        return ReadContinuations(text, lead & 0x1Fu, 1);
    if (lead < 0xF0)
        return ReadContinuations(text, lead & 0x0Fu, 2);
    if (lead < 0xF8)
        return ReadContinuations(text, lead & 0x07u, 3);
    return Unreadable;
}

char32_t ReadCodePoint(reader<char16_t>& text)
{
    const char16_t unit = text.Next();
    if (unit < 0xD800 || unit > 0xDFFF)
        return unit;
    if (unit > 0xDBFF)
        return Unreadable;
    const char16_t partner = text.Next();
    if (partner < 0xDC00 || partner > 0xDFFF)
        return Unreadable;
    return 0x10000u + ((unit & 0x3FFu) << 10 | (partner & 0x3FFu));
}

char32_t ReadCodePoint(reader<char32_t>& text)
{
    return text.Next();
}

template <class Unit>
std::string& Append8From(std::string& target, reader<Unit> text)
{
    while (!text.AtEnd()) {
        const char32_t codePoint = ReadCodePoint(text);
        if (codePoint < 0x80) {
            target.push_back(static_cast<char>(codePoint));
            continue;
        }
        char bytes[4];
        const size_t count = utfEncode(codePoint, bytes);
        if (count == 0)
            break;
        target.append(bytes, count);
    }
    return target;
}

}  // namespace

std::string& utfAppend8From16(std::string& target, const char16_t* text, size_t count)
{
    return Append8From(target, reader(text, count));
}

std::string& utfAppend8From32(std::string& target, const char32_t* text, size_t count)
{
    return Append8From(target, reader(text, count));
}

std::u16string& utfAppend16From8(std::u16string& target, const char* text, size_t count)
{
    reader source(text, count);
    while (!source.AtEnd()) {
        const char32_t codePoint = ReadCodePoint(source);
        if (codePoint > LargestCodePoint)
            break;
        if (codePoint > 0xFFFF) {
            const char32_t offset = codePoint - 0x10000;
            target.push_back(static_cast<char16_t>(0xD800 | offset >> 10));
            target.push_back(static_cast<char16_t>(0xDC00 | (offset & 0x3FF)));
        } else {
            target.push_back(static_cast<char16_t>(codePoint));
        }
    }
    return target;
}

size_t utfEncode(char32_t codePoint, char* target)
{
    if (codePoint > LargestCodePoint)
        return 0;
    if (codePoint < 0x80) {
        target[0] = static_cast<char>(codePoint);
        return 1;
    }
    const size_t length = codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
    for (size_t index = length - 1; index > 0; --index) {
        target[index] = static_cast<char>(0x80 | (codePoint & 0x3F));
        codePoint >>= 6;
    }
    // The lead byte has as many top bits set as the sequence has bytes.
    constexpr unsigned LeadMarks[] = {0, 0, 0xC0, 0xE0, 0xF0};
    target[0] = static_cast<char>(LeadMarks[length] | codePoint);
    return length;
}
