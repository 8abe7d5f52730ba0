#include "gnss/nmeaNumber.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace {

TEST(nmeaNumber, ReadsWhatBelongsToTheNumberAndNoMore)
{
    struct row {
        std::string_view Text;
        double Value;
    };
    constexpr row rows[] = {
        {"", 0},
        {"0", 0},
        {"12", 12},
        {"4807.038", 4807.038},
        {"-1.5", -1.5},
        {"+1.5", 1.5},
        {"  7", 7},
        {"\t7", 7},
        {" -7", -7},
        {"- 7", 0},
        {"+-7", 0},
        {"--7", 0},
        {".5", 0.5},
        {"5.", 5},
        {".", 0},
        {"-", 0},
        {"-.5", -0.5},
        {"1.2.3", 1.2},
        {"12abc", 12},
        {"abc", 0},
        {"1e3", 1000},
        {"1E3", 1000},
        {"1e+3", 1000},
        {"25e-1", 2.5},
        {"1e", 1},
        {"1e+", 1},
        {"1ex", 1},
        {"e5", 0},
        {"inf", 0},
        {"nan", 0},
        {"infinity", 0},
        {"-inf", 0},
        {"0x10", 0},
        {"1,5", 1},
        {"1 5", 1},
        {"1e-400", 0},
        {"0e999999999999999999999", 0},
        {"000000000000000000000000012", 12},
        {"1e-99999999999999999999", 0},
        {"0.1", 0.1},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"0.000000000000000000000000000001", 1e-30},
        {"9007199254740993", 9007199254740992.0},
        {"9007199254740993.0000000000000000000000001", 9007199254740994.0},
        {"1e22", 1e22},
        {"1e23", 1e23},
        {"123e-25", 123e-25},
    };
    for (const row& each : rows)
        EXPECT_EQ(nmeaDouble(each.Text), each.Value) << each.Text;
}

TEST(nmeaNumber, GivesTheLargestFiniteNumberForOneThatIsTooLarge)
{
    EXPECT_EQ(nmeaDouble("1e400"), std::numeric_limits<double>::max());
    EXPECT_EQ(nmeaDouble("-1e400"), -std::numeric_limits<double>::max());
    EXPECT_EQ(nmeaDouble("1e99999999999999999999"), std::numeric_limits<double>::max());
    EXPECT_EQ(nmeaDouble(std::string(500, '9')), std::numeric_limits<double>::max());
    EXPECT_EQ(nmeaFloat("1e39"), std::numeric_limits<float>::max());
    EXPECT_EQ(nmeaFloat(std::string(50, '9')), std::numeric_limits<float>::max());
    EXPECT_EQ(nmeaFloat("1e-60"), 0);
}

TEST(nmeaNumber, RoundsEveryNumberToTheNearest)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        char text[64];
        const int places = static_cast<int>(random() % 12);
        const double value = std::ldexp(static_cast<double>(random() >> random() % 60), -20);
        std::snprintf(text, sizeof text, i % 3 == 0 ? "%.*e" : "%.*f", places, value);
        const std::string_view view = text;
        double wanted = 0;
        std::from_chars(view.data(), view.data() + view.size(), wanted);
        EXPECT_EQ(nmeaDouble(text), wanted) << text;
        float wantedFloat = 0;
        std::from_chars(view.data(), view.data() + view.size(), wantedFloat);
        EXPECT_EQ(nmeaFloat(text), wantedFloat) << text;
    }
}

TEST(nmeaNumber, ReadsIntegersAndKeepsThemInBounds)
{
    struct row {
        std::string_view Text;
        int64_t Value;
    };
    constexpr row rows[] = {
        {"", 0},
        {"7", 7},
        {"007", 7},
        {" 7", 7},
        {"-7", -7},
        {"+7", 7},
        {"7.9", 7},
        {"7x", 7},
        {"x7", 0},
        {"0x7", 0},
        {"1e3", 1},
        {"-", 0},
        {"4294967295", 4294967295},
        {"4294967296", 4294967295},
        {"99999999999999999999999", 4294967295},
        {"-99999999999999999999999", -4294967295},
    };
    for (const row& each : rows)
        EXPECT_EQ(nmeaInteger(each.Text), each.Value) << each.Text;
}

TEST(nmeaNumber, ReadsHexadecimalUpToTheFirstOtherCharacter)
{
    EXPECT_EQ(nmeaHex("5F"), 0x5FU);
    EXPECT_EQ(nmeaHex("5f"), 0x5FU);
    EXPECT_EQ(nmeaHex("5G"), 5U);
    EXPECT_EQ(nmeaHex("G5"), 0U);
    EXPECT_EQ(nmeaHex(" 5"), 0U);
    EXPECT_EQ(nmeaHex("-5"), 0U);
    EXPECT_EQ(nmeaHex(""), 0U);
}

}  // namespace
