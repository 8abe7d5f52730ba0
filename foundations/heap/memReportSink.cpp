#include "foundations/heap/memReportSink.h"

#include "platform/debug.h"

#include <algorithm>
#include <limits>

namespace {

constexpr unsigned MostDigits = 64;
constexpr unsigned WordsInRow = 4;
constexpr uint64_t WordSize = sizeof(uint64_t);

bool ReadWord(uint64_t address, uint64_t& word)
{
    return debugRead(reinterpret_cast<const void*>(address), &word, sizeof(word));
}

}  // namespace

bool memReportSink::Text(std::string_view text)
{
    return text.empty() || Write(text.data(), text.size());
}

bool memReportSink::Hex(uint64_t value)
{
    return Number(value, 16, 16);
}

bool memReportSink::Number(uint64_t value, unsigned base, unsigned digits)
{
    base = std::clamp(base, 2u, 16u);
    digits = std::clamp(digits, 1u, MostDigits);
    char text[MostDigits];
    unsigned first = MostDigits;
    while (value > 0 || MostDigits - first < digits) {
        text[--first] = "0123456789ABCDEF"[value % base];
        value /= base;
    }
    return Write(text + first, MostDigits - first);
}

bool memReportSink::Dump(std::string_view title, uint64_t address, unsigned words)
{
    const uint64_t start = address - address % WordSize;
    const uint64_t count = uint64_t{words} + (start != address ? 1 : 0);
    const uint64_t most = (std::numeric_limits<uint64_t>::max() - start) / WordSize + 1;

    bool written = Text(title);
    written = Hex(start) && written;
    uint64_t word = 0;
    for (uint64_t i = 0; i < std::min(count, most) && ReadWord(start + i * WordSize, word); ++i) {
        if (i % WordsInRow == 0)
            written = Text("\r\n    ") && written;
        written = Text("  ") && written;
        written = Hex(word) && written;
    }
    return Text("\r\n") && written;
}
