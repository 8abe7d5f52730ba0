#include "platform/locale.h"

#include "platform/win32/text.h"

#include <windows.h>

namespace {

// The system's numbers of the texts of one item follow each other.
struct itemRow {
    localeItem Item;
    LCTYPE First;
    unsigned Count;
};

constexpr unsigned months = 12;
constexpr unsigned days = 7;

constexpr itemRow Items[] = {
    {localeItem::DateSeparator, LOCALE_SDATE, 1},
    {localeItem::DecimalPoint, LOCALE_SDECIMAL, 1},
    {localeItem::ListSeparator, LOCALE_SLIST, 1},
    {localeItem::TimeSeparator, LOCALE_STIME, 1},
    {localeItem::MonthFull, LOCALE_SMONTHNAME1, months},
    {localeItem::MonthShort, LOCALE_SABBREVMONTHNAME1, months},
    {localeItem::DayFull, LOCALE_SDAYNAME1, days},
    {localeItem::DayShort, LOCALE_SABBREVDAYNAME1, days},
    {localeItem::DayShortest, LOCALE_SSHORTESTDAYNAME1, days},
};

// The system's weeks begin with Monday.
unsigned systemIndex(localeItem item, unsigned index)
{
    const bool sundayFirst = item == localeItem::DayFull || item == localeItem::DayShort;
    return sundayFirst ? (index + days - 1) % days : index;
}

std::string userText(LCTYPE type)
{
    constexpr int longestText = 128;
    char16_t units[longestText] = {};
    if (GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, type, textUnits(units), longestText) <= 0)
        return {};
    return textTo8(units);
}

}  // namespace

std::string localeText(localeItem item, unsigned index)
{
    for (const itemRow& row : Items) {
        if (row.Item == item)
            return index < row.Count ? userText(row.First + systemIndex(item, index)) : std::string();
    }
    return {};
}

std::string localeErrorText(uint32_t code)
{
    char16_t* units = nullptr;
    // With this flag the system takes the address of a pointer in place of a buffer.
    const DWORD count = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM, nullptr,
        code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<wchar_t*>(&units), 0, nullptr);
    if (count == 0 || units == nullptr)
        return {};
    std::string text = textTo8({units, count});
    LocalFree(units);
    return text;
}
