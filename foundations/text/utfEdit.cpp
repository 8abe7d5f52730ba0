#include "foundations/text/utfEdit.h"

#include "foundations/text/utfConvert.h"

namespace {

bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// From `offset` over `count` code points and over what is left of the one reached; never past the NUL.
size_t Walk(const char* text, size_t offset, size_t count)
{
    for (; count > 0 && text[offset] != 0; ++offset) {
        if (!IsContinuation(text[offset]))
            --count;
    }
    while (IsContinuation(text[offset]))
        ++offset;
    return offset;
}

// NUL ends every text, so it has no encoding here.
std::string Encoded(char32_t codePoint)
{
    char bytes[4];
    return codePoint == 0 ? std::string() : std::string(bytes, utfEncode(codePoint, bytes));
}

}  // namespace

std::string& operator<<(std::string& target, const char* text)
{
    return target.append(text ? text : "(null)");
}

std::string& operator<<(std::string& target, char character)
{
    target.push_back(character);
    return target;
}

std::string& operator<<(std::string& target, const std::string& text)
{
    return target.append(text);
}

size_t utfLength(const char* text, size_t bytes)
{
    size_t length = 0;
    for (size_t offset = 0; offset < bytes && text[offset] != 0; ++offset) {
        if (!IsContinuation(text[offset]))
            ++length;
    }
    return length;
}

size_t utfOffset(const char* text, size_t index)
{
    return Walk(text, 0, index);
}

void utfErase(std::string& text, size_t index, size_t count)
{
    if (count == 0)
        return;
    const size_t start = utfOffset(text.c_str(), index);
    if (text.c_str()[start] == 0)
        return;
    const size_t end = Walk(text.c_str(), start + 1, count - 1);
    text.erase(start, end - start);
}

void utfInsert(std::string& text, size_t index, char32_t codePoint)
{
    text.insert(utfOffset(text.c_str(), index), Encoded(codePoint));
}

void utfReplace(std::string& text, char32_t find, char32_t put)
{
    const std::string found = Encoded(find);
    // Nothing would be found everywhere and without end.
    if (find == put || found.empty())
        return;
    const std::string replacement = Encoded(put);
    for (size_t at = text.find(found); at != std::string::npos; at = text.find(found, at))
        text.replace(at, found.size(), replacement);
}

void utfTruncate(std::string& text, size_t bytes)
{
    if (bytes >= text.size())
        return;
    // A lead byte this far before the cut has some of its continuation bytes behind the cut.
    const auto leadStands = [&](size_t back, unsigned char mark) {
        return bytes >= back && (static_cast<unsigned char>(text[bytes - back]) & mark) == mark;
    };
    if (leadStands(3, 0xF0))
        bytes -= 3;
    else if (leadStands(2, 0xE0))
        bytes -= 2;
    else if (leadStands(1, 0xC0))
        bytes -= 1;
    text.resize(bytes);
}
