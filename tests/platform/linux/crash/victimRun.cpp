#include "tests/foundations/crash/native/victimRun.h"

#include "platform/clock.h"
#include "platform/process.h"

#include <csignal>
#include <cstdlib>
#include <vector>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr uint32_t EndedBySignal = 0x80000000;

std::string VictimPath()
{
    const std::string own = processPath();
    return own.substr(0, own.rfind('/') + 1) + "crashVictim";
}

// The system's own end, not that of a sanitizer, is what the reports are to be compared with.
constexpr char Sanitizer[] =
    "handle_segv=0:handle_sigbus=0:handle_sigfpe=0:handle_sigill=0:handle_abort=0:handle_sigtrap=0:"
    "detect_leaks=0:detect_stack_use_after_return=0:disable_coredump=0";

[[noreturn]] void Become(const std::string& way, bool watched, const std::string& documents, int told,
                         bool traced)
{
    dup2(told, STDERR_FILENO);
    setenv("HOME", documents.c_str(), 1);
    if (documents.empty())
        unsetenv("HOME");
    setenv("XDG_CONFIG_HOME", "/nowhere", 1);
    setenv("ASAN_OPTIONS", Sanitizer, 1);
    unsetenv("DISPLAY");
    if (traced)
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    const std::string path = VictimPath();
    execl(path.c_str(), path.c_str(), way.c_str(), watched ? "watched" : "bare", nullptr);
    _exit(127);
}

std::string ReadAll(int file)
{
    std::string bytes;
    char piece[4096];
    ssize_t count = 0;
    while ((count = read(file, piece, sizeof piece)) > 0)
        bytes.append(piece, static_cast<size_t>(count));
    return bytes;
}

// Lets everything go on as it would without a debugger.
int Follow(pid_t child)
{
    int status = 0;
    bool started = false;
    while (waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
        // The first stop is the new program's own.
        const long signal = started ? WSTOPSIG(status) : 0;
        started = true;
        ptrace(PTRACE_CONT, child, nullptr, signal);
    }
    return status;
}

}  // namespace

victimEnd victimRun(const std::string& way, bool watched, const std::string& documents, victimUnder under)
{
    const int64_t start = clockSteadyNs();
    int ends[2];
    if (pipe(ends) != 0)
        return {};
    const bool traced = under == victimUnder::Debugger;
    const pid_t child = fork();
    if (child == 0)
        Become(way, watched, documents, ends[1], traced);
    close(ends[1]);
    victimEnd end;
    int status = 0;
    if (traced)
        status = Follow(child);
    end.Told = ReadAll(ends[0]);
    close(ends[0]);
    if (!traced)
        waitpid(child, &status, 0);
    end.Status = WIFSIGNALED(status) ? EndedBySignal | static_cast<uint32_t>(WTERMSIG(status))
                                     : static_cast<uint32_t>(WEXITSTATUS(status));
    end.Milliseconds = (clockSteadyNs() - start) / 1000000;
    return end;
}

bool victimSeesOverflow()
{
    return true;
}

std::string victimRoot()
{
    return "/";
}
