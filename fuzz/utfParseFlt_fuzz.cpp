// Any text is a number or none; the reader stays within it and stops where it says.
#include "foundations/text/utfLocale.h"
#include "foundations/text/utfParse.h"
#include "fuzz/require.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

bool same(double one, double other)
{
    return one == other && std::signbit(one) == std::signbit(other);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const bool dotOnly = (data[0] & 1) != 0;
    utfLocale.DecimalPoint = (data[0] & 2) != 0 ? "," : "\u066B";
    const std::string text(data + 1, data + size);

    const char* end = nullptr;
    const double value = utfParseFlt(text.c_str(), &end, dotOnly);
    require(end >= text.c_str() && end <= text.c_str() + std::strlen(text.c_str()));
    require(!std::isnan(value));

    // What was read is a number of its own, and reading it stops at its end.
    const std::string number(text.c_str(), end);
    const char* numberEnd = nullptr;
    require(same(utfParseFlt(number.c_str(), &numberEnd, dotOnly), value));
    require(numberEnd == number.c_str() + number.size());
    return 0;
}
