#include "platform/process.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <memory>

#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

struct processHandle {
    pid_t Id;
};

namespace {

// How a program is started: signals as the system has them at first, no file but the standard streams.
class startOptions
{
public:
    startOptions()
    {
        posix_spawn_file_actions_init(&Files);
        posix_spawnattr_init(&Attributes);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&Attributes, &none);
        posix_spawnattr_setsigdefault(&Attributes, &all);
        posix_spawnattr_setflags(&Attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        Ready = posix_spawn_file_actions_addclosefrom_np(&Files, STDERR_FILENO + 1) == 0;
    }

    ~startOptions()
    {
        posix_spawnattr_destroy(&Attributes);
        posix_spawn_file_actions_destroy(&Files);
    }

    startOptions(const startOptions&) = delete;
    startOptions& operator=(const startOptions&) = delete;

    posix_spawn_file_actions_t Files;
    posix_spawnattr_t Attributes;
    bool Ready;
};

bool HasNul(const std::string& text)
{
    return text.find('\0') != std::string::npos;
}

}  // namespace

std::string processPath()
{
    std::string path(256, '\0');
    for (;;) {
        const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
        if (length <= 0)
            return {};
        if (static_cast<size_t>(length) < path.size()) {
            path.resize(static_cast<size_t>(length));
            return path;
        }
        path.resize(2 * path.size());
    }
}

std::string processCommandLine()
{
    return {};
}

void processInputBytes()
{
    // Here every stream is one of bytes.
}

processHandle* processStart(const std::vector<std::string>& arguments)
{
    // An argument ends at its first NUL on the way, so one that holds a NUL would not arrive as given.
    if (arguments.empty() || std::any_of(arguments.begin(), arguments.end(), HasNul))
        return nullptr;
    const startOptions options;
    if (!options.Ready)
        return nullptr;
    // The system's call takes pointers to what it leaves unchanged.
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    pid_t id = 0;
    if (posix_spawn(&id, arguments[0].c_str(), &options.Files, &options.Attributes, pointers.data(),
                    environ) != 0)
        return nullptr;
    return std::make_unique<processHandle>(processHandle{id}).release();
}

void processKill(processHandle* process)
{
    // The number stays taken until processWait, so this never reaches a stranger.
    kill(process->Id, SIGKILL);
}

int processWait(processHandle* process)
{
    const std::unique_ptr<processHandle> owned(process);
    int status = 0;
    pid_t ended = 0;
    do
        ended = waitpid(owned->Id, &status, 0);
    while (ended < 0 && errno == EINTR);
    return ended == owned->Id && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
