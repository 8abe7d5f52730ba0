// The functions on files by name.
#include "platform/linux/fileSystem.h"

#include <array>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool IsUnlocked(int descriptor)
{
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

// Gives a name without taking one, for disks that cannot do that in one step.
bool RenameByLink(const std::string& from, const std::string& to)
{
    if (link(from.c_str(), to.c_str()) == 0)
        return unlink(from.c_str()) == 0;
    if (errno != EPERM && errno != EOPNOTSUPP)
        return false;
    // A disk without links. An empty file of our own keeps the name until it is replaced.
    const fileDescriptor kept = fileOpenDescriptor(to, O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (!kept.IsOpen())
        return false;
    if (rename(from.c_str(), to.c_str()) == 0)
        return true;
    unlink(to.c_str());
    return false;
}

bool CopyBytes(int descriptor, int source)
{
    std::array<char, 65536> part;
    if (lseek(source, 0, SEEK_SET) != 0)
        return false;
    for (;;) {
        const ssize_t got = read(source, part.data(), part.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return got == 0;
        if (!fileWriteAll(descriptor, part.data(), static_cast<size_t>(got)))
            return false;
    }
}

}  // namespace

bool fileExists(const std::u16string& path)
{
    struct stat state = {};
    const std::optional<std::string> known = fileSystemPath(path);
    return known && lstat(known->c_str(), &state) == 0;
}

std::optional<uint64_t> fileSizeOf(const std::u16string& path)
{
    struct stat state = {};
    const std::optional<std::string> known = fileSystemPath(path);
    if (!known || stat(known->c_str(), &state) != 0 || !S_ISREG(state.st_mode))
        return std::nullopt;
    return static_cast<uint64_t>(state.st_size);
}

bool fileRemove(const std::u16string& path)
{
    const std::optional<std::string> known = fileSystemPath(path);
    if (!known)
        return false;
    // The lock is held until the name is gone, so nobody opens the file in between. What cannot be opened, a
    // link among others, is in nobody's use through this interface.
    const fileDescriptor file = fileOpenDescriptor(*known, O_RDONLY | O_NOFOLLOW);
    if (file.IsOpen() && (!IsUnlocked(file.Get()) || !fileIsNamed(file.Get(), *known)))
        return false;
    return unlink(known->c_str()) == 0;
}

bool fileRename(const std::u16string& from, const std::u16string& to)
{
    const std::optional<std::string> knownFrom = fileSystemPath(from);
    const std::optional<std::string> knownTo = fileSystemPath(to);
    if (!knownFrom || !knownTo)
        return false;
    if (renameat2(AT_FDCWD, knownFrom->c_str(), AT_FDCWD, knownTo->c_str(), RENAME_NOREPLACE) == 0)
        return true;
    return (errno == EINVAL || errno == ENOSYS) && RenameByLink(*knownFrom, *knownTo);
}

bool fileCopy(const std::u16string& from, const std::u16string& to)
{
    const std::optional<std::string> knownFrom = fileSystemPath(from);
    const std::optional<std::string> knownTo = fileSystemPath(to);
    fileDescriptor source;
    struct stat state = {};
    if (!knownFrom || !knownTo || fileOpenAt(*knownFrom, {}, source) != fileStatus::Ok ||
        fstat(source.Get(), &state) != 0 || !S_ISREG(state.st_mode))
        return false;
    // The copy of a private file is private, and nobody opens it before it is whole.
    const fileAccess access = {.Write = true, .Exclusive = true};
    fileDescriptor target;
    return fileCreateAt(*knownTo, access, state.st_mode & 0777, CopyBytes, source.Get(), target) ==
           fileStatus::Ok;
}

bool fileMakeFolder(const std::u16string& path)
{
    const std::optional<std::string> known = fileSystemPath(path);
    return known && mkdir(known->c_str(), 0777) == 0;
}

size_t fileRootLength(std::u16string_view path)
{
    const size_t name = path.find_first_not_of(u'/');
    return name == std::u16string_view::npos ? path.size() : name;
}

bool fileIsSeparator(char16_t unit)
{
    return unit == u'/';
}
