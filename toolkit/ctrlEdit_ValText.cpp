// How a number becomes text with a prefix, and text a number.
#include "toolkit/ctrlEdit_Val.h"

#include "foundations/text/utfLocale.h"
#include "foundations/text/utfNumber.h"
#include "foundations/text/utfParse.h"
#include "toolkit/editMath.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t mostDigits = 40;
constexpr size_t groupLength = 3;
constexpr char groupSeparator = ' ';

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

// Blanks between the thousands of the whole part, which the first digits are.
void group(std::string& text)
{
    size_t first = 0;
    while (first < text.size() && !isDigit(text[first]))
        ++first;
    size_t end = first;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    for (; end > first + groupLength; end -= groupLength)
        text.insert(end - groupLength, 1, groupSeparator);
}

std::string floatText(double value, char conversion, int32_t digits)
{
    std::string text;
    digits = std::clamp(digits, 0, mostDigits);
    // A locale without a point would run the decimals into the whole part.
    if (utfLocale.DecimalPoint.empty())
        return text << utfFlt(utfFmt::DotPoint, conversion, value, digits);
    return text << utfFlt(conversion, value, digits);
}

// The number as every parser reads it: without groups, and with "." whatever the locale's point is.
std::string plainNumber(std::string text)
{
    std::erase(text, groupSeparator);
    const std::string& point = utfLocale.DecimalPoint;
    const size_t at = point.empty() ? std::string::npos : text.find(point);
    if (at != std::string::npos)
        text.replace(at, point.size(), 1, '.');
    return text;
}

int64_t parseInteger(const std::string& text)
{
    size_t at = text.find_first_not_of(" \t");
    if (at == std::string::npos)
        return 0;
    const bool isNegative = text[at] == '-';
    if (isNegative || text[at] == '+')
        ++at;
    int64_t value = 0;
    for (; at < text.size() && isDigit(text[at]); ++at) {
        const int64_t digit = text[at] - '0';
        value = editAdd(editMultiply(value, 10), isNegative ? -digit : digit);
    }
    return value;
}

}  // namespace

bool ctrlEdit_Val::IsRangeSmall() const
{
    constexpr double limit = 10;
    return FloatOf(Minimum) > -limit && FloatOf(Maximum) < limit;
}

ctrlEdit_Val::scale ctrlEdit_Val::SmallScaleOf(double magnitude) const
{
    struct row {
        double Most;
        scale Scale;
    };
    constexpr row rows[] = {
        {3e-9, {"p", 1e-12, -12}},
        {3e-6, {"n", 1e-9, -9}},
        {0.003, {"\u03BC", 1e-6, -6}},
        {3.0, {"m", 1e-3, -3}},
    };
    for (const row& one : rows) {
        if (IsRangeSmall() && magnitude <= one.Most)
            return one.Scale;
    }
    return {"", 1.0, 0};
}

ctrlEdit_Val::scale ctrlEdit_Val::ScaleOf(double magnitude) const
{
    struct row {
        double Most;
        int32_t Floor;
        scale Scale;
    };
    constexpr row rows[] = {
        {3e6, 3, {"k", 1e3, 3}},
        {3e9, 6, {"M", 1e6, 6}},
        {3e12, 9, {"G", 1e9, 9}},
    };
    constexpr double mostPlain = 3000;
    if (HasStyle(styleValPlain))
        return {"", 1.0, 0};
    if (magnitude <= mostPlain || ExponentFloor_ > 0)
        return SmallScaleOf(magnitude);
    for (const row& one : rows) {
        if (magnitude <= one.Most || ExponentFloor_ > one.Floor)
            return one.Scale;
    }
    return {"T", 1e12, 12};
}

ctrlEdit_Val::valueText ctrlEdit_Val::ValueText(double value) const
{
    const scale shown = ScaleOf(std::fabs(value));
    const bool isGeneral = HasStyle(styleValGeneral);
    const int64_t decimals = std::max(int64_t{shown.Exponent} - ExponentFloor_, int64_t{0}) + Decimals_;
    const auto digits =
        isGeneral ? Decimals_ : static_cast<int32_t>(std::clamp(decimals, int64_t{0}, int64_t{mostDigits}));
    valueText result{floatText(value / shown.Divisor, isGeneral ? 'g' : 'f', digits), shown.Prefix,
                     shown.Divisor};
    if (HasStyle(styleValGrouped))
        group(result.Text);
    return result;
}

ctrlEdit_Val::valueText ctrlEdit_Val::ValueText(int64_t value) const
{
    valueText result;
    const auto width = static_cast<unsigned>(std::clamp(Decimals_, 0, mostDigits));
    result.Text << utfInt(utfFmt::ZeroFill, 'd', value, width);
    if (HasStyle(styleValGrouped))
        group(result.Text);
    return result;
}

ctrlEdit_Val::valueText ctrlEdit_Val::TextOf(number value) const
{
    return IsInteger() ? ValueText(value.I) : ValueText(value.F);
}

void ctrlEdit_Val::Cancel()
{
    const valueText shown = TextOf(Value_);
    Prefix_ = shown.Prefix;
    Multiplier = shown.Divisor;
    EditText(shown.Text);
    Invalidate(true);
}

void ctrlEdit_Val::Commit()
{
    const number before = Value_;
    const valueText shown = TextOf(Value_);
    // The text has fewer digits than the value: one that nobody changed says nothing new.
    if (Name() != shown.Text || Multiplier != shown.Divisor) {
        const std::string text = plainNumber(Name());
        if (IsInteger())
            Value(editMultiply(parseInteger(text), editInteger(Multiplier)));
        else
            Value(utfParseFlt(text.c_str(), nullptr, true) * Multiplier);
    }
    // What was typed may be another way to write the value that it has already.
    Cancel();
    RaiseIfChanged(before);
}
