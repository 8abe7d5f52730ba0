#include "toolkit/ctrlEdit_Time.h"

#include "foundations/text/utfEdit.h"
#include "foundations/text/utfLocale.h"
#include "foundations/text/utfNumber.h"
#include "toolkit/editMath.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32_t firstWidth = 40;
constexpr uint32_t firstHeight = 20;
constexpr int32_t mostDigits = 9;
constexpr uint64_t sixty = 60;

}  // namespace

ctrlEdit_Time::ctrlEdit_Time(ctrlWindow* parent, uint32_t flags)
    : ctrlEdit_Digits(parent, firstWidth, firstHeight, flags)
{
    ctrlEdit_Time::Cancel();
}

ctrlEdit_Time::~ctrlEdit_Time()
{
    EndFocus();
}

std::string ctrlEdit_Time::TextOf(double seconds) const
{
    const std::string separator = Mark(utfLocale.TimeSeparator, ":");
    const auto unit = static_cast<uint64_t>(editTenTo(static_cast<uint64_t>(Decimals_)));
    const auto units =
        static_cast<uint64_t>(editInteger(std::max(seconds, 0.0) * static_cast<double>(unit) + 0.5));
    const uint64_t whole = units / unit;
    const uint64_t minutes = whole / sixty;
    std::string text;
    if (HasFlag(ctrlEditMinutes))
        text << utfInt('u', minutes, HasFocus() ? FirstDigits_ : 1);
    else
        text << utfInt('u', minutes / sixty, HasFocus() ? 2 : 1) << separator
             << utfInt('u', minutes % sixty, 2);
    text << separator << utfInt('u', whole % sixty, 2);
    if (Decimals_ > 0)
        text << Mark(utfLocale.DecimalPoint, ".") << utfInt('u', units % unit, int{Decimals_});
    return text;
}

void ctrlEdit_Time::Value(double seconds)
{
    if (std::isnan(seconds))
        return;
    seconds = std::clamp(seconds, Minimum, Maximum);
    if (Value_ == seconds)
        return;
    Value_ = seconds;
    Cancel();
}

void ctrlEdit_Time::Range(double minimum, double maximum)
{
    if (!(minimum >= 0 && minimum <= maximum) || std::isinf(maximum))
        return;
    Minimum = minimum;
    Maximum = maximum;
    Value(Value_);
}

void ctrlEdit_Time::Decimals(int32_t count)
{
    count = std::clamp(count, 0, mostDigits);
    if (Decimals_ == count)
        return;
    Decimals_ = count;
    Cancel();
}

void ctrlEdit_Time::FirstDigits(int32_t count)
{
    count = std::clamp(count, 1, mostDigits);
    if (FirstDigits_ == count)
        return;
    FirstDigits_ = count;
    Cancel();
}

void ctrlEdit_Time::Cancel()
{
    EditText(TextOf(Value_));
}

double ctrlEdit_Time::SecondsTyped() const
{
    const std::string text = Name();
    // The text has fewer digits than the value: one that nobody changed says nothing new.
    if (text == TextOf(Value_))
        return Value_;
    double seconds = 0;
    for (uint64_t group = 0; group < GroupsBeforeDecimals(); ++group)
        seconds = seconds * static_cast<double>(sixty) + NumberIn(text, group);
    return seconds + NumberIn(text, GroupsBeforeDecimals()) / std::pow(10.0, Decimals_);
}

void ctrlEdit_Time::Change(double seconds)
{
    const double before = Value_;
    Value(seconds);
    if (Value_ != before)
        Raise(OnChange);
}

void ctrlEdit_Time::Commit()
{
    const ctrlLife life(this);
    Change(SecondsTyped());
    if (life)
        Cancel();
}

// The hours are those of a day; the minutes are free where they are the first.
bool ctrlEdit_Time::Fits(std::string& text, uint64_t position, char digit) const
{
    const digitPlace place = PlaceOf(text, position);
    if (place.Group >= GroupsBeforeDecimals() || place.Width() != 2)
        return true;
    if (place.Group > 0)
        return place.Index > 0 || digit <= '5';
    if (HasFlag(ctrlEditMinutes))
        return true;
    if (place.Index > 0)
        return At(text, position - 1) < '2' || digit <= '3';
    if (digit == '2' && At(text, position + 1) > '3')
        Put(text, position + 1, '0');
    return digit <= '2';
}

double ctrlEdit_Time::DigitWeight() const
{
    const digitPlace place = PlaceOf(Name(), Caret());
    const uint64_t groups = GroupsBeforeDecimals();
    if (place.Group >= groups)
        return std::pow(0.1, static_cast<double>(place.Index + 1));
    double weight = static_cast<double>(editTenTo(place.Behind));
    for (uint64_t group = place.Group + 1; group < groups; ++group)
        weight *= static_cast<double>(sixty);
    return weight;
}

void ctrlEdit_Time::DoOnMouseWheelSteps(int64_t steps)
{
    Change(Value_ + static_cast<double>(steps) * DigitWeight());
}

void ctrlEdit_Time::DoOnSpinSteps(int64_t steps)
{
    Change(Value_ + static_cast<double>(steps) * DigitWeight() * Step);
}
