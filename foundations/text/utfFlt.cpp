#include "foundations/text/utfEdit.h"
#include "foundations/text/utfField.h"
#include "foundations/text/utfLocale.h"
#include "foundations/text/utfNumber.h"
#include "foundations/text/utfPower.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// How a number is written: what the general form stands for, once the size of the number is known.
struct layout {
    char Conv;
    int64_t Decimals;  // wide enough for the digits of the general form behind four zeros
};

bool HasExponent(char conversion)
{
    return conversion == 'e' || conversion == 'E';
}

bool IsGeneral(char conversion)
{
    return conversion == 'g' || conversion == 'G';
}

layout LayoutOf(char conversion, int decimals, int power)
{
    if (!IsGeneral(conversion))
        return {conversion, decimals};
    const int significant = std::max(decimals, 1);
    const bool upper = conversion == 'G';
    if (power < -4 || power >= significant)
        return {upper ? 'E' : 'e', significant - 1};
    return {upper ? 'F' : 'f', int64_t{significant} - power - 1};
}

// For values of any size that are not below 0. The casts are what makes it quick.
double WholePart(double value)
{
    constexpr double AllWholeFrom = 0x1p52;
    return value < AllWholeFrom ? static_cast<double>(static_cast<int64_t>(value)) : value;
}

// For values of either sign that are about the size of a digit.
int FloorOfSmall(double value)
{
    const int towardsZero = static_cast<int>(value);
    return towardsZero > value ? towardsZero - 1 : towardsZero;
}

// A value so large, or a step so small, that there are more steps than a double can count has nothing to
// round and is kept.
double Rounded(double value, int decimals)
{
    const double step = utfTenthTo(decimals);
    if (step == 0)
        return value;
    const double steps = WholePart(value / step + 0.5);
    return std::isfinite(steps) ? steps * step : value;
}

double WithoutPower(double value, int power)
{
    constexpr int Farthest = -std::numeric_limits<double>::max_exponent10;
    // The factor that lifts the smallest numbers in one step would be infinite.
    if (power < Farthest)
        return value * utfTenthTo(Farthest) * utfTenthTo(power - Farthest);
    return value * utfTenthTo(power);
}

// Returns what is left for the decimals. Multiplying the unit by 0.1 leaves an error in it, and a digit is
// never carried into the one before: the texts are meant to be these.
double WriteWhole(std::string& target, double value, int power)
{
    for (double unit = power > 0 ? utfTenTo(power) : 1.0; unit >= 1.0; unit *= 0.1) {
        const int digit = FloorOfSmall(value / unit);
        target.push_back(static_cast<char>('0' + digit));
        value -= digit * unit;
    }
    return value;
}

// Returns how many decimals are missing because all from there on are "0".
int64_t WriteDecimals(std::string& target, double fraction, int64_t count)
{
    for (; count > 0 && fraction != 0; --count) {
        fraction *= 10;
        target.push_back(static_cast<char>('0' + FloorOfSmall(fraction)));
        fraction -= static_cast<int>(fraction);
    }
    return count;
}

void WritePoint(std::string& target, utfFlags flags)
{
    if (flags.Has(utfFmt::DotPoint))
        target.push_back('.');
    else
        target.append(utfLocale.DecimalPoint);
}

void RemoveZeros(std::string& target, size_t point, size_t decimals)
{
    while (target.size() > decimals && target.back() == '0')
        target.pop_back();
    if (target.back() < '0' || target.back() > '9')
        target.resize(point);
}

void WriteFraction(std::string& target, double fraction, int64_t count, const utfFlt& number)
{
    const bool alternate = number.Flags.Has(utfFmt::AltForm);
    if (count == 0 && !alternate)
        return;
    const size_t point = target.size();
    WritePoint(target, number.Flags);
    const size_t decimals = target.size();
    const int64_t zeros = WriteDecimals(target, fraction, count);
    if (count > 0 && IsGeneral(number.Conv) && !alternate)
        RemoveZeros(target, point, decimals);
    else
        target.append(static_cast<size_t>(zeros), '0');
}

}  // namespace

std::string& operator<<(std::string& target, const utfFlt& number)
{
    if (std::isnan(number.Value))
        return target << "NaN";
    if (std::isinf(number.Value))
        return target << "\u221E";

    const size_t start = target.size();
    const bool negative = number.Value < 0;
    const int decimals = std::max(number.Digits, 0);
    double value = Rounded(std::fabs(number.Value), decimals);
    const int power = value == 0 ? 0 : utfPowerOfTen(value);
    const layout layout = LayoutOf(number.Conv, decimals, power);
    const bool exponent = HasExponent(layout.Conv);
    if (exponent)
        value = WithoutPower(value, power);

    const double fraction = WriteWhole(target, value, exponent ? 0 : power);
    WriteFraction(target, fraction, layout.Decimals, number);
    if (exponent)
        target << layout.Conv << utfInt(utfFmt::PlusSign, 'd', int64_t{power}, 2);
    utfFinishField(target, start, number.Width, number.Flags, negative);
    return target;
}
