#include "platform/file.h"

#include "platform/linux/fileSystem.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// The functions on an open file. Its handle is the system's descriptor.

namespace {

constexpr uint64_t LastOffset = static_cast<uint64_t>(std::numeric_limits<off_t>::max());

int DescriptorOf(fileHandle handle)
{
    return static_cast<int>(handle);
}

bool CanWrite(fileHandle handle)
{
    const int flags = fcntl(DescriptorOf(handle), F_GETFL);
    return flags >= 0 && (flags & O_ACCMODE) != O_RDONLY;
}

struct flock Range(int type, uint64_t offset, uint64_t length)
{
    struct flock range = {};
    range.l_type = static_cast<short>(type);
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<off_t>(offset);
    // No length at all stands for everything from the offset on.
    range.l_len = length > LastOffset - offset ? 0 : static_cast<off_t>(length);
    return range;
}

}  // namespace

void fileClose(fileHandle handle)
{
    fileDescriptor(DescriptorOf(handle)).Close();
}

bool fileLockRange(fileHandle handle, uint64_t offset, uint64_t length, bool wait)
{
    if (offset > LastOffset)
        return false;
    if (length == 0)
        return true;
    struct flock range = Range(CanWrite(handle) ? F_WRLCK : F_RDLCK, offset, length);
    int result = -1;
    do
        result = fcntl(DescriptorOf(handle), wait ? F_OFD_SETLKW : F_OFD_SETLK, &range);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

void fileUnlockRange(fileHandle handle, uint64_t offset, uint64_t length)
{
    if (offset > LastOffset || length == 0)
        return;
    struct flock range = Range(F_UNLCK, offset, length);
    fcntl(DescriptorOf(handle), F_OFD_SETLK, &range);
}

std::optional<uint64_t> fileSize(fileHandle handle)
{
    struct stat state = {};
    if (fstat(DescriptorOf(handle), &state) != 0)
        return std::nullopt;
    return static_cast<uint64_t>(state.st_size);
}

fileStatus fileRead(fileHandle handle, uint64_t offset, void* buffer, uint32_t count, uint32_t& done)
{
    done = 0;
    if (offset > LastOffset - count)
        return fileStatus::Failed;
    char* const target = static_cast<char*>(buffer);
    uint32_t read = 0;
    while (read < count) {
        const off_t from = static_cast<off_t>(offset + read);
        const ssize_t got = pread(DescriptorOf(handle), target + read, count - read, from);
        if (got < 0 && errno == EINTR)
            continue;
        // Behind an end that is no multiple of the sector, an unbuffered file cannot be asked for more.
        if (got == 0 || (got < 0 && errno == EINVAL && read > 0))
            break;
        if (got < 0)
            return fileStatusOf(errno);
        read += static_cast<uint32_t>(got);
    }
    done = read;
    return fileStatus::Ok;
}

fileStatus fileWrite(fileHandle handle, uint64_t offset, const void* data, uint32_t count, uint32_t& done)
{
    done = 0;
    if (offset > LastOffset - count)
        return fileStatus::Failed;
    const char* const source = static_cast<const char*>(data);
    while (done < count) {
        const off_t to = static_cast<off_t>(offset + done);
        const ssize_t put = pwrite(DescriptorOf(handle), source + done, count - done, to);
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0)
            return done > 0 ? fileStatus::Ok : fileStatusOf(errno);
        if (put == 0)
            break;
        done += static_cast<uint32_t>(put);
    }
    return fileStatus::Ok;
}

bool fileSetSize(fileHandle handle, uint64_t size)
{
    if (size > LastOffset)
        return false;
    int result = -1;
    do
        result = ftruncate(DescriptorOf(handle), static_cast<off_t>(size));
    while (result != 0 && errno == EINTR);
    return result == 0;
}
