#include "toolkit/ctrlEdit_Date.h"

#include "foundations/text/utfEdit.h"
#include "foundations/text/utfLocale.h"
#include "foundations/text/utfNumber.h"
#include "platform/clock.h"
#include "toolkit/editDate.h"
#include "toolkit/editMath.h"

#include <algorithm>

namespace {

constexpr uint32_t firstWidth = 20;
constexpr uint32_t firstHeight = 18;
constexpr int64_t lastCount = 255;  // of days and months that a step may lead to
constexpr int64_t lastYear = 65535;

// The groups of the text.
enum : uint64_t {
    groupDay = 0,
    groupMonth = 1,
    groupYear = 2,
};

// How high the first digit of a day or a month may be, and how high the second one then.
struct limitRow {
    char First;
    char Second;
};
constexpr limitRow dayLimit{'3', '1'};
constexpr limitRow monthLimit{'1', '2'};

}  // namespace

ctrlEdit_Date::ctrlEdit_Date(ctrlWindow* parent, uint32_t flags)
    : ctrlEdit_Digits(parent, firstWidth, firstHeight, flags)
{
    const clockDate today = clockTodayUTC();
    Value_ = editDayOf({today.Year, today.Month, today.Day});
    ctrlEdit_Date::Cancel();
}

ctrlEdit_Date::~ctrlEdit_Date()
{
    EndFocus();
}

std::string ctrlEdit_Date::TextOf(uint32_t day) const
{
    const editDate date = editDateOf(day);
    const std::string separator = Mark(utfLocale.DateSeparator, "/");
    std::string text;
    text << utfInt('u', uint64_t{date.Day}, 2) << separator << utfInt('u', uint64_t{date.Month}, 2)
         << separator << utfInt('u', static_cast<uint64_t>(std::max(date.Year, 0)), 4);
    return text;
}

void ctrlEdit_Date::Value(uint32_t day)
{
    day = std::min(day, editLastDay);
    if (Value_ == day)
        return;
    Value_ = day;
    Cancel();
}

void ctrlEdit_Date::Date(uint32_t year, uint32_t month, uint32_t day)
{
    const auto most = static_cast<uint32_t>(lastYear);
    Value(editDayOf({static_cast<int32_t>(std::min(year, most)), month, day}));
}

void ctrlEdit_Date::Change(uint32_t day)
{
    const uint32_t before = Value_;
    Value(day);
    if (Value_ != before)
        Raise(OnChange);
}

void ctrlEdit_Date::Cancel()
{
    EditText(TextOf(Value_));
}

void ctrlEdit_Date::Commit()
{
    const std::string text = Name();
    // A year before 0 is not to be read from the text, which does not have it.
    if (text == TextOf(Value_))
        return;
    const auto number = [&text](uint64_t group) {
        return static_cast<uint32_t>(std::clamp(NumberIn(text, group), 1.0, static_cast<double>(lastYear)));
    };
    const auto year = static_cast<int32_t>(number(groupYear));
    const uint32_t day = editDayOf({year, number(groupMonth), number(groupDay)});
    if (day == Value_)
        Cancel();
    else
        Change(day);
}

bool ctrlEdit_Date::Fits(std::string& text, uint64_t position, char digit) const
{
    const digitPlace place = PlaceOf(text, position);
    if (place.Group >= groupYear)
        return true;
    const limitRow& limit = place.Group == groupDay ? dayLimit : monthLimit;
    if (place.Index == 0) {
        if (digit > limit.First)
            return false;
        if (digit == limit.First && At(text, position + 1) > limit.Second)
            Put(text, position + 1, '0');
        return true;
    }
    const char first = At(text, position - 1);
    if (first == limit.First)
        return digit <= limit.Second;
    return first != '0' || digit != '0';
}

void ctrlEdit_Date::DoOnMouseWheelSteps(int64_t steps)
{
    const digitPlace place = PlaceOf(Name(), Caret());
    const int64_t change = editMultiply(steps, editTenTo(place.Behind));
    const auto moved = [change](int64_t count, int64_t last) {
        return std::clamp(editAdd(count, change), int64_t{1}, last);
    };
    editDate date = editDateOf(Value_);
    if (place.Group == groupDay)
        date.Day = static_cast<uint32_t>(moved(date.Day, lastCount));
    else if (place.Group == groupMonth)
        date.Month = static_cast<uint32_t>(moved(date.Month, lastCount));
    else
        date.Year = static_cast<int32_t>(moved(date.Year, lastYear));
    Change(editDayOf(date));
}

void ctrlEdit_Date::DoOnSpinSteps(int64_t /*steps*/) {}
