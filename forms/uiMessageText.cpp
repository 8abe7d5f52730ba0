#include "forms/uiMessageText.h"

#include <algorithm>

namespace {

using measure = std::function<uint32_t(std::string_view part)>;

constexpr std::string_view leftOut = "...";

bool isContinuation(char byte)
{
    constexpr unsigned mask = 0xC0;
    constexpr unsigned continuation = 0x80;
    return (static_cast<unsigned char>(byte) & mask) == continuation;
}

// The first boundary between code points at `at` or behind it.
size_t boundary(std::string_view line, size_t at)
{
    while (at < line.size() && isContinuation(line[at]))
        ++at;
    return std::min(at, line.size());
}

// The longest beginning of a line that has room. Measured from short to long: a line may be a whole book.
size_t longestFit(std::string_view line, uint32_t widthMost, const measure& widthOf)
{
    constexpr size_t firstTry = 64;
    const auto fits = [&](size_t end) { return end == 0 || widthOf(line.substr(0, end)) <= widthMost; };
    size_t beyond = boundary(line, firstTry);
    size_t good = 0;
    while (fits(beyond)) {
        if (beyond == line.size())
            return beyond;
        good = beyond;
        beyond = boundary(line, 2 * beyond);
    }
    for (;;) {
        const size_t middle = boundary(line, good + (beyond - good) / 2);
        // Between the two there may be no more than the bytes of one code point.
        const size_t next = middle < beyond ? middle : boundary(line, good + 1);
        if (next <= good || next >= beyond)
            return good;
        (fits(next) ? good : beyond) = next;
    }
}

// How much of a line stands on the next row.
size_t rowOf(std::string_view line, uint32_t widthMost, const measure& widthOf)
{
    if (line.empty())
        return 0;
    const size_t fit = std::max(longestFit(line, widthMost, widthOf), boundary(line, 1));
    if (fit == line.size())
        return fit;
    const size_t blank = line.rfind(' ', fit);
    return blank == std::string_view::npos || blank == 0 ? fit : blank;
}

}  // namespace

std::string uiMessageFit(std::string_view text, uint32_t widthMost, size_t linesMost, const measure& widthOf)
{
    std::string fitted;
    for (size_t lines = 1;; ++lines) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const size_t row = rowOf(line, widthMost, widthOf);
        const bool isLast = row == text.size();
        if (lines >= linesMost && !isLast)
            return fitted.append(leftOut);
        fitted.append(line.substr(0, row));
        if (isLast)
            return fitted;
        fitted += '\n';
        text.remove_prefix(row);
        // The blank that a line is broken at, or its own end, is no part of the next one.
        if (text.front() == ' ' || text.front() == '\n')
            text.remove_prefix(1);
    }
}
