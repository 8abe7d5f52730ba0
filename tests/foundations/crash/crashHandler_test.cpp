#include "foundations/crash/crashHandler.h"

#include "tests/fakes/fakeCrash.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

class crashHandlerTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        crashRecord record;
        record.Code = 0x80000003;
        fakeCrash().Records = {record};
    }
};

}  // namespace

TEST_F(crashHandlerTest, WatchesWhileItLives)
{
    {
        const crashHandler handler("1.0");
        EXPECT_STREQ(AppVersion, "1.0");
        EXPECT_EQ(fakeCallCount("crashWatch"), 1u);
        EXPECT_EQ(fakeCallCount("crashUnwatch"), 0u);
    }
    EXPECT_EQ(fakeCallCount("crashUnwatch"), 1u);
}

TEST_F(crashHandlerTest, LeavesCrashesToADebugger)
{
    fakeDebugAttached(true);
    {
        const crashHandler handler("1.0");
    }
    EXPECT_EQ(fakeCallCount("crashWatch"), 0u);
    EXPECT_EQ(fakeCallCount("crashUnwatch"), 0u);
}

TEST_F(crashHandlerTest, KeepsTheVersionWhenNoneIsGiven)
{
    const crashHandler first("2.0");
    const crashHandler second(nullptr);
    EXPECT_STREQ(AppVersion, "2.0");
}

TEST_F(crashHandlerTest, TellsTheUserWhereTheReportIs)
{
    const crashHandler handler(nullptr);
    ASSERT_TRUE(fakeCrashHappens());
    ASSERT_EQ(fakeCrash().Written.size(), 1u);
    EXPECT_THAT(fakeCrash().Told,
                ElementsAre("Exception report written to file: " + fakeCrash().Written.begin()->first));
    // The file is whole before anybody hears of it.
    EXPECT_EQ(fakeCallCount("crashFileClose"), 1u);
}

TEST_F(crashHandlerTest, TellsTheUserThatThereIsNone)
{
    fakeCrash().Creates = false;
    const crashHandler handler(nullptr);
    ASSERT_TRUE(fakeCrashHappens());
    ASSERT_EQ(fakeCrash().Told.size(), 1u);
    EXPECT_THAT(fakeCrash().Told[0],
                StartsWith("Could not create exception report file!: /documents/skyreckoning_"));
}

TEST_F(crashHandlerTest, DoesNothingAboutAnExceptionThatIsNoCrash)
{
    fakeCrash().Records.at(0).Code = 0x40010006;
    const crashHandler handler(nullptr);
    ASSERT_TRUE(fakeCrashHappens());
    EXPECT_THAT(fakeCrash().Written, IsEmpty());
    EXPECT_THAT(fakeCrash().Told, IsEmpty());
}

TEST_F(crashHandlerTest, ReportsDoubtfulOnesWhenADeveloperAsksForAll)
{
    fakeCrash().Records.at(0).Code = 0xC0000005;  // outside the program, and it could go on
    const crashHandler handler(nullptr);
    ASSERT_TRUE(fakeCrashHappens());
    EXPECT_THAT(fakeCrash().Written, IsEmpty());
    ReportAll = true;
    fakeCrashHappens();
    ReportAll = false;
    EXPECT_EQ(fakeCrash().Written.size(), 1u);
}
