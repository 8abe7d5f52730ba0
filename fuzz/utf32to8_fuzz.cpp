// Any values become UTF-8 up to the first above U+10FFFF, each by itself.
#include "foundations/text/utfConvert.h"
#include "foundations/text/utfEdit.h"
#include "fuzz/require.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr char32_t LargestCodePoint = 0x10FFFF;

size_t goodValues(const std::u32string& text)
{
    size_t at = 0;
    while (at < text.size() && text[at] != 0 && text[at] <= LargestCodePoint)
        ++at;
    return at;
}

std::u16string inUnits(char32_t value)
{
    if (value < 0x10000)
        return {static_cast<char16_t>(value)};
    return {static_cast<char16_t>(0xD7C0 + (value >> 10)), static_cast<char16_t>(0xDC00 + (value & 0x3FF))};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::u32string text(size / 4, 0);
    std::memcpy(text.data(), data, text.size() * 4);

    std::string narrow;
    utfAppend8From32(narrow, text.data(), text.size());
    std::string toEnd = "kept";
    utfAppend8From32(toEnd, text.c_str());
    require(toEnd == "kept" + narrow);

    const size_t good = goodValues(text);
    require(utfLength(narrow.data(), narrow.size()) == good);
    require(utfOffset(narrow.c_str(), good) == narrow.size());
    std::u16string units;
    for (const char32_t value : text.substr(0, good))
        units += inUnits(value);
    std::u16string back;
    utfAppend16From8(back, narrow.data(), narrow.size());
    require(back == units);

    // Cutting at any byte leaves whole values.
    const size_t cut = size == 0 ? 0 : data[0] % (narrow.size() + 1);
    std::string shorter = narrow;
    utfTruncate(shorter, cut);
    require(shorter.size() <= cut && cut - shorter.size() < 4);
    require(utfOffset(narrow.c_str(), utfLength(shorter.data(), shorter.size())) == shorter.size());
    return 0;
}
