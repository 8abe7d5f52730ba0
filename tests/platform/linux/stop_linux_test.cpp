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

INSTANTIATE_TEST_SUITE_P(All, stopSignal, testing::Values(SIGINT, SIGTERM, SIGHUP));

}  // namespace
