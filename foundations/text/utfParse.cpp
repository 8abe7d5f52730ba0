#include "foundations/text/utfParse.h"

#include "foundations/text/utfLocale.h"
#include "foundations/text/utfPower.h"

#include <cmath>
#include <limits>

namespace {

// Each exponent of an exponent is a call deep; a text of thousands must not use up the stack.
constexpr int MostNested = 32;

// From here on further decimals are beyond what the mantissa resolves, and would only make it overflow.
constexpr double MantissaFull = 1e300;

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool IsPoint(char character, bool dotOnly)
{
    if (character == '.')
        return true;
    const std::string& point = utfLocale.DecimalPoint;
    return !dotOnly && !point.empty() && character == point.front();
}

double ReadDigits(const char*& text)
{
    double value = 0;
    for (; IsDigit(*text); ++text)
        value = value * 10 + (*text - '0');
    return value;
}

double ReadDecimals(const char*& text, double value)
{
    double unit = 1;
    for (; IsDigit(*text); ++text) {
        if (value >= MantissaFull)
            continue;
        value = value * 10 + (*text - '0');
        unit *= 0.1;
    }
    return std::floor(value + 0.5) * unit;
}

double TenTo(double exponent)
{
    // Beyond this every power is 0 or infinite.
    constexpr double Limit = 400;
    if (std::fabs(exponent) < Limit && exponent == std::floor(exponent))
        return utfTenTo(static_cast<int>(exponent));
    return std::pow(10.0, exponent);
}

double Read(const char*& text, bool dotOnly, int nested)
{
    const bool negative = *text == '-';
    if (negative || *text == '+')
        ++text;
    double value = ReadDigits(text);
    if (IsPoint(*text, dotOnly))
        value = ReadDecimals(++text, value);
    const bool letter = *text == 'e' || *text == 'E';
    if (letter && (text[1] == '+' || text[1] == '-' || IsDigit(text[1])) && nested < MostNested) {
        const double power = TenTo(Read(++text, dotOnly, nested + 1));
        // Zero and infinity keep: times a power at the other end they would be no number at all.
        if (value != 0 && std::isfinite(value))
            value *= power;
    }
    return negative ? -value : value;
}

}  // namespace

double utfParseFlt(const char* text, const char** end, bool dotOnly)
{
    while (*text == ' ' || *text == '\t')
        ++text;
    const double value = Read(text, dotOnly, 0);
    if (end)
        *end = text;
    return value;
}
