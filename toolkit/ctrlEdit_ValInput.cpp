// How a value is shown, typed and stepped by its digits.
#include "toolkit/ctrlEdit_Val.h"

#include "foundations/text/utfConvert.h"
#include "foundations/text/utfEdit.h"
#include "foundations/text/utfLocale.h"
#include "toolkit/editMath.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr uint32_t lastSimple = 255;  // of the characters that may mean something here

uint32_t lowered(uint32_t character)
{
    return character >= 'A' && character <= 'Z' ? character + ('a' - 'A') : character;
}

// 0 for an empty text.
uint32_t firstOf(const std::string& text)
{
    std::u16string units;
    utfAppend16From8(units, text.data(), text.size());
    return units.empty() ? 0 : units.front();
}

// Where the point is, in bytes; the end of the digits without one.
size_t pointOf(const std::string& text)
{
    const std::string& point = utfLocale.DecimalPoint;
    size_t at = point.empty() ? std::string::npos : text.find(point);
    if (at == std::string::npos)
        at = text.find('.');
    return at == std::string::npos ? std::min(text.find('e'), text.size()) : at;
}

bool hasPoint(const std::string& text)
{
    return pointOf(text) < std::min(text.find('e'), text.size());
}

int digitsIn(const std::string& text, size_t from, size_t to)
{
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(from);
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(to);
    return static_cast<int>(std::count_if(begin, end, [](char one) { return one >= '0' && one <= '9'; }));
}

// Ten to what stands behind the "e" of the general form.
double exponentOf(const std::string& text)
{
    const size_t at = text.find('e');
    return at == std::string::npos ? 1.0 : std::pow(10.0, std::atoi(text.c_str() + at + 1));
}

struct prefixRow {
    char Letter;
    const char* Prefix;
    double Factor;
    bool IsForIntegers;
};

constexpr prefixRow prefixes[] = {
    {'g', "G", 1e9, true},   {'k', "k", 1e3, true},    {'m', "M", 1e6, true},        {'t', "T", 1e12, true},
    {'n', "n", 1e-9, false}, {'p', "p", 1e-12, false}, {'u', "\u03BC", 1e-6, false},
};

}  // namespace

void ctrlEdit_Val::Paint()
{
    ctrlEdit_Spin::Paint();
    ++PaintRect.Left;
    --PaintRect.Right;
    const std::string measured = (HasStyle(styleValPlain) ? "" : "M") + Unit_;
    const std::string shown = Prefix_ + Unit_;
    const int32_t width = static_cast<int32_t>(TextSize(measured.c_str(), measured.size()).Width);
    ColourEnabled(TextShown(), true);
    Text({PaintRect.Right - width, PaintRect.Top, PaintRect.Right, PaintRect.Bottom}, shown.c_str(),
         textRight | textTop | textBottom, shown.size());
    PaintRect.Right -= width;
    TextDraw(Name());
}

bool ctrlEdit_Val::KeyEvent(KeyEv event, uint32_t key)
{
    if (event == KeyEv::Char && HasFocus() && HasStyle(styleFocusable) && Typed(key))
        return true;
    return ctrlEdit_Spin::KeyEvent(event, key);
}

bool ctrlEdit_Val::Typed(uint32_t character)
{
    if (character >= '0' && character <= '9') {
        Insert(character);
        return true;
    }
    if (character == '-')
        return TypeMinus();
    if (TypePoint(character))
        return true;
    return character <= lastSimple && !HasStyle(styleValPlain) && TypePrefix(character);
}

bool ctrlEdit_Val::IsMinusUsed() const
{
    return HasStyle(styleValAnyRange) || FloatOf(Minimum) < 0 || FloatOf(Maximum) < 0;
}

// Only as the first character, and only once.
bool ctrlEdit_Val::TypeMinus()
{
    const bool replacesFirst = HasSelection() && SelectionStart() == 0;
    const bool isFirst = Caret() == 0 && !Name().starts_with('-');
    if (IsMinusUsed() && (replacesFirst || isFirst))
        Insert('-');
    return true;
}

bool ctrlEdit_Val::TypePoint(uint32_t character)
{
    const bool isPoint = character == '.' || character == firstOf(utfLocale.DecimalPoint);
    if (!isPoint || IsInteger() || !HasStyle(styleValPoint))
        return false;
    std::string kept = Name();
    utfErase(kept, SelectionStart(), SelectionEnd() - SelectionStart());
    if (!hasPoint(kept))
        Insert(character);
    return true;
}

bool ctrlEdit_Val::TypePrefix(uint32_t character)
{
    const uint32_t letter = lowered(character);
    for (const prefixRow& row : prefixes) {
        if (letter != static_cast<uint32_t>(row.Letter))
            continue;
        if (IsInteger() && !row.IsForIntegers)
            return false;
        if (letter == 'm' && !IsInteger() && IsRangeSmall())
            Multiply("m", 1e-3);
        else
            Multiply(row.Prefix, row.Factor);
        return true;
    }
    if (letter != ' ' && (letter == 0 || letter != lowered(firstOf(Unit_))))
        return false;
    Multiply("", 1.0);
    return true;
}

void ctrlEdit_Val::Multiply(const char* prefix, double factor)
{
    Prefix_ = prefix;
    Multiplier = factor;
    Invalidate(true);
}

// What the digit before the caret counts, without the prefix.
double ctrlEdit_Val::DigitWeight() const
{
    const std::string text = Name();
    const size_t caret = utfOffset(text.c_str(), Caret());
    const size_t point = pointOf(text);
    const double exponent = exponentOf(text);
    if (caret <= point)
        return std::pow(10.0, digitsIn(text, caret, point)) * exponent;
    return std::pow(0.1, digitsIn(text, point, caret)) * exponent;
}

void ctrlEdit_Val::DoOnMouseWheelSteps(int64_t steps)
{
    const number before = Value_;
    if (IsInteger()) {
        const std::string text = Name();
        const size_t caret = utfOffset(text.c_str(), Caret());
        const int64_t weight = editTenTo(static_cast<uint64_t>(digitsIn(text, caret, text.size())));
        const int64_t unit = HasStyle(styleValSnap) ? std::max(weight, Step_.I) : weight;
        const int64_t scaled = editMultiply(unit, editInteger(Multiplier));
        Value(editAdd(Value_.I, editMultiply(steps, scaled)));
    } else {
        const double weight = DigitWeight() * Multiplier;
        const double unit = HasStyle(styleValSnap) ? std::max(weight, Step_.F) : weight;
        Value(Value_.F + static_cast<double>(steps) * unit);
    }
    RaiseIfChanged(before);
}
