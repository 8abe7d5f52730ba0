#include "platform/process.h"

#include "tests/platform/contract.h"

namespace {

// What started copies of this program do is in their own tests.
using processContract = contractTest;

TEST_F(processContract, KnowsTheRunningProgramsFile)
{
    EXPECT_NE(processPath(), "");
}

TEST_F(processContract, KnowsTheTextItWasStartedWithWhereThereIsOne)
{
    const std::string text = processCommandLine();
    if (text.empty())
        GTEST_SKIP() << "arguments come one by one here";
    EXPECT_NE(text.find("_test"), std::string::npos) << text;
}

TEST_F(processContract, StartsNothingWithoutAName)
{
    EXPECT_EQ(processStart({}), nullptr);
}

TEST_F(processContract, StartsAProgramAndWaitsForItsEnd)
{
    processHandle* const process = processStart({processPath(), "--gtest_filter=-*", "--gtest_brief=1"});
    ASSERT_NE(process, nullptr);
    EXPECT_EQ(processWait(process), 0);
}

TEST_F(processContract, KillsOneThatHasEndedWithoutHarm)
{
    processHandle* const process = processStart({processPath(), "--gtest_filter=-*", "--gtest_brief=1"});
    ASSERT_NE(process, nullptr);
    processKill(process);
    processKill(process);
    processWait(process);
}

TEST_F(processContract, KeepsTwoProgramsApart)
{
    processHandle* const one = processStart({processPath(), "--gtest_filter=-*", "--gtest_brief=1"});
    processHandle* const two = processStart({processPath(), "--gtest_filter=-*", "--gtest_brief=1"});
    ASSERT_NE(one, nullptr);
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(processWait(two), 0);
    EXPECT_EQ(processWait(one), 0);
}

}  // namespace
