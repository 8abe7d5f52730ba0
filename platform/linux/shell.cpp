#include "platform/shell.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char opener[] = "xdg-open";

bool isProgram(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

// The opener's file, looked for where programs are; empty without one. Folders that are not absolute are left
// out: they would be looked for wherever this program happens to stand.
std::string findOpener()
{
    const char* const folders = std::getenv("PATH");
    std::string_view rest = folders ? folders : "";
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
        if (!folder.starts_with('/'))
            continue;
        std::string path = std::string(folder) + "/" + opener;
        if (isProgram(path))
            return path;
    }
    return {};
}

// The functions from here to the next line of dashes run between a fork and the program's start, where other
// threads' locks may be held for ever: they make calls of the system and nothing else.

void forgetSignals()
{
    for (int number = 1; number < NSIG; ++number)
        signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// A browser that kept our output open would keep whoever reads it waiting for its end.
void forgetStreams()
{
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nothing, stream);
    constexpr unsigned all = ~0U;
    // Where the system cannot, there is little to lose: this program's own files close at the start anyway.
    close_range(STDERR_FILENO + 1, all, CLOSE_RANGE_CLOEXEC);
}

// Starts the program in a session of its own, and tells the pipe when that fails; success closes the pipe.
[[noreturn]] void becomeProgram(char* const* arguments, int report)
{
    forgetSignals();
    forgetStreams();
    execv(arguments[0], arguments);
    const int code = errno;
    [[maybe_unused]] const ssize_t written = write(report, &code, sizeof code);
    _exit(EXIT_FAILURE);
}

// A child that has ended by the time its own child runs leaves that to the system, which takes it from there.
[[noreturn]] void startGrandchild(char* const* arguments, int report)
{
    setsid();
    const pid_t id = fork();
    if (id == 0)
        becomeProgram(arguments, report);
    _exit(id < 0 ? EXIT_FAILURE : EXIT_SUCCESS);
}

// ------------------------------------------------------------------------------------------------------------

bool endedWell(pid_t child)
{
    // It stays so in a program that ignores its children's ends, and is not told of them.
    int status = 0;
    pid_t ended = 0;
    do
        ended = waitpid(child, &status, 0);
    while (ended < 0 && errno == EINTR);
    return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

bool saysNothing(int report)
{
    int code = 0;
    ssize_t got = 0;
    do
        got = read(report, &code, sizeof code);
    while (got < 0 && errno == EINTR);
    return got == 0;
}

bool start(std::string program, std::string target)
{
    char* const arguments[] = {program.data(), target.data(), nullptr};
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0)
        startGrandchild(arguments, ends[1]);
    close(ends[1]);
    const bool isStarted = child > 0 && endedWell(child) && saysNothing(ends[0]);
    close(ends[0]);
    return isStarted;
}

// The file with no links and no relative parts in its name; empty when there is none.
std::string wholePath(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> whole(realpath(path.c_str(), nullptr), &std::free);
    return whole ? whole.get() : "";
}

std::string pageOf(const std::string& path)
{
    if (!path.ends_with(".chm"))
        return wholePath(path);
    constexpr const char* pages[] = {"help/index.html", "../share/doc/skyreckoning/help/index.html"};
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    for (const char* page : pages) {
        std::string whole = wholePath(folder + page);
        if (!whole.empty())
            return whole;
    }
    return {};
}

}  // namespace

bool shellOpen(const std::string& target)
{
    if (!shellTargetIsValid(target))
        return false;
    const std::string program = findOpener();
    return !program.empty() && start(program, target);
}

bool shellHelp(const std::string& path)
{
    return shellTargetIsValid(path) && shellOpen(pageOf(path));
}
