// Any bytes become good UTF-16 up to the first that cannot be read.
#include "foundations/text/utfConvert.h"
#include "fuzz/require.h"

#include <cstdint>
#include <cstring>

namespace {

std::u16string convert(const std::string& text, size_t count)
{
    // A copy of just this size lets the sanitizer see a read behind it.
    const std::string copy = text.substr(0, count);
    std::u16string result;
    utfAppend16From8(result, copy.data(), copy.size());
    return result;
}

bool isEncodedSurrogate(const std::string& text, size_t at)
{
    return text[at] == '\xED' && static_cast<unsigned char>(text[at + 1]) >= 0xA0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    const std::u16string wide = convert(text, size);
    require(wide.size() <= size);

    // A shorter text gives the beginning of the same result.
    const size_t cut = size == 0 ? 0 : data[0] % (size + 1);
    require(wide.starts_with(convert(text, cut)));

    std::u16string toEnd = u"kept";
    utfAppend16From8(toEnd, text.c_str());
    require(toEnd == u"kept" + wide);

    // The way back gives what was read, unless that was overlong or an encoded surrogate.
    std::string back;
    utfAppend8From16(back, wide.data(), wide.size());
    std::u16string again;
    utfAppend16From8(again, back.data(), back.size());
    require(wide.starts_with(again));
    const bool whole = again.size() == wide.size();
    if (whole && text.starts_with(back))
        return 0;

    size_t differs = 0;
    while (differs < back.size() && back[differs] == text[differs])
        ++differs;
    bool unusual = false;
    for (size_t at = 0; at <= differs && at + 1 < size; ++at) {
        const auto lead = static_cast<unsigned char>(text[at]);
        const auto next = static_cast<unsigned char>(text[at + 1]);
        const bool overlong =
            lead == 0xC0 || lead == 0xC1 || (lead == 0xE0 && next < 0xA0) || (lead == 0xF0 && next < 0x90);
        unusual = unusual || overlong || isEncodedSurrogate(text, at);
    }
    require(unusual);
    return 0;
}
