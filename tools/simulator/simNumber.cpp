#include "tools/simulator/simNumber.h"

#include <charconv>
#include <cmath>

std::optional<double> simNumberOfText(std::string_view text)
{
    double value = 0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result read = std::from_chars(text.data(), end, value);
    if (read.ec != std::errc() || read.ptr != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}
