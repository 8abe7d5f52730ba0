#include "foundations/fatal/crashFatal.h"

#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

TEST(crashFatal, AddsALineEndUnlessTheTextEndsInOne)
{
    struct row {
        std::string Text, Told;
    };
    const row rows[] = {
        {"it broke", "it broke\r\n"}, {"it broke\r\n", "it broke\r\n"},     {"it broke\n", "it broke\n"},
        {"it broke\r", "it broke\r"}, {"two\r\nlines", "two\r\nlines\r\n"}, {" ", " \r\n"},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Text);
        fakeReset();
        EXPECT_THROW(crashFatal(each.Text), fakeBreak);
        EXPECT_EQ(fakeDebugText(), each.Told);
    }
}

TEST(crashFatal, DropsATextThatIsEmptyOrStartsWithALineEndButBreaks)
{
    for (const char* const text : {"", "\r\n", "\n", "\rmore", "\nmore\r\n"}) {
        SCOPED_TRACE(text);
        fakeReset();
        EXPECT_THROW(crashFatal(text), fakeBreak);
        EXPECT_THAT(fakeCalls(), testing::ElementsAre("debugBreak"));
    }
}

TEST(crashFatal, ReturnsWhenADeveloperGoesOn)
{
    fakeReset();
    fakeBreakReturns(true);
    crashFatal("it broke");
    EXPECT_EQ(fakeDebugText(), "it broke\r\n");
    EXPECT_EQ(fakeCallCount("debugBreak"), 1u);
}
