#include "platform/file.h"

#include "platform/win32/fileStatus.h"
#include "platform/win32/path.h"
#include "platform/win32/text.h"

#include <limits>
#include <vector>
#include <windows.h>

namespace {

// Beyond this an offset would take on a meaning of its own, such as "at the end".
constexpr uint64_t largestOffset = std::numeric_limits<int64_t>::max();

HANDLE systemFile(fileHandle handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

fileHandle ourFile(HANDLE file)
{
    return reinterpret_cast<fileHandle>(file);
}

// Names such as "NUL" and "COM1" open devices, which have neither a size nor offsets.
bool isOnDisk(HANDLE file)
{
    return GetFileType(file) == FILE_TYPE_DISK;
}

fileStatus openFile(const std::u16string& path, const fileAccess& access, DWORD disposition,
                    fileHandle& handle)
{
    const std::optional<std::u16string> name = pathForSystem(path);
    if (!name)
        return fileStatus::Missing;
    const DWORD rights = access.Write ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ;
    // Removing a file that someone has open is kept out in either case.
    const DWORD share = access.Exclusive ? 0 : FILE_SHARE_READ | FILE_SHARE_WRITE;
    const DWORD flags = access.Unbuffered ? FILE_FLAG_NO_BUFFERING : FILE_ATTRIBUTE_NORMAL;
    const HANDLE file = CreateFileW(textUnits(*name), rights, share, nullptr, disposition, flags, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return fileStatusOf(GetLastError());
    if (!isOnDisk(file)) {
        CloseHandle(file);
        return fileStatus::Failed;
    }
    handle = ourFile(file);
    return fileStatus::Ok;
}

DWORD lowHalf(uint64_t value)
{
    return static_cast<DWORD>(value);
}

DWORD highHalf(uint64_t value)
{
    return static_cast<DWORD>(value >> 32);
}

OVERLAPPED position(uint64_t offset)
{
    OVERLAPPED where = {};
    where.Offset = lowHalf(offset);
    where.OffsetHigh = highHalf(offset);
    return where;
}

std::optional<WIN32_FILE_ATTRIBUTE_DATA> attributesOf(const std::u16string& path)
{
    const std::optional<std::u16string> name = pathForSystem(path);
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!name || GetFileAttributesExW(textUnits(*name), GetFileExInfoStandard, &data) == FALSE)
        return std::nullopt;
    return data;
}

}  // namespace

fileStatus fileOpen(const std::u16string& path, const fileAccess& access, fileHandle& handle)
{
    return openFile(path, access, OPEN_EXISTING, handle);
}

fileStatus fileCreate(const std::u16string& path, const fileAccess& access, fileHandle& handle)
{
    return openFile(path, access, CREATE_NEW, handle);
}

void fileClose(fileHandle handle)
{
    CloseHandle(systemFile(handle));
}

bool fileLockRange(fileHandle handle, uint64_t offset, uint64_t length, bool wait)
{
    OVERLAPPED where = position(offset);
    const DWORD flags = LOCKFILE_EXCLUSIVE_LOCK | (wait ? 0 : LOCKFILE_FAIL_IMMEDIATELY);
    return LockFileEx(systemFile(handle), flags, 0, lowHalf(length), highHalf(length), &where) != FALSE;
}

void fileUnlockRange(fileHandle handle, uint64_t offset, uint64_t length)
{
    OVERLAPPED where = position(offset);
    UnlockFileEx(systemFile(handle), 0, lowHalf(length), highHalf(length), &where);
}

std::optional<uint64_t> fileSize(fileHandle handle)
{
    LARGE_INTEGER size;
    if (GetFileSizeEx(systemFile(handle), &size) == FALSE)
        return std::nullopt;
    return static_cast<uint64_t>(size.QuadPart);
}

fileStatus fileRead(fileHandle handle, uint64_t offset, void* buffer, uint32_t count, uint32_t& done)
{
    done = 0;
    if (offset > largestOffset)
        return fileStatus::Failed;
    OVERLAPPED where = position(offset);
    DWORD taken = 0;
    if (ReadFile(systemFile(handle), buffer, count, &taken, &where) == FALSE) {
        const DWORD error = GetLastError();
        return error == ERROR_HANDLE_EOF ? fileStatus::Ok : fileStatusOf(error);
    }
    done = taken;
    return fileStatus::Ok;
}

fileStatus fileWrite(fileHandle handle, uint64_t offset, const void* data, uint32_t count, uint32_t& done)
{
    done = 0;
    if (offset > largestOffset)
        return fileStatus::Failed;
    OVERLAPPED where = position(offset);
    DWORD taken = 0;
    if (WriteFile(systemFile(handle), data, count, &taken, &where) == FALSE)
        return fileStatusOf(GetLastError());
    done = taken;
    return fileStatus::Ok;
}

bool fileSetSize(fileHandle handle, uint64_t size)
{
    if (size > largestOffset)
        return false;
    FILE_END_OF_FILE_INFO end;
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    return SetFileInformationByHandle(systemFile(handle), FileEndOfFileInfo, &end, sizeof end) != FALSE;
}

bool fileExists(const std::u16string& path)
{
    return attributesOf(path).has_value();
}

std::optional<uint64_t> fileSizeOf(const std::u16string& path)
{
    const std::optional<WIN32_FILE_ATTRIBUTE_DATA> data = attributesOf(path);
    if (!data || (data->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return std::nullopt;
    return static_cast<uint64_t>(data->nFileSizeHigh) << 32 | data->nFileSizeLow;
}

bool fileRemove(const std::u16string& path)
{
    const std::optional<std::u16string> name = pathForSystem(path);
    return name && DeleteFileW(textUnits(*name)) != FALSE;
}

bool fileRename(const std::u16string& from, const std::u16string& to)
{
    const std::optional<std::u16string> oldName = pathForSystem(from);
    const std::optional<std::u16string> newName = pathForSystem(to);
    // The system calls it a success when a file is to take the name that it has.
    if (!oldName || !newName || *oldName == *newName)
        return false;
    // Without flags, because the plain call copies when the new name is on another disk.
    return MoveFileExW(textUnits(*oldName), textUnits(*newName), 0) != FALSE;
}

bool fileMakeFolder(const std::u16string& path)
{
    const std::optional<std::u16string> name = pathForSystem(path);
    return name && CreateDirectoryW(textUnits(*name), nullptr) != FALSE;
}
