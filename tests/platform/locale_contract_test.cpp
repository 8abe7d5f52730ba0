#include "platform/locale.h"

#include "foundations/text/utfConvert.h"
#include "tests/platform/contract.h"

#include <clocale>
#include <vector>

namespace {

struct itemRow {
    localeItem Item;
    unsigned Count;
};

constexpr itemRow Items[] = {
    {localeItem::DateSeparator, 1}, {localeItem::DecimalPoint, 1}, {localeItem::ListSeparator, 1},
    {localeItem::TimeSeparator, 1}, {localeItem::MonthFull, 12},   {localeItem::MonthShort, 12},
    {localeItem::DayFull, 7},       {localeItem::DayShort, 7},     {localeItem::DayShortest, 7},
};

using localeContract = contractTest;

bool IsUTF8(const std::string& text)
{
    std::u16string units;
    std::string again;
    utfAppend16From8(units, text.c_str());
    return utfAppend8From16(again, units.c_str()) == text;
}

TEST_F(localeContract, GivesUTF8)
{
    for (const itemRow& row : Items) {
        for (unsigned index = 0; index < row.Count; index++) {
            const std::string text = localeText(row.Item, index);
            EXPECT_TRUE(IsUTF8(text)) << text;
            EXPECT_LT(text.size(), 200u);
        }
    }
}

TEST_F(localeContract, HasNothingForAnIndexOutOfRange)
{
    for (const itemRow& row : Items) {
        for (const unsigned index : {row.Count, row.Count + 1, 1000u, 0x7FFFFFFFu, 0xFFFFFFFFu})
            EXPECT_EQ(localeText(row.Item, index), "") << static_cast<int>(row.Item) << ' ' << index;
    }
}

TEST_F(localeContract, TellsMonthsAndDaysApart)
{
    for (const itemRow& row : Items) {
        if (row.Count == 1)
            continue;
        for (unsigned index = 1; index < row.Count; index++) {
            const std::string text = localeText(row.Item, index);
            if (text.empty())
                continue;
            EXPECT_NE(text, localeText(row.Item, index - 1));
        }
    }
}

TEST_F(localeContract, LeavesTheLocaleOfTheProcessAlone)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const itemRow& row : Items)
        localeText(row.Item);
    localeErrorText(2);
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

TEST_F(localeContract, HasWordsForAnErrorThatEverySystemKnows)
{
    if (contractIsFake())
        GTEST_SKIP() << "texts are scripted here";
    // 2 is a missing file in both worlds.
    const std::string text = localeErrorText(2);
    EXPECT_GT(text.size(), 3u);
    EXPECT_TRUE(IsUTF8(text)) << text;
}

TEST_F(localeContract, HasNothingForACodeThatNoSystemKnows)
{
    for (const uint32_t code : {0x2FFFFFFFu, 0x7FFFFFFFu, 0xEFFFFFFFu, 0x20012345u})
        EXPECT_EQ(localeErrorText(code), "") << code;
}

}  // namespace
