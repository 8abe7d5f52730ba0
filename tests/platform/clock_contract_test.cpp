#include "platform/clock.h"

#include "tests/platform/contract.h"

#include <chrono>
#include <thread>

namespace {

using clockContract = contractTest;

bool IsDate(const clockDate& date)
{
    const std::chrono::year_month_day day{std::chrono::year(date.Year), std::chrono::month(date.Month),
                                          std::chrono::day(date.Day)};
    return day.ok();
}

TEST_F(clockContract, NeverGoesBack)
{
    int64_t last = clockSteadyNs();
    for (int i = 0; i < 100'000; i++) {
        const int64_t now = clockSteadyNs();
        ASSERT_GE(now, last);
        last = now;
    }
}

TEST_F(clockContract, GoesOnAsTimePasses)
{
    const int64_t start = clockSteadyNs();
    EXPECT_TRUE(contractAwait([=] { return clockSteadyNs() >= start + 20'000'000; }));
}

TEST_F(clockContract, CountsWhatTheCallingThreadSpends)
{
    if (contractIsFake())
        GTEST_SKIP() << "threads cost nothing here";
    const int64_t start = clockThreadNs();
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    // Asking costs time too; a thread that gave way to others meanwhile would spend next to none.
    while (clockThreadNs() < start + 20'000'000 && std::chrono::steady_clock::now() < limit) {
    }
    EXPECT_GE(clockThreadNs(), start + 20'000'000);
    int64_t others = -1;
    std::thread([&others] { others = clockThreadNs(); }).join();
    EXPECT_LT(others, clockThreadNs());
}

TEST_F(clockContract, CountsNanoseconds)
{
    if (contractIsFake())
        GTEST_SKIP() << "time stands still here";
    const auto start = std::chrono::steady_clock::now();
    const int64_t first = clockSteadyNs();
    ASSERT_TRUE(contractAwait(
        [=] { return std::chrono::steady_clock::now() >= start + std::chrono::milliseconds(100); }));
    const double elapsed = static_cast<double>(clockSteadyNs() - first);
    const double expected =
        std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
    EXPECT_NEAR(elapsed / expected, 1.0, 0.3);
}

TEST_F(clockContract, GivesADateOfTheCalendar)
{
    const clockDate today = clockTodayUTC();
    EXPECT_TRUE(IsDate(today)) << today.Year << ' ' << int{today.Month} << ' ' << int{today.Day};
}

}  // namespace
