#include "foundations/text/utfLocale.h"

#include "foundations/text/utfEdit.h"
#include "platform/locale.h"

namespace {

std::string TextOr(localeItem item, const char* fallback)
{
    std::string text = localeText(item);
    return text.empty() ? fallback : text;
}

template <size_t Count>
void Fill(std::string (&texts)[Count], localeItem item)
{
    for (size_t index = 0; index < Count; ++index)
        texts[index] = localeText(item, static_cast<unsigned>(index));
}

// Two letters, as calendars print them.
std::string Shortest(const std::string& dayShort)
{
    return dayShort.substr(0, utfOffset(dayShort.c_str(), 2));
}

utfLocaleTexts TextsOfTheSystem()
{
    utfLocaleTexts texts;
    texts.DateSeparator = TextOr(localeItem::DateSeparator, "/");
    texts.DecimalPoint = localeText(localeItem::DecimalPoint);
    texts.ListSeparator = TextOr(localeItem::ListSeparator, ",");
    texts.TimeSeparator = TextOr(localeItem::TimeSeparator, ":");
    Fill(texts.MonthFull, localeItem::MonthFull);
    Fill(texts.MonthShort, localeItem::MonthShort);
    Fill(texts.DayFull, localeItem::DayFull);
    Fill(texts.DayShort, localeItem::DayShort);
    Fill(texts.DayShortest, localeItem::DayShortest);
    for (size_t index = 0; index < std::size(texts.DayShortest); ++index) {
        if (texts.DayShortest[index].empty())
            texts.DayShortest[index] = Shortest(texts.DayShort[index]);
    }
    return texts;
}

}  // namespace

utfLocaleTexts utfLocale = TextsOfTheSystem();

void utfLocaleFill()
{
    utfLocale = TextsOfTheSystem();
}
