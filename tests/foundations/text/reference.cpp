#include "tests/foundations/text/reference.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace reference {

namespace {

double ten(int exponent)
{
    return std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
}

// The wider type gives the nearest double on every system.
double tenth(int exponent)
{
    return static_cast<double>(std::pow(static_cast<long double>(0.1), exponent));
}

double logarithm(double value)
{
    return static_cast<double>(std::log10(static_cast<long double>(value)));
}

char digitOf(double value)
{
    return static_cast<char>('0' + static_cast<int>(std::floor(value)));
}

std::string repeat(char character, int64_t count)
{
    return count > 0 ? std::string(static_cast<size_t>(count), character) : std::string();
}

std::string inField(const std::string& digits, bool negative, int32_t width, utfFlags flags)
{
    std::string sign;
    if (negative)
        sign = "-";
    else if (flags.Has(utfFmt::PlusSign))
        sign = "+";
    else if (flags.Has(utfFmt::SpaceSign))
        sign = " ";
    const int64_t padding = width - static_cast<int64_t>(sign.size() + digits.size());
    if (flags.Has(utfFmt::LeftAlign))
        return sign + digits + repeat(' ', padding);
    if (flags.Has(utfFmt::ZeroFill))
        return sign + repeat('0', padding) + digits;
    return repeat(' ', padding) + sign + digits;
}

double rounded(double value, int decimals)
{
    const double step = tenth(decimals);
    const double result = std::floor(value / step + 0.5) * step;
    return std::isfinite(result) ? result : value;
}

std::string wholeDigits(double& value, int exponent)
{
    std::string text;
    double unit = exponent < 0 ? 1.0 : ten(exponent);
    while (unit >= 1.0) {
        text += digitOf(value / unit);
        value = value - std::floor(value / unit) * unit;
        unit = unit * 0.1;
    }
    return text;
}

std::string fractionDigits(double value, int64_t count)
{
    std::string text;
    for (int64_t index = 0; index < count; ++index) {
        value = value * 10;
        text += digitOf(value);
        value = std::fmod(value, 1.0);
    }
    return text;
}

// The digits, the point and the exponent of a value from 0.
std::string magnitude(double value, const utfFlt& number, const std::string& point)
{
    const int decimals = std::max(number.Digits, 0);
    const bool general = number.Conv == 'g' || number.Conv == 'G';
    const bool alternate = number.Flags.Has(utfFmt::AltForm);
    double rest = rounded(value, decimals);
    const int exponent = rest > 0 ? static_cast<int>(std::floor(logarithm(rest))) : 0;
    char conversion = number.Conv;
    int64_t places = decimals;
    if (general) {
        const int64_t significant = decimals == 0 ? 1 : decimals;
        const bool small = exponent < -4 || exponent >= significant;
        conversion = small ? static_cast<char>(number.Conv - 2) : 'f';
        places = small ? significant - 1 : significant - exponent - 1;
    }
    const bool scientific = conversion == 'e' || conversion == 'E';
    if (scientific && exponent < -308)
        rest = rest * tenth(-308) * tenth(exponent + 308);
    else if (scientific)
        rest = rest * tenth(exponent);

    std::string text = wholeDigits(rest, scientific ? 0 : exponent);
    std::string fraction = fractionDigits(rest, places);
    if (general && !alternate)
        fraction.erase(fraction.find_last_not_of('0') + 1);
    if (!fraction.empty() || alternate)
        text += point + fraction;
    if (scientific) {
        const std::string digits = std::to_string(std::abs(exponent));
        text += conversion;
        text += exponent < 0 ? '-' : '+';
        text += repeat('0', 2 - static_cast<int64_t>(digits.size())) + digits;
    }
    return text;
}

}  // namespace

std::string integer(const utfInt& number)
{
    if (number.Value == 0 && number.Digits == 0)
        return repeat(' ', number.Width);
    const char conversion = number.Conv;
    const bool hexadecimal = conversion == 'x' || conversion == 'X';
    const uint64_t base = hexadecimal ? 16 : conversion == 'b' ? 2 : conversion == 'o' ? 8 : 10;
    bool negative = false;
    uint64_t value = number.Value;
    if ((conversion == 'd' || conversion == 'i') && value >> 63 != 0) {
        negative = true;
        value = ~value + 1;
    }
    std::string text;
    while (value > 0 || text.empty() || static_cast<int64_t>(text.size()) < number.Digits) {
        const char digit = "0123456789ABCDEF"[value % base];
        text += conversion == 'x' && digit >= 'A' ? static_cast<char>(digit - 'A' + 'a') : digit;
        value = value / base;
    }
    if (hexadecimal && number.Flags.Has(utfFmt::AltForm)) {
        text += conversion;
        text += '0';
    }
    std::reverse(text.begin(), text.end());
    return inField(text, negative, number.Width, number.Flags);
}

std::string floating(const utfFlt& number, const std::string& decimalPoint)
{
    if (std::isnan(number.Value))
        return "NaN";
    if (std::isinf(number.Value))
        return "\xE2\x88\x9E";
    const bool negative = !(number.Value >= 0.0);
    const std::string point = number.Flags.Has(utfFmt::DotPoint) ? "." : decimalPoint;
    return inField(magnitude(std::fabs(number.Value), number, point), negative, number.Width, number.Flags);
}

}  // namespace reference
