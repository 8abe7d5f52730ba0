#include "foundations/settings/settingsNumber.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <limits>

int64_t settingsParseInt64(const char* text, const char** end)
{
    char* stop = nullptr;
    const long long value = std::strtoll(text, &stop, 10);
    *end = stop;
    return value;
}

uint64_t settingsParseUInt64(const char* text, const char** end)
{
    char* stop = nullptr;
    const unsigned long long value = std::strtoull(text, &stop, 10);
    *end = stop;
    return value;
}

int32_t settingsParseInt32(const char* text, const char** end)
{
    const int64_t value = settingsParseInt64(text, end);
    return static_cast<int32_t>(
        std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

uint32_t settingsParseUInt32(const char* text, const char** end, int base)
{
    constexpr uint32_t Most = std::numeric_limits<uint32_t>::max();
    char* stop = nullptr;
    errno = 0;
    const uint64_t value = std::strtoull(text, &stop, base);
    const bool tooLarge = errno == ERANGE;
    *end = stop;
    const bool negative = std::find(text, static_cast<const char*>(stop), '-') != stop;
    const uint64_t magnitude = negative ? 0 - value : value;
    if (tooLarge || magnitude > Most)
        return Most;
    return static_cast<uint32_t>(value);
}
