// Opening and making files. Exclusion, which the system has not, is a lock on the file as a whole: an
// exclusive one for who wants to be alone, a shared one for everybody else.
#include "platform/linux/fileSystem.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int Flags(const fileAccess& access)
{
    return (access.Write ? O_RDWR : O_RDONLY) | (access.Unbuffered ? O_DIRECT : 0);
}

// Opens past the system's cache if asked to and if the disk can.
fileDescriptor OpenOnDisk(const std::string& path, int flags, mode_t mode)
{
    fileDescriptor file = fileOpenDescriptor(path, flags, mode);
    if (!file.IsOpen() && errno == EINVAL && (flags & O_DIRECT) != 0)
        return fileOpenDescriptor(path, flags & ~O_DIRECT, mode);
    return file;
}

// Whether this is something whose bytes have places, unlike a folder or a pipe.
bool HoldsBytes(int descriptor)
{
    struct stat state = {};
    return fstat(descriptor, &state) == 0 &&
           (S_ISREG(state.st_mode) || S_ISCHR(state.st_mode) || S_ISBLK(state.st_mode));
}

fileStatus Exclude(int descriptor, bool exclusive)
{
    const int lock = (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB;
    while (flock(descriptor, lock) != 0) {
        if (errno != EINTR)
            return fileStatusOf(errno);
    }
    return fileStatus::Ok;
}

struct newFile {
    const std::string& Path;
    const fileAccess& Access;
    mode_t Mode;
    fileFill Fill;
    int Source;
};

// Locks and fills a file that was just made.
fileStatus Prepare(const newFile& wanted, const fileDescriptor& file)
{
    const fileStatus status = Exclude(file.Get(), wanted.Access.Exclusive);
    if (status != fileStatus::Ok)
        return status;
    const bool filled = wanted.Fill == nullptr || wanted.Fill(file.Get(), wanted.Source);
    return filled ? fileStatus::Ok : fileStatus::Failed;
}

// Gives a file that was made without a name its own, which must be free.
bool GiveName(const fileDescriptor& file, const std::string& path)
{
    const std::string unnamed = "/proc/self/fd/" + std::to_string(file.Get());
    return linkat(AT_FDCWD, unnamed.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

// A file that gets its name last is never seen unlocked or half written, even if the process ends in between.
// False where the disk knows no such files; nothing is left then.
bool CreateUnnamed(const newFile& wanted, fileDescriptor& file, fileStatus& status)
{
    fileDescriptor made =
        OpenOnDisk(fileFolderOf(wanted.Path), O_TMPFILE | Flags(wanted.Access), wanted.Mode);
    if (!made.IsOpen())
        return false;
    status = Prepare(wanted, made);
    if (status != fileStatus::Ok)
        return true;
    if (!GiveName(made, wanted.Path)) {
        status = fileStatus::Exists;
        return errno == EEXIST;
    }
    file = std::move(made);
    return true;
}

fileStatus CreateNamed(const newFile& wanted, fileDescriptor& file)
{
    fileDescriptor made = OpenOnDisk(wanted.Path, O_CREAT | O_EXCL | Flags(wanted.Access), wanted.Mode);
    if (!made.IsOpen())
        return fileStatusOf(errno);
    const fileStatus status = Prepare(wanted, made);
    // Who came in between the making and the lock holds a whole, empty file; one half filled is of no use.
    if (status == fileStatus::Failed)
        unlink(wanted.Path.c_str());
    if (status == fileStatus::Ok)
        file = std::move(made);
    return status;
}

}  // namespace

fileStatus fileOpenAt(const std::string& path, const fileAccess& access, fileDescriptor& file)
{
    // Between opening and locking, the file may be replaced or removed by whoever held it before.
    constexpr int Attempts = 100;
    for (int attempt = 0; attempt < Attempts; attempt++) {
        fileDescriptor opened = OpenOnDisk(path, Flags(access), 0);
        if (!opened.IsOpen())
            return fileStatusOf(errno);
        if (!HoldsBytes(opened.Get()))
            return fileStatus::Failed;
        const fileStatus status = Exclude(opened.Get(), access.Exclusive);
        if (status != fileStatus::Ok)
            return status;
        if (fileIsNamed(opened.Get(), path)) {
            file = std::move(opened);
            return fileStatus::Ok;
        }
    }
    return fileStatus::Sharing;
}

fileStatus fileCreateAt(const std::string& path, const fileAccess& access, mode_t mode, fileFill fill,
                        int source, fileDescriptor& file)
{
    struct stat state = {};
    if (lstat(path.c_str(), &state) == 0)
        return fileStatus::Exists;
    const newFile wanted = {path, access, mode, fill, source};
    fileStatus status = fileStatus::Failed;
    // The system makes no such file for reading alone.
    if (access.Write && CreateUnnamed(wanted, file, status))
        return status;
    return CreateNamed(wanted, file);
}

fileStatus fileOpen(const std::u16string& path, const fileAccess& access, fileHandle& handle)
{
    const std::optional<std::string> known = fileSystemPath(path);
    if (!known)
        return fileStatus::Missing;
    fileDescriptor file;
    const fileStatus status = fileOpenAt(*known, access, file);
    if (status == fileStatus::Ok)
        handle = file.Release();
    return status;
}

fileStatus fileCreate(const std::u16string& path, const fileAccess& access, fileHandle& handle)
{
    constexpr mode_t ByUserMask = 0666;
    const std::optional<std::string> known = fileSystemPath(path);
    if (!known)
        return fileStatus::Failed;
    fileDescriptor file;
    const fileStatus status = fileCreateAt(*known, access, ByUserMask, nullptr, -1, file);
    if (status == fileStatus::Ok)
        handle = file.Release();
    return status;
}
