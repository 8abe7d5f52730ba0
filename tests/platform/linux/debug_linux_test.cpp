#include "platform/debug.h"

#include "platform/heap.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string Shown(std::string_view text)
{
    testing::internal::CaptureStderr();
    debugWrite(text);
    return testing::internal::GetCapturedStderr();
}

TEST(debugLinux, ShowsLineEndsAsTheSystemHasThem)
{
    const struct {
        std::string Text;
        std::string Shown;
    } rows[] = {
        {"", ""},
        {"one\r\ntwo\r\n", "one\ntwo\n"},
        {"\r\n\r\n", "\n\n"},
        {"a\rb\nc", "a\rb\nc"},
        {"\r", "\r"},
        {"\r\r\n", "\r\n"},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
        {std::string(511, 'x') + "\r\n" + std::string(511, 'y') + "\r\n",
         std::string(511, 'x') + "\n" + std::string(511, 'y') + "\n"},
        {std::string(512, 'x') + "\r\n", std::string(512, 'x') + "\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Shown(row.Text), row.Shown);
}

// Runs in a process of its own.
[[noreturn]] void WriteToAPipeThatNobodyReads()
{
    int ends[2];
    if (pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0)
        _exit(1);
    close(ends[0]);
    signal(SIGPIPE, SIG_DFL);
    debugWrite("nobody listens\r\n");
    sigset_t pending;
    sigpending(&pending);
    _exit(sigismember(&pending, SIGPIPE) == 0 ? 42 : 1);
}

TEST(debugLinuxDeathTest, LosesATextThatNobodyListensFor)
{
    EXPECT_EXIT(WriteToAPipeThatNobodyReads(), testing::ExitedWithCode(42), "");
}

[[noreturn]] void WriteToNothing()
{
    close(STDERR_FILENO);
    debugWrite("nobody listens\r\n");
    _exit(42);
}

TEST(debugLinuxDeathTest, LosesATextWithoutAStream)
{
    EXPECT_EXIT(WriteToNothing(), testing::ExitedWithCode(42), "");
}

TEST(debugLinuxDeathTest, EndsTheProcessByTheSignalOfABreakpoint)
{
    EXPECT_EXIT(debugBreak(), testing::KilledBySignal(SIGTRAP), "");
}

[[noreturn]] void BreakWithTheSignalIgnored()
{
    signal(SIGTRAP, SIG_IGN);
    debugBreak();
    _exit(42);
}

TEST(debugLinuxDeathTest, EndsTheProcessAlsoWhenTheSignalIsIgnored)
{
    EXPECT_EXIT(BreakWithTheSignalIgnored(), testing::KilledBySignal(SIGTRAP), "");
}

// Plays the debugger of a process that breaks and tells by its exit code whether it has seen one.
TEST(debugLinux, KnowsADebuggerThatLetsTheProgramGoOn)
{
    EXPECT_FALSE(debugAttached());
    const pid_t child = fork();
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            _exit(77);
        debugBreak();
        _exit(debugAttached() ? 42 : 1);
    }
    ASSERT_GT(child, 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 77)
        GTEST_SKIP() << "no debugger is allowed here";
    ASSERT_TRUE(WIFSTOPPED(status));
    EXPECT_EQ(WSTOPSIG(status), SIGTRAP);
    ASSERT_EQ(ptrace(PTRACE_CONT, child, nullptr, nullptr), 0);
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 42);
}

// Lets the system refuse the direct reading of memory, as some containers do.
bool ForbidDirectReads()
{
    sock_filter program[] = {
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, SYS_process_vm_readv},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ERRNO | EPERM},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
    };
    const sock_fprog filter = {static_cast<unsigned short>(std::size(program)), program};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

[[noreturn]] void ReadByThePipe()
{
    constexpr size_t Bytes = 100'000;
    static char target[Bytes];
    heapHandle* const heap = heapCreate(0);
    char* const region = static_cast<char*>(heapAllocate(heap, Bytes));
    std::memset(region, 'x', Bytes);
    if (!ForbidDirectReads())
        _exit(77);
    const bool whole = debugRead(region, target, Bytes) && std::memcmp(region, target, Bytes) == 0;
    const bool beyond = debugRead(region + heapSize(heap, region) - 5000, target, 10'000);
    const bool nothing = debugRead(nullptr, target, 1);
    heapFree(heap, region);
    _exit(whole && !beyond && !nothing && !debugRead(region, target, 1) ? 42 : 1);
}

TEST(debugLinuxDeathTest, ReadsMemoryAlsoWhereTheDirectRoadIsForbidden)
{
    EXPECT_EXIT(ReadByThePipe(), testing::ExitedWithCode(42), "");
}

}  // namespace
