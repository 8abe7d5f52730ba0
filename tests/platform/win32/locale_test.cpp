#include "platform/locale.h"

#include "tests/platform/contract.h"

namespace {

using win32Locale = contractTest;

TEST_F(win32Locale, BeginsEachListWhereItShould)
{
    if (localeText(localeItem::MonthFull) != "January")
        GTEST_SKIP() << "the user's language is not English";
    EXPECT_EQ(localeText(localeItem::MonthFull, 11), "December");
    EXPECT_EQ(localeText(localeItem::MonthShort, 0), "Jan");
    EXPECT_EQ(localeText(localeItem::MonthShort, 11), "Dec");
    const std::string days[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    for (unsigned day = 0; day < std::size(days); day++) {
        EXPECT_EQ(localeText(localeItem::DayFull, day), days[day]);
        EXPECT_EQ(localeText(localeItem::DayShort, day), days[day].substr(0, 3));
        const unsigned fromMonday = (day + 6) % 7;
        EXPECT_EQ(localeText(localeItem::DayShortest, fromMonday), days[day].substr(0, 2));
    }
}

TEST_F(win32Locale, HasEverySeparator)
{
    for (const localeItem item : {localeItem::DateSeparator, localeItem::DecimalPoint,
                                  localeItem::ListSeparator, localeItem::TimeSeparator})
        EXPECT_NE(localeText(item), "") << static_cast<int>(item);
}

TEST_F(win32Locale, HasWordsForTheSystemsErrors)
{
    // A full disk, no rights, a handle that is none.
    for (const uint32_t code : {112u, 5u, 6u})
        EXPECT_GT(localeErrorText(code).size(), 3u) << code;
    EXPECT_EQ(localeErrorText(0xDEADBEEF), "");
}

TEST_F(win32Locale, LeavesThePlacesInATextOpen)
{
    // "%1 is not a valid Win32 application."
    EXPECT_NE(localeErrorText(193).find("%1"), std::string::npos);
}

}  // namespace
