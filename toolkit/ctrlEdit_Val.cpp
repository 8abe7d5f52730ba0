// The value itself: its range, step and changes.
#include "toolkit/ctrlEdit_Val.h"

#include "toolkit/editMath.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32_t sideLength = 20;
constexpr int64_t firstMaximum = 100;

// What decides how the number is written, and what says nothing about what is on the screen.
constexpr uint32_t textStyles = styleValSnap | styleValGrouped | styleValGeneral | styleValPlain;
constexpr uint32_t quietStyles = styleValPoint | styleValWrap;

}  // namespace

ctrlEdit_Val::ctrlEdit_Val(ctrlWindow* parent, uint32_t flags)
    : ctrlEdit_Spin(parent, sideLength, sideLength, flags)
{
    StyleStore(IsInteger() ? styleValPlain : styleValPoint, 0);
    IsShortened = true;
    Step_ = NumberOf(int64_t{1});
    Maximum = NumberOf(firstMaximum);
    Minimum = NumberOf(int64_t{0});
    Value_ = NumberOf(int64_t{0});
    ctrlEdit_Val::Cancel();
}

ctrlEdit_Val::~ctrlEdit_Val()
{
    EndFocus();
}

ctrlEdit_Val::number ctrlEdit_Val::NumberOf(double value) const
{
    number result{};
    if (IsInteger())
        result.I = editInteger(value);
    else
        result.F = value;
    return result;
}

ctrlEdit_Val::number ctrlEdit_Val::NumberOf(int64_t value) const
{
    number result{};
    if (IsInteger())
        result.I = value;
    else
        result.F = static_cast<double>(value);
    return result;
}

double ctrlEdit_Val::FloatOf(number value) const
{
    return IsInteger() ? static_cast<double>(value.I) : value.F;
}

bool ctrlEdit_Val::Differs(number one, number other) const
{
    return IsInteger() ? one.I != other.I : one.F != other.F;
}

double ctrlEdit_Val::ValueGetF() const
{
    return FloatOf(Value_);
}

int64_t ctrlEdit_Val::ValueGetI() const
{
    return IsInteger() ? Value_.I : editInteger(Value_.F);
}

double ctrlEdit_Val::Fitted(double value) const
{
    if (HasStyle(styleValSnap) && Step_.F != 0) {
        const double snapped = std::floor(value / Step_.F + 0.5) * Step_.F;
        value = std::isfinite(snapped) ? snapped : value;
    }
    if (HasStyle(styleValWrap) && Minimum.F < Maximum.F)
        value = editWrap(value, Minimum.F, Maximum.F);
    return IsClamped() ? std::clamp(value, Minimum.F, Maximum.F) : value;
}

int64_t ctrlEdit_Val::Fitted(int64_t value) const
{
    if (HasStyle(styleValSnap) && Step_.I > 1)
        value = editSnap(value, Step_.I);
    if (HasStyle(styleValWrap) && Minimum.I < Maximum.I)
        value = editWrap(value, Minimum.I, Maximum.I);
    return IsClamped() ? std::clamp(value, Minimum.I, Maximum.I) : value;
}

void ctrlEdit_Val::Value(double value)
{
    if (!IsInteger()) {
        if (!std::isnan(value))
            Take(NumberOf(Fitted(value)));
        return;
    }
    constexpr double most = 9.2e18;
    if (value > -most && value < most)
        Value(static_cast<int64_t>(value));
}

void ctrlEdit_Val::Value(int64_t value)
{
    if (IsInteger())
        Take(NumberOf(Fitted(value)));
    else
        Value(static_cast<double>(value));
}

void ctrlEdit_Val::Take(number value)
{
    if (!Differs(Value_, value))
        return;
    Value_ = value;
    Cancel();
}

void ctrlEdit_Val::Range(double minimum, double maximum)
{
    if (minimum <= maximum)
        RangeStore(NumberOf(minimum), NumberOf(maximum));
}

void ctrlEdit_Val::Range(int64_t minimum, int64_t maximum)
{
    if (minimum <= maximum)
        RangeStore(NumberOf(minimum), NumberOf(maximum));
}

void ctrlEdit_Val::RangeStore(number minimum, number maximum)
{
    if (!Differs(Minimum, minimum) && !Differs(Maximum, maximum))
        return;
    const bool wasSmall = IsRangeSmall();
    Minimum = minimum;
    Maximum = maximum;
    // Only a small range has the prefixes of small values.
    if (IsRangeSmall() != wasSmall)
        Cancel();
    if (HasStyle(styleValUnclamped))
        Invalidate(true);
    if (!IsClamped())
        return;
    if (IsInteger())
        Value(Value_.I);
    else
        Value(Value_.F);
}

void ctrlEdit_Val::Step(double step)
{
    if (!std::isnan(step))
        Step_ = NumberOf(step);
}

void ctrlEdit_Val::Step(int64_t step)
{
    Step_ = NumberOf(step);
}

void ctrlEdit_Val::Presets(const std::vector<double>& values)
{
    Presets_.clear();
    for (const double one : values)
        Presets_.push_back(NumberOf(one));
}

void ctrlEdit_Val::Presets(const std::vector<int64_t>& values)
{
    Presets_.clear();
    for (const int64_t one : values)
        Presets_.push_back(NumberOf(one));
}

void ctrlEdit_Val::Unit(const std::string& text)
{
    if (Unit_ == text)
        return;
    Unit_ = text;
    Invalidate(true);
}

void ctrlEdit_Val::Decimals(int32_t count)
{
    if (Decimals_ == count)
        return;
    Decimals_ = count;
    Cancel();
}

void ctrlEdit_Val::ExponentFloor(int32_t power)
{
    if (ExponentFloor_ == power)
        return;
    ExponentFloor_ = power;
    Cancel();
}

void ctrlEdit_Val::ValStyleSet(uint32_t bits)
{
    bool isNew = false;
    for (const uint32_t bit : {styleValSnap, styleValGrouped, styleValGeneral, styleValPlain})
        isNew |= (bits & bit) != 0 && !HasStyle(bit);
    StyleStore(bits & (textStyles | quietStyles), 0);
    EditStyleSet(bits & ~(textStyles | quietStyles));
    if (isNew)
        Cancel();
}

void ctrlEdit_Val::ValStyleClear(uint32_t bits)
{
    const bool isOld = HasStyle(bits & textStyles);
    StyleStore(0, bits & (textStyles | quietStyles));
    EditStyleClear(bits & ~(textStyles | quietStyles));
    if (isOld)
        Cancel();
}

void ctrlEdit_Val::RaiseIfChanged(number before)
{
    if (Differs(before, Value_))
        Raise(OnChange);
}

void ctrlEdit_Val::DoOnSpinSteps(int64_t steps)
{
    const number before = Value_;
    if (IsInteger())
        Value(editAdd(Value_.I, editMultiply(steps, Step_.I)));
    else
        Value(Value_.F + static_cast<double>(steps) * Step_.F);
    RaiseIfChanged(before);
}
