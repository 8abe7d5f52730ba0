#include "platform/clock.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

TEST(clockLinux, GivesTheSystemsDateInUTC)
{
    // Midnight may come between the two questions, but not twice.
    for (int attempt = 0; attempt < 2; attempt++) {
        const time_t now = time(nullptr);
        tm expected = {};
        gmtime_r(&now, &expected);
        const clockDate today = clockTodayUTC();
        if (today.Day != expected.tm_mday && attempt == 0)
            continue;
        EXPECT_EQ(today.Year, expected.tm_year + 1900);
        EXPECT_EQ(today.Month, expected.tm_mon + 1);
        EXPECT_EQ(today.Day, expected.tm_mday);
        return;
    }
}

}  // namespace
