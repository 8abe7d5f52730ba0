#include "foundations/settings/settingsNumber.h"

#include <gtest/gtest.h>

#include <string>

TEST(settingsNumber, Reads32BitsWithSignWithinTheirRange)
{
    const struct {
        const char* Text;
        int32_t Value;
        size_t Length;
    } Cases[] = {
        {"0", 0, 1},
        {"  12x", 12, 4},
        {"+5", 5, 2},
        {"-5", -5, 2},
        {"2147483647", INT32_MAX, 10},
        {"2147483648", INT32_MAX, 10},
        {"-2147483648", INT32_MIN, 11},
        {"-2147483649", INT32_MIN, 11},
        {"9223372036854775808", INT32_MAX, 19},
        {"-99999999999999999999", INT32_MIN, 21},
        {"", 0, 0},
        {"  ", 0, 0},
        {"x", 0, 0},
        {"- 5", 0, 0},
    };
    for (const auto& [text, value, length] : Cases) {
        SCOPED_TRACE(text);
        const char* end = nullptr;
        EXPECT_EQ(settingsParseInt32(text, &end), value);
        EXPECT_EQ(static_cast<size_t>(end - text), length);
    }
}

TEST(settingsNumber, Reads32BitsWithoutSignAndWrapsNegativeOnes)
{
    const struct {
        const char* Text;
        int Base;
        uint32_t Value;
        size_t Length;
    } Cases[] = {
        {"0", 10, 0, 1},
        {"4294967295", 10, 0xFFFFFFFF, 10},
        {"4294967296", 10, 0xFFFFFFFF, 10},
        {"18446744073709551615", 10, 0xFFFFFFFF, 20},
        {"99999999999999999999", 10, 0xFFFFFFFF, 20},
        {"-5", 10, 0xFFFFFFFB, 2},
        {"-4294967295", 10, 1, 11},
        {"-4294967296", 10, 0xFFFFFFFF, 11},
        {"-18446744073709551615", 10, 0xFFFFFFFF, 21},
        {"-99999999999999999999", 10, 0xFFFFFFFF, 21},
        {" \t-0", 10, 0, 4},
        {"", 10, 0, 0},
        {"z", 10, 0, 0},
        {"ff,12", 16, 0xFF, 2},
        {"0xFF", 16, 0xFF, 4},
        {"-1", 16, 0xFFFFFFFF, 2},
        {"123456789", 16, 0xFFFFFFFF, 9},
    };
    for (const auto& [text, base, value, length] : Cases) {
        SCOPED_TRACE(text);
        const char* end = nullptr;
        EXPECT_EQ(settingsParseUInt32(text, &end, base), value);
        EXPECT_EQ(static_cast<size_t>(end - text), length);
    }
}

TEST(settingsNumber, Reads64Bits)
{
    const char* end = nullptr;
    EXPECT_EQ(settingsParseInt64("-9223372036854775809", &end), INT64_MIN);
    EXPECT_EQ(settingsParseInt64("9223372036854775807", &end), INT64_MAX);
    EXPECT_EQ(settingsParseUInt64("18446744073709551615", &end), UINT64_MAX);
    EXPECT_EQ(settingsParseUInt64("-1", &end), UINT64_MAX);
    EXPECT_EQ(*end, '\0');
}
