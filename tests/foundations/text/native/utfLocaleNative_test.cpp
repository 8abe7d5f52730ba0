#include "foundations/text/utfError.h"
#include "foundations/text/utfLocale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

// Nothing in this program calls utfLocaleFill, so what stands in the record was there before main.

TEST(utfLocaleNative, IsFilledBeforeMain)
{
    const auto filled = [](const std::string& text) { return !text.empty(); };
    EXPECT_PRED1(filled, utfLocale.DateSeparator);
    EXPECT_PRED1(filled, utfLocale.DecimalPoint);
    EXPECT_PRED1(filled, utfLocale.ListSeparator);
    EXPECT_PRED1(filled, utfLocale.TimeSeparator);
    EXPECT_TRUE(std::ranges::all_of(utfLocale.MonthFull, filled));
    EXPECT_TRUE(std::ranges::all_of(utfLocale.MonthShort, filled));
    EXPECT_TRUE(std::ranges::all_of(utfLocale.DayFull, filled));
    EXPECT_TRUE(std::ranges::all_of(utfLocale.DayShort, filled));
    EXPECT_TRUE(std::ranges::all_of(utfLocale.DayShortest, filled));
}

TEST(utfLocaleNative, TellsMonthsAndDaysApart)
{
    const std::set<std::string> months(std::begin(utfLocale.MonthFull), std::end(utfLocale.MonthFull));
    const std::set<std::string> days(std::begin(utfLocale.DayFull), std::end(utfLocale.DayFull));
    EXPECT_EQ(months.size(), 12u);
    EXPECT_EQ(days.size(), 7u);
}

TEST(utfErrorNative, HasWordsForAKnownError)
{
    // Code 2 is a file that does not exist, on every system we run on.
    const std::string text = utfErrorText(2);
    EXPECT_EQ(text.find("Error 2 - "), 0u);
    EXPECT_EQ(text.find("Unknown error !!!"), std::string::npos);
    EXPECT_GT(text.size(), std::string("Error 2 - ").size());
    EXPECT_EQ(text.find_last_of("\r\n"), std::string::npos);
}

TEST(utfErrorNative, SaysSoForACodeOfNobody)
{
    EXPECT_EQ(utfErrorText(0xE1234567), "Error 3777185127 - Unknown error !!!");
}
