#include "foundations/file/fileLocked.h"

#include "platform/thread.h"

#include <algorithm>

namespace {

constexpr uint32_t RetryMs = 20;
constexpr uint64_t LockOffset = 0;
constexpr uint64_t LockLength = 100;
constexpr uint64_t LongestChunk = 0x7FFFFFFF;

// A mode as far as it makes sense: what is read only is not created, and only an exclusive file is waited
// for.
uint32_t sensible(uint32_t mode)
{
    if (mode & fileLocked::ReadOnly)
        mode &= ~uint32_t{fileLocked::Create};
    if (!(mode & fileLocked::Exclusive))
        mode &= ~uint32_t{fileLocked::Wait};
    return mode & ~uint32_t{fileLocked::IsOpen | fileLocked::Existed};
}

uint64_t moved(uint64_t base, int64_t offset)
{
    if (offset < 0) {
        const uint64_t back = 0 - static_cast<uint64_t>(offset);
        return back > base ? 0 : base - back;
    }
    const uint64_t ahead = static_cast<uint64_t>(offset);
    return ahead > UINT64_MAX - base ? UINT64_MAX : base + ahead;
}

}  // namespace

fileLocked::fileLocked(const std::u16string& path, uint32_t mode) : State(sensible(mode)), Path(path)
{
    Open();
    if (!Has(IsOpen))
        return;
    // A lock that cannot be had is no reason to refuse the file: its exclusion holds all the same.
    if (Has(Exclusive))
        fileLockRange(Handle, LockOffset, LockLength, Has(Wait));
    Size = fileSize(Handle).value_or(0);
    if (Has(Background))
        StartWriter();
    if (Has(Append))
        WritePos = Size.load();
}

fileLocked::~fileLocked()
{
    State |= StopRequested;
    Wake.Wake();
    if (Writer.joinable())
        Writer.join();
    if (Handle == fileNone)
        return;
    if (Has(Exclusive))
        fileUnlockRange(Handle, LockOffset, LockLength);
    fileClose(Handle);
}

void fileLocked::Open()
{
    const fileAccess access{
        .Write = !Has(ReadOnly), .Exclusive = Has(Exclusive), .Unbuffered = Has(Unbuffered)};
    fileStatus status = OpenExisting(access);
    if (status == fileStatus::Ok || !Has(Create))
        return;
    MakeFolders();
    // Someone else may have made the file in the meantime: then it exists, and is waited for like any other.
    if (MakeFile(access) == fileStatus::Exists && status == fileStatus::Missing)
        OpenExisting(access);
}

fileStatus fileLocked::OpenExisting(const fileAccess& access)
{
    fileStatus status = fileOpen(Path, access, Handle);
    while (status == fileStatus::Sharing && Has(Exclusive | Wait)) {
        threadSleep(RetryMs);
        status = fileOpen(Path, access, Handle);
    }
    if (status == fileStatus::Ok)
        State |= IsOpen | Existed;
    return status;
}

fileStatus fileLocked::MakeFile(const fileAccess& access)
{
    const fileStatus status = fileCreate(Path, access, Handle);
    if (status == fileStatus::Ok)
        State |= IsOpen;
    return status;
}

void fileLocked::MakeFolders() const
{
    // Most of the folders exist, so a failure says nothing: what is missing shows when the file is made.
    for (size_t end = fileRootLength(Path); end < Path.size(); ++end) {
        if (fileIsSeparator(Path[end]))
            fileMakeFolder(Path.substr(0, end));
    }
}

uint64_t fileLocked::Read(void* buffer, uint64_t count)
{
    if (!Has(IsOpen) || count == 0)
        return 0;
    uint64_t total = 0;
    {
        const thrSpinHold ordered(ReadLock);
        AwaitQueue();
        while (total < count) {
            const uint32_t wanted = static_cast<uint32_t>(std::min(count - total, LongestChunk));
            const uint32_t done = ReadChunk(static_cast<char*>(buffer) + total, wanted);
            total += done;
            if (done < wanted)
                break;
        }
    }
    Wake.Wake();
    return total;
}

uint32_t fileLocked::ReadChunk(void* buffer, uint32_t count)
{
    const thrSpinHold hold(IoLock);
    uint32_t done = 0;
    fileRead(Handle, ReadPos, buffer, count, done);
    ReadPos += done;
    RaiseSize(ReadPos);
    return done;
}

uint64_t fileLocked::Write(const void* data, uint64_t count)
{
    uint64_t total = 0;
    while (total < count && Has(IsOpen) && !Has(ReadOnly)) {
        const uint32_t wanted = static_cast<uint32_t>(std::min(count - total, LongestChunk));
        const uint64_t done = WriteChunk(static_cast<const char*>(data) + total, wanted);
        total += done;
        if (done < wanted)
            break;
    }
    return total;
}

uint64_t fileLocked::WriteString(const std::string& text)
{
    return Write(text.data(), text.size());
}

uint64_t fileLocked::WriteChunk(const void* data, uint32_t count)
{
    return Writer.joinable() ? Enqueue(data, count) : WriteAt(WritePos, data, count, true);
}

uint64_t fileLocked::WriteAt(uint64_t offset, const void* data, uint32_t count, bool atWritePosition)
{
    if (!Has(IsOpen))
        return 0;
    uint32_t done = 0;
    fileStatus status = fileStatus::Ok;
    {
        const thrSpinHold hold(IoLock);
        status = fileWrite(Handle, offset, data, count, done);
        const bool full = status == fileStatus::Ok && done == count;
        if (full && atWritePosition) {
            WritePos = offset + count;
            RaiseSize(WritePos);
        }
    }
    WriteDone(status, done == count);
    return done;
}

// Keeps the verdict on a write and tells of a failure, with no lock held.
void fileLocked::WriteDone(fileStatus status, bool full)
{
    if (status == fileStatus::Ok && full)
        return;
    switch (status) {
    case fileStatus::DiskFull:
    case fileStatus::NoMemory:
    case fileStatus::NoQuota:
        State |= ReadOnly | DiskRefused;
        break;
    case fileStatus::Ok:
        State |= DiskRefused;
        break;
    default:
        break;
    }
    State |= WriteFailed;
    if (OnError)
        OnError();
}

bool fileLocked::Seek(int64_t offset, Origin origin)
{
    if (!Has(IsOpen))
        return false;
    uint64_t base = 0;
    if (origin == Origin::WritePosition)
        base = WritePos;
    else if (origin == Origin::End)
        base = Size;
    WritePos = std::min(moved(base, offset), Size.load());
    return true;
}

bool fileLocked::SetEnd()
{
    if (!Has(IsOpen))
        return false;
    const thrSpinHold ordered(ReadLock);
    AwaitQueue();
    const thrSpinHold hold(IoLock);
    const uint64_t end = WritePos;
    if (!fileSetSize(Handle, end))
        return false;
    Size = end;
    ReadPos = std::min(ReadPos.load(), end);
    return true;
}

void fileLocked::RaiseSize(uint64_t end)
{
    uint64_t size = Size;
    while (size < end && !Size.compare_exchange_weak(size, end)) {
    }
}
