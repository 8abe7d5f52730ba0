#include "platform/linux/fileSystem.h"

#include "foundations/text/utfConvert.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

fileDescriptor& fileDescriptor::operator=(fileDescriptor&& other) noexcept
{
    std::swap(Value, other.Value);
    return *this;
}

int fileDescriptor::Release()
{
    return std::exchange(Value, -1);
}

void fileDescriptor::Close()
{
    if (!IsOpen())
        return;
    struct flock whole = {};
    whole.l_type = F_UNLCK;
    whole.l_whence = SEEK_SET;
    fcntl(Value, F_OFD_SETLK, &whole);
    flock(Value, LOCK_UN);
    close(Release());
}

fileDescriptor fileOpenDescriptor(const std::string& path, int flags, mode_t mode)
{
    int opened = -1;
    do
        opened = open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, mode);
    while (opened < 0 && errno == EINTR);
    // A program started without its standard streams would write its messages into this file.
    if (opened >= 0 && opened <= STDERR_FILENO) {
        const int moved = fcntl(opened, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        const int error = errno;
        close(opened);
        errno = error;
        opened = moved;
    }
    return fileDescriptor(opened);
}

std::optional<std::string> fileSystemPath(const std::u16string& path)
{
    // The conversion ends at the first unit that it cannot take, and the rest of a path must not be lost.
    for (size_t i = 0; i < path.size(); i++) {
        const char16_t unit = path[i];
        const bool isHigh = unit >= 0xD800 && unit <= 0xDBFF;
        const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
        if (unit == 0 || isLow)
            return std::nullopt;
        if (!isHigh)
            continue;
        i++;
        if (i == path.size() || path[i] < 0xDC00 || path[i] > 0xDFFF)
            return std::nullopt;
    }
    std::string result;
    utfAppend8From16(result, path.data(), path.size());
    return result;
}

std::string fileFolderOf(const std::string& path)
{
    const size_t last = path.rfind('/');
    if (last == std::string::npos)
        return ".";
    return last == 0 ? "/" : path.substr(0, last);
}

fileStatus fileStatusOf(int error)
{
    switch (error) {
    case 0:
        return fileStatus::Ok;
    case ENOENT:
    case ENOTDIR:
        return fileStatus::Missing;
    case EEXIST:
        return fileStatus::Exists;
    case EWOULDBLOCK:
        return fileStatus::Sharing;
    // No disk takes a file of that size.
    case EFBIG:
    case ENOSPC:
        return fileStatus::DiskFull;
    case ENOMEM:
        return fileStatus::NoMemory;
    case EDQUOT:
        return fileStatus::NoQuota;
    default:
        return fileStatus::Failed;
    }
}

bool fileWriteAll(int descriptor, const char* bytes, size_t count)
{
    while (count > 0) {
        const ssize_t put = write(descriptor, bytes, count);
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        bytes += put;
        count -= static_cast<size_t>(put);
    }
    return true;
}

bool fileIsNamed(int descriptor, const std::string& path)
{
    struct stat opened = {};
    struct stat named = {};
    return fstat(descriptor, &opened) == 0 && stat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}
