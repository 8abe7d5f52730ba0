#include "platform/stop.h"

#include "tests/platform/native/child.h"

#include <gtest/gtest.h>

#include <csignal>

#include <unistd.h>

namespace {

int SignalOf(const std::vector<std::string>& arguments)
{
    return arguments.empty() ? 0 : std::stoi(arguments[0]);
}

// Raises the two that the parent names, of which it lives through the first.
CHILD_TEST(IsAskedToStopInTwoWays)
{
    stopWatch();
    for (const std::string& signal : childArguments())
        raise(std::stoi(signal));
    childEnd(true);
}

CHILD_TEST(IsToOutliveItsTerminal)
{
    signal(SIGHUP, SIG_IGN);
    stopWatch();
    raise(SIGHUP);
    const bool before = stopAsked();
    raise(SIGTERM);
    raise(SIGHUP);
    childEnd(!before && stopAsked());
}

// Raises the signal that the parent names, once.
CHILD_TEST(IsAskedToStopOnce)
{
    stopWatch();
    const bool before = stopAsked();
    raise(SignalOf(childArguments()));
    childEnd(!before && stopAsked());
}

// Raises it twice, which it does not live through.
CHILD_TEST(IsAskedToStopTwice)
{
    stopWatch();
    raise(SignalOf(childArguments()));
    stopWatch();
    raise(SignalOf(childArguments()));
    childEnd(true);
}

class stopSignal : public testing::TestWithParam<int>
{
};

TEST_P(stopSignal, IsKeptForTheProgramToSee)
{
    EXPECT_EQ(childRun("IsAskedToStopOnce", {std::to_string(GetParam())}), ChildGood);
}

TEST_P(stopSignal, EndsTheProgramTheSecondTime)
{
    EXPECT_EQ(childRun("IsAskedToStopTwice", {std::to_string(GetParam())}), -1);
}

TEST(stopSignals, EndTheProgramTheSecondTimeAlsoWhenTheyDiffer)
{
    EXPECT_EQ(childRun("IsAskedToStopInTwoWays", {std::to_string(SIGINT), std::to_string(SIGTERM)}), -1);
    EXPECT_EQ(childRun("IsAskedToStopInTwoWays", {std::to_string(SIGTERM), std::to_string(SIGHUP)}), -1);
}

TEST(stopSignals, LeaveAProgramAloneThatIsToOutliveItsTerminal)
{
    EXPECT_EQ(childRun("IsToOutliveItsTerminal"), ChildGood);
}

INSTANTIATE_TEST_SUITE_P(All, stopSignal, testing::Values(SIGINT, SIGTERM, SIGHUP));

}  // namespace
