#include "gnss/nmeaNumber.h"

#include <charconv>
#include <iterator>
#include <limits>
#include <system_error>

namespace {

constexpr bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr uint64_t digitOf(char c)
{
    return static_cast<uint64_t>(c - '0');
}

// Takes blanks and the sign; tells whether it is a minus.
bool takeSign(const char*& at, const char* end)
{
    while (at != end && isBlank(*at))
        ++at;
    if (at == end || (*at != '-' && *at != '+'))
        return false;
    return *at++ == '-';
}

// From here on digits are not taken any more, only counted. Above every exact range, so that what was not
// taken is never missed.
constexpr uint64_t MantissaFull = 1'000'000'000'000'000'000;

constexpr int64_t ExponentLimit = 1'000'000;

// A decimal number taken apart: Mantissa * 10^Exponent, exact below MantissaFull.
struct decimal {
    const char* Begin;  // behind the sign
    const char* End;
    uint64_t Mantissa = 0;
    int64_t Exponent = 0;
    bool Negative = false;
};

const char* takeDigits(decimal& number, const char* at, const char* end, int64_t perDigit)
{
    for (; at != end && isDigit(*at); ++at) {
        if (number.Mantissa < MantissaFull) {
            number.Mantissa = number.Mantissa * 10 + digitOf(*at);
            number.Exponent += perDigit;
        } else {
            number.Exponent += perDigit + 1;
        }
    }
    return at;
}

// An "e" without a digit behind it does not belong to the number.
const char* takeExponent(decimal& number, const char* at, const char* end)
{
    const char* digits = at + 1;
    bool negative = false;
    if (digits != end && (*digits == '-' || *digits == '+'))
        negative = *digits++ == '-';
    if (digits == end || !isDigit(*digits))
        return at;
    int64_t value = 0;
    for (; digits != end && isDigit(*digits); ++digits) {
        if (value < ExponentLimit)
            value = value * 10 + static_cast<int64_t>(digitOf(*digits));
    }
    number.Exponent += negative ? -value : value;
    return digits;
}

decimal takeApart(std::string_view text)
{
    const char* at = text.data();
    const char* const end = at + text.size();
    decimal number{at, at};
    number.Negative = takeSign(at, end);
    number.Begin = at;
    at = takeDigits(number, at, end, 0);
    const bool whole = at != number.Begin;
    if (at != end && *at == '.') {
        const char* const fraction = at + 1;
        at = takeDigits(number, fraction, end, -1);
        if (!whole && at == fraction)
            return number;
    } else if (!whole) {
        return number;
    }
    if (at != end && (*at == 'e' || *at == 'E'))
        at = takeExponent(number, at, end);
    number.End = at;
    return number;
}

// Where both the mantissa and the power of ten are exact in the type, one operation rounds correctly.
template <class T>
struct exactRange;

template <>
struct exactRange<double> {
    static constexpr uint64_t Mantissa = uint64_t{1} << 53;
    static constexpr double Powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
};

template <>
struct exactRange<float> {
    static constexpr uint64_t Mantissa = uint64_t{1} << 24;
    static constexpr float Powers[] = {1e0F, 1e1F, 1e2F, 1e3F, 1e4F, 1e5F, 1e6F, 1e7F, 1e8F, 1e9F, 1e10F};
};

template <class T>
T convertSlowly(const decimal& number)
{
    T value = 0;
    const std::from_chars_result result = std::from_chars(number.Begin, number.End, value);
    if (result.ec == std::errc::result_out_of_range)
        return number.Exponent > 0 ? std::numeric_limits<T>::max() : T{0};
    return value;
}

template <class T>
T convert(const decimal& number)
{
    constexpr auto last = static_cast<int64_t>(std::size(exactRange<T>::Powers)) - 1;
    if (number.Mantissa > exactRange<T>::Mantissa)
        return convertSlowly<T>(number);
    const T mantissa = static_cast<T>(static_cast<int64_t>(number.Mantissa));
    if (number.Exponent < 0) {
        if (number.Exponent < -last)
            return convertSlowly<T>(number);
        return mantissa / exactRange<T>::Powers[-number.Exponent];
    }
    return number.Exponent > last ? convertSlowly<T>(number)
                                  : mantissa * exactRange<T>::Powers[number.Exponent];
}

template <class T>
T read(std::string_view text)
{
    const decimal number = takeApart(text);
    const T value = convert<T>(number);
    return number.Negative ? -value : value;
}

}  // namespace

double nmeaDouble(std::string_view text)
{
    return read<double>(text);
}

float nmeaFloat(std::string_view text)
{
    return read<float>(text);
}

int64_t nmeaInteger(std::string_view text)
{
    constexpr int64_t limit = std::numeric_limits<uint32_t>::max();
    const char* at = text.data();
    const char* const end = at + text.size();
    const bool negative = takeSign(at, end);
    int64_t value = 0;
    for (; at != end && isDigit(*at); ++at) {
        value = value * 10 + static_cast<int64_t>(digitOf(*at));
        if (value > limit)
            value = limit;
    }
    return negative ? -value : value;
}

uint32_t nmeaHex(std::string_view text)
{
    uint32_t value = 0;
    const char* const begin = text.data();
    std::from_chars(begin, begin + text.size(), value, 16);
    return value;
}
