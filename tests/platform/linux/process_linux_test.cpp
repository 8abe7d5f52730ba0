#include "platform/process.h"

#include "tests/platform/native/child.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace {

CHILD_TEST(HasNothingOpenButItsStreams)
{
    constexpr int Beyond = 1000;
    for (int descriptor = STDERR_FILENO + 1; descriptor < Beyond; descriptor++) {
        if (fcntl(descriptor, F_GETFD) != -1)
            childEnd(false);
    }
    childEnd(true);
}

TEST(processLinux, HandsOnNoDescriptorEvenIfItWasOpenedForThat)
{
    const int file = open("/dev/null", O_RDONLY);
    const int high = fcntl(file, F_DUPFD, 900);
    EXPECT_EQ(childRun("HasNothingOpenButItsStreams"), ChildGood);
    close(file);
    close(high);
}

CHILD_TEST(HasSignalsAsTheSystemHasThem)
{
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    struct sigaction action = {};
    sigaction(SIGUSR1, nullptr, &action);
    childEnd(sigismember(&blocked, SIGUSR2) == 0 && action.sa_handler == SIG_DFL);
}

TEST(processLinux, HandsOnNoSignalHandling)
{
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR2);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto handler = signal(SIGUSR1, SIG_IGN);
    EXPECT_EQ(childRun("HasSignalsAsTheSystemHasThem"), ChildGood);
    signal(SIGUSR1, handler);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

const std::vector<std::string> Unicode = {"\xC2\xB5", "\xE2\x82\xAC \xF0\x9F\x9B\xB0", "\xFF\xFE",
                                          "line\nend"};

CHILD_TEST(ComparesArgumentsOfAnyBytes)
{
    childEnd(childArguments() == Unicode);
}

TEST(processLinux, PassesArgumentsOfAnyBytes)
{
    EXPECT_EQ(childRun("ComparesArgumentsOfAnyBytes", Unicode), ChildGood);
}

TEST(processLinux, RefusesAnArgumentThatCouldNotArriveWhole)
{
    EXPECT_EQ(processStart({processPath(), std::string("a\0b", 3)}), nullptr);
}

TEST(processLinux, GivesAnAbsolutePath)
{
    EXPECT_TRUE(processPath().starts_with('/'));
    EXPECT_EQ(access(processPath().c_str(), X_OK), 0);
}

TEST(processLinux, StartsNoFileThatIsNoProgram)
{
    EXPECT_EQ(processStart({"/etc/passwd"}), nullptr);
    EXPECT_EQ(processStart({"/"}), nullptr);
}

}  // namespace
