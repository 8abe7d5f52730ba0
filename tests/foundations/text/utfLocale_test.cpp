#include "foundations/text/utfLocale.h"

#include "tests/fakes/fakes.h"

#include <gtest/gtest.h>

namespace {

class utfLocaleTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
    void TearDown() override
    {
        fakeReset();
        utfLocaleFill();
    }
};

}  // namespace

TEST_F(utfLocaleTest, HoldsFortyNineStrings)
{
    EXPECT_EQ(sizeof(utfLocaleTexts), 49 * sizeof(std::string));
}

TEST_F(utfLocaleTest, TakesEachTextFromItsPlace)
{
    fakeLocale(localeItem::DateSeparator, 0, ".");
    fakeLocale(localeItem::DecimalPoint, 0, ",");
    fakeLocale(localeItem::ListSeparator, 0, ";");
    fakeLocale(localeItem::TimeSeparator, 0, "h");
    for (unsigned index = 0; index < 12; ++index) {
        fakeLocale(localeItem::MonthFull, index, "month " + std::to_string(index));
        fakeLocale(localeItem::MonthShort, index, "m" + std::to_string(index));
    }
    for (unsigned index = 0; index < 7; ++index) {
        fakeLocale(localeItem::DayFull, index, "day " + std::to_string(index));
        fakeLocale(localeItem::DayShort, index, "d" + std::to_string(index));
        fakeLocale(localeItem::DayShortest, index, std::to_string(index));
    }
    utfLocaleFill();
    EXPECT_EQ(utfLocale.DateSeparator, ".");
    EXPECT_EQ(utfLocale.DecimalPoint, ",");
    EXPECT_EQ(utfLocale.ListSeparator, ";");
    EXPECT_EQ(utfLocale.TimeSeparator, "h");
    for (size_t index = 0; index < 12; ++index) {
        EXPECT_EQ(utfLocale.MonthFull[index], "month " + std::to_string(index));
        EXPECT_EQ(utfLocale.MonthShort[index], "m" + std::to_string(index));
    }
    for (size_t index = 0; index < 7; ++index) {
        EXPECT_EQ(utfLocale.DayFull[index], "day " + std::to_string(index));
        EXPECT_EQ(utfLocale.DayShort[index], "d" + std::to_string(index));
        EXPECT_EQ(utfLocale.DayShortest[index], std::to_string(index));
    }
}

TEST_F(utfLocaleTest, FallsBackForTheSeparatorsAlone)
{
    utfLocaleFill();
    EXPECT_EQ(utfLocale.DateSeparator, "/");
    EXPECT_EQ(utfLocale.ListSeparator, ",");
    EXPECT_EQ(utfLocale.TimeSeparator, ":");
    EXPECT_EQ(utfLocale.DecimalPoint, "");
    EXPECT_EQ(utfLocale.MonthFull[0], "");
    EXPECT_EQ(utfLocale.MonthShort[11], "");
    EXPECT_EQ(utfLocale.DayFull[0], "");
    EXPECT_EQ(utfLocale.DayShort[6], "");
    EXPECT_EQ(utfLocale.DayShortest[0], "");
}

TEST_F(utfLocaleTest, CutsTheShortestDaysFromTheShortOnesByIndex)
{
    const char* const shortDays[] = {"Sun", "Mon", "\u00E9\u221Ex", "\u0421\u0440\u0434", "T", "", "Sat"};
    const char* const shortest[] = {"Su", "Mo", "\u00E9\u221E", "\u0421\u0440", "T", "", "Sa"};
    for (unsigned index = 0; index < 7; ++index)
        fakeLocale(localeItem::DayShort, index, shortDays[index]);
    utfLocaleFill();
    for (size_t index = 0; index < 7; ++index)
        EXPECT_EQ(utfLocale.DayShortest[index], shortest[index]) << index;
}

TEST_F(utfLocaleTest, FallsBackForEachShortestDayAlone)
{
    fakeLocale(localeItem::DayShort, 0, "Sun");
    fakeLocale(localeItem::DayShort, 1, "Mon");
    fakeLocale(localeItem::DayShortest, 0, "M");
    utfLocaleFill();
    EXPECT_EQ(utfLocale.DayShortest[0], "M");
    EXPECT_EQ(utfLocale.DayShortest[1], "Mo");
}

TEST_F(utfLocaleTest, ForgetsWhatTheSystemNoLongerSays)
{
    fakeLocale(localeItem::DecimalPoint, 0, ",");
    fakeLocale(localeItem::DateSeparator, 0, "-");
    utfLocaleFill();
    fakeReset();
    utfLocaleFill();
    EXPECT_EQ(utfLocale.DecimalPoint, "");
    EXPECT_EQ(utfLocale.DateSeparator, "/");
}
