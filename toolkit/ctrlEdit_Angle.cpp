#include "toolkit/ctrlEdit_Angle.h"

#include "foundations/text/utfEdit.h"
#include "foundations/text/utfLocale.h"
#include "foundations/text/utfNumber.h"
#include "toolkit/editMath.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32_t firstWidth = 50;
constexpr uint32_t firstHeight = 20;
constexpr int32_t mostDecimals = 9;
constexpr double sixty = 60;
constexpr double secondsPerDegree = 3600;
constexpr uint64_t perMinute = 60;
constexpr uint64_t perDegree = 3600;
constexpr uint64_t groupDecimals = 3;  // behind degrees, minutes and seconds

}  // namespace

ctrlEdit_Angle::ctrlEdit_Angle(ctrlWindow* parent, uint32_t flags)
    : ctrlEdit_Digits(parent, firstWidth, firstHeight, flags)
{
    IsShortened = true;
    ctrlEdit_Angle::Cancel();
}

ctrlEdit_Angle::~ctrlEdit_Angle()
{
    EndFocus();
}

double ctrlEdit_Angle::Limit() const
{
    constexpr double latitude = 90;
    constexpr double longitude = 180;
    return HasFlag(ctrlEditLatitude) ? latitude : longitude;
}

char ctrlEdit_Angle::Letter(bool isNegative) const
{
    if (HasFlag(ctrlEditLatitude))
        return isNegative ? 'S' : 'N';
    return isNegative ? 'W' : 'E';
}

// While it has the focus there is room for all digits of the degrees, for they are only overwritten.
std::string ctrlEdit_Angle::TextOf(double degrees) const
{
    const int allDigits = HasFlag(ctrlEditLatitude) ? 2 : 3;
    const auto unit = static_cast<uint64_t>(editTenTo(static_cast<uint64_t>(Decimals_)));
    const double scaled = std::fabs(degrees) * secondsPerDegree * static_cast<double>(unit);
    const auto units = static_cast<uint64_t>(editInteger(scaled + 0.5));
    const uint64_t seconds = units / unit;
    std::string text;
    text << utfInt('u', seconds / perDegree, HasFocus() ? allDigits : 1) << "\u00BA"
         << utfInt('u', seconds / perMinute % perMinute, 2) << "\u2032"
         << utfInt('u', seconds % perMinute, 2);
    if (Decimals_ > 0)
        text << Mark(utfLocale.DecimalPoint, ".") << utfInt('u', units % unit, int{Decimals_});
    return text << "\u2033" << Letter(std::signbit(degrees));
}

void ctrlEdit_Angle::Value(double degrees)
{
    if (std::isnan(degrees))
        return;
    degrees = std::clamp(degrees, -Limit(), Limit());
    // A hemisphere may be chosen before there are degrees.
    if (Value_ == degrees && std::signbit(Value_) == std::signbit(degrees))
        return;
    Value_ = degrees;
    Cancel();
}

void ctrlEdit_Angle::Decimals(int32_t count)
{
    count = std::clamp(count, 0, mostDecimals);
    if (Decimals_ == count)
        return;
    Decimals_ = count;
    Cancel();
}

void ctrlEdit_Angle::Cancel()
{
    EditText(TextOf(Value_));
    Invalidate(true);
}

double ctrlEdit_Angle::MagnitudeTyped() const
{
    const std::string text = Name();
    // The text has fewer digits than the value: one that nobody changed says nothing new.
    if (text == TextOf(Value_))
        return std::fabs(Value_);
    const double decimals = NumberIn(text, groupDecimals) / std::pow(10.0, Decimals_);
    const double seconds = NumberIn(text, 2) + decimals;
    return NumberIn(text, 0) + (NumberIn(text, 1) + seconds / sixty) / sixty;
}

void ctrlEdit_Angle::Change(double degrees)
{
    const double before = Value_;
    Value(degrees);
    if (Value_ != before)
        Raise(OnChange);
}

void ctrlEdit_Angle::Commit()
{
    const double degrees = std::copysign(MagnitudeTyped(), Value_);
    const ctrlLife life(this);
    Change(degrees);
    if (life)
        Cancel();
}

void ctrlEdit_Angle::Turn(bool isNegative)
{
    Change(std::copysign(MagnitudeTyped(), isNegative ? -1.0 : 1.0));
}

void ctrlEdit_Angle::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    const int32_t x = Toolkit().MouseX;
    const bool isOnLetter = x >= PaintRect.Right - 1 - LetterWidth && x < PaintRect.Right;
    if (event == MouseEv::LeftDouble && isOnLetter && HasStyle(styleFocusable))
        Turn(!std::signbit(Value_));
    else
        ctrlEdit_Digits::MouseEvent(event, keys, delta);
}

// Selection and caret keep away from the letter.
void ctrlEdit_Angle::PaintText()
{
    const char letter[] = {Letter(std::signbit(Value_)), '\0'};
    LetterWidth = static_cast<int32_t>(TextSize(letter, 1).Width);
    const uint64_t last = Length() - 1;
    SelectionSet(std::min(SelectionStart(), last), std::min(SelectionEnd(), last));
    CaretSet(Caret());
    ctrlEdit_Digits::PaintText();
}

bool ctrlEdit_Angle::KeyEvent(KeyEv event, uint32_t key)
{
    if (event != KeyEv::Char || !HasFocus() || !HasStyle(styleFocusable))
        return ctrlEdit_Digits::KeyEvent(event, key);
    constexpr uint32_t caseBit = 0x20;
    for (const bool isNegative : {false, true}) {
        const uint32_t letter = static_cast<unsigned char>(Letter(isNegative));
        if (key != letter && key != (letter | caseBit))
            continue;
        Turn(isNegative);
        return true;
    }
    return ctrlEdit_Digits::KeyEvent(event, key);
}

bool ctrlEdit_Angle::Fits(std::string& /*text*/, uint64_t /*position*/, char /*digit*/) const
{
    return true;
}

void ctrlEdit_Angle::DoOnMouseWheelSteps(int64_t steps)
{
    const digitPlace place = PlaceOf(Name(), Caret());
    double weight = 1.0;
    if (place.Group >= groupDecimals)
        weight = std::pow(0.1, static_cast<double>(place.Index + 1)) / secondsPerDegree;
    else
        weight =
            static_cast<double>(editTenTo(place.Behind)) / std::pow(sixty, static_cast<double>(place.Group));
    Change(Value_ + static_cast<double>(steps) * weight);
}

void ctrlEdit_Angle::DoOnSpinSteps(int64_t /*steps*/) {}
