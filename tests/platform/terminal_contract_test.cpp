#include "platform/terminal.h"

#include <gtest/gtest.h>

namespace {

TEST(terminalContract, AlwaysTellsASizeThatCanBeDrawnIn)
{
    const terminalSize size = terminalNow();
    EXPECT_GE(size.Columns, 1);
    EXPECT_GE(size.Rows, 1);
}

TEST(terminalContract, GivesTheSameAnswerTwice)
{
    EXPECT_EQ(terminalReady(), terminalReady());
}

}  // namespace
