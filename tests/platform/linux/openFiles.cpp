#include "tests/platform/linux/openFiles.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

std::vector<int> openFiles()
{
    std::vector<int> files;
    DIR* const folder = opendir("/proc/self/fd");
    if (folder == nullptr)
        return files;
    while (const dirent* const entry = readdir(folder)) {
        const int file = std::atoi(entry->d_name);
        if (entry->d_name[0] != '.' && file != dirfd(folder))
            files.push_back(file);
    }
    closedir(folder);
    return files;
}

std::vector<int> openFilesToInherit(const std::vector<int>& known)
{
    std::vector<int> inherited;
    for (const int file : openFiles()) {
        const bool isKnown = std::find(known.begin(), known.end(), file) != known.end();
        if (!isKnown && (fcntl(file, F_GETFD) & FD_CLOEXEC) == 0)
            inherited.push_back(file);
    }
    return inherited;
}

closedInput::closedInput() : Kept(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1))
{
    close(STDIN_FILENO);
}

closedInput::~closedInput()
{
    dup2(Kept, STDIN_FILENO);
    close(Kept);
}

bool closedInput::IsTaken() const
{
    return fcntl(STDIN_FILENO, F_GETFD) >= 0;
}
