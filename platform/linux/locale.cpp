#include "platform/locale.h"

#include "platform/linux/localeFormat.h"

#include <cstring>

#include <langinfo.h>
#include <locale.h>

namespace {

constexpr unsigned Months = 12;
constexpr unsigned Days = 7;

// The user's locale, apart from that of the process.
class userLocale
{
public:
    userLocale() : Value(newlocale(LC_ALL_MASK, "", nullptr)) {}
    ~userLocale()
    {
        if (Value != nullptr)
            freelocale(Value);
    }
    userLocale(const userLocale&) = delete;
    userLocale& operator=(const userLocale&) = delete;

    const locale_t Value;
};

std::string TimeText(locale_t locale, nl_item item)
{
    return localeToUTF8(nl_langinfo_l(item, locale), nl_langinfo_l(_NL_TIME_CODESET, locale));
}

std::string DecimalPoint(locale_t locale)
{
    return localeToUTF8(nl_langinfo_l(RADIXCHAR, locale), nl_langinfo_l(_NL_NUMERIC_CODESET, locale));
}

std::string TimeSeparator(locale_t locale)
{
    const std::string format = TimeText(locale, T_FMT);
    // A format of its own in countries that count the hours to twelve.
    if (format.starts_with("%r"))
        return localeSeparatorIn(TimeText(locale, T_FMT_AMPM));
    return localeSeparatorIn(format);
}

std::string Named(locale_t locale, nl_item first, unsigned index, unsigned count)
{
    return index < count ? TimeText(locale, first + static_cast<nl_item>(index)) : std::string();
}

std::string Single(locale_t locale, localeItem item)
{
    switch (item) {
    case localeItem::DateSeparator:
        return localeSeparatorIn(TimeText(locale, D_FMT));
    case localeItem::DecimalPoint:
        return DecimalPoint(locale);
    // The system has no such text; a comma would be taken for a decimal point where that is one.
    case localeItem::ListSeparator:
        return DecimalPoint(locale) == "," ? ";" : "";
    case localeItem::TimeSeparator:
        return TimeSeparator(locale);
    default:
        return {};
    }
}

}  // namespace

std::string localeText(localeItem item, unsigned index)
{
    const userLocale user;
    if (user.Value == nullptr)
        return {};
    switch (item) {
    case localeItem::MonthFull:
        return Named(user.Value, MON_1, index, Months);
    case localeItem::MonthShort:
        return Named(user.Value, ABMON_1, index, Months);
    case localeItem::DayFull:
        return Named(user.Value, DAY_1, index, Days);
    case localeItem::DayShort:
        return Named(user.Value, ABDAY_1, index, Days);
    default:
        return index == 0 ? Single(user.Value, item) : std::string();
    }
}

std::string localeErrorText(uint32_t code)
{
    if (code > INT32_MAX)
        return {};
    const int number = static_cast<int>(code);
    const char* const english = strerrordesc_np(number);
    if (english == nullptr)
        return {};
    const userLocale user;
    if (user.Value == nullptr)
        return english;
    const std::string text = localeToUTF8(strerror_l(number, user.Value), nl_langinfo_l(CODESET, user.Value));
    return text.empty() ? english : text;
}
