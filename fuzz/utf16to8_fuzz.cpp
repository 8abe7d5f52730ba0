// Any units become good UTF-8 up to the first surrogate without its partner, and come back as they were.
#include "foundations/text/utfConvert.h"
#include "fuzz/require.h"

#include <cstdint>
#include <cstring>

namespace {

bool inRange(char16_t unit, char16_t first, char16_t last)
{
    return unit >= first && unit <= last;
}

// How many units stand before the NUL or before the first surrogate that is alone.
size_t goodUnits(const std::u16string& text)
{
    size_t at = 0;
    while (at < text.size() && text[at] != 0) {
        if (!inRange(text[at], 0xD800, 0xDFFF)) {
            ++at;
            continue;
        }
        const bool paired = inRange(text[at], 0xD800, 0xDBFF) && at + 1 < text.size() &&
                            inRange(text[at + 1], 0xDC00, 0xDFFF);
        if (!paired)
            break;
        at += 2;
    }
    return at;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::u16string text(size / 2, 0);
    std::memcpy(text.data(), data, text.size() * 2);

    std::string narrow;
    utfAppend8From16(narrow, text.data(), text.size());
    std::string toEnd = "kept";
    utfAppend8From16(toEnd, text.c_str());
    require(toEnd == "kept" + narrow);

    std::u16string back;
    utfAppend16From8(back, narrow.data(), narrow.size());
    require(back == text.substr(0, goodUnits(text)));

    const size_t cut = size == 0 ? 0 : data[0] % (text.size() + 1);
    std::string shorter;
    utfAppend8From16(shorter, text.data(), cut);
    require(narrow.starts_with(shorter));
    return 0;
}
