#include "platform/thread.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>

#include <unistd.h>

namespace {

std::string ShownName()
{
    std::ifstream file("/proc/self/task/" + std::to_string(threadId()) + "/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

TEST(threadLinux, ShowsTheFirstFifteenBytesOfAName)
{
    std::jthread named([] {
        threadName("receive");
        EXPECT_EQ(ShownName(), "receive");
        threadName("fifteen letters");
        EXPECT_EQ(ShownName(), "fifteen letters");
        threadName("a name of more than fifteen letters");
        EXPECT_EQ(ShownName(), "a name of more ");
    });
}

TEST(threadLinux, NumbersTheFirstThreadLikeTheProcess)
{
    EXPECT_EQ(threadId(), static_cast<uint64_t>(getpid()));
}

}  // namespace
