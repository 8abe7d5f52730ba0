#include "platform/stop.h"

#include "tests/platform/contract.h"

namespace {

using stopContract = contractTest;

TEST_F(stopContract, IsNotAskedWhileNobodyAsks)
{
    EXPECT_FALSE(stopAsked());
    stopWatch();
    EXPECT_FALSE(stopAsked());
}

TEST_F(stopContract, MayWatchTwice)
{
    stopWatch();
    stopWatch();
    EXPECT_FALSE(stopAsked());
}

}  // namespace
