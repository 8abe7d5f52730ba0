// Files by handle and by name. A path is UTF-16 and may use every separator that the system knows.
//
// All functions may be called from any thread and may block as long as the disk does; two threads do not use
// one handle at the same time unless noted. No function keeps a position: reads and writes name their offset.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

using fileHandle = intptr_t;

constexpr fileHandle fileNone = -1;

enum class fileStatus : uint8_t {
    Ok,
    Missing,   // no such file, or no such folder on the way to it
    Exists,    // a file to be made is there already
    Sharing,   // another handle, of this or another process, keeps this one out for now
    DiskFull,  // no room on the disk
    NoMemory,  // the system is out of memory for the request
    NoQuota,   // the user's share of the disk or of memory is used up
    Failed,    // anything else: no rights, a folder in a file's place, a broken disk
};

struct fileAccess {
    bool Write = false;       // reading is always allowed
    bool Exclusive = false;   // no other handle at all; without it others may read and write
    bool Unbuffered = false;  // past the system's cache, if the disk can; offsets, counts and memory must
                              // then be multiples of the sector size
};

// Opens an existing file. `handle` is set only with Ok. On Linux the exclusion holds among programs that open
// through this header; others are not kept out.
fileStatus fileOpen(const std::u16string& path, const fileAccess& access, fileHandle& handle);

// Makes a new, empty file and opens it; Exists when something bears that name.
fileStatus fileCreate(const std::u16string& path, const fileAccess& access, fileHandle& handle);

// Ends a handle and every lock held through it. Threads inside other calls on it must have left.
void fileClose(fileHandle handle);

// Locks a range of bytes against the locks of other handles, also past the end of the file. With `wait` it
// blocks until the range is free; without, false when it is not. On a handle without Write the lock keeps out
// writers' locks only, where the system knows no other (Linux).
bool fileLockRange(fileHandle handle, uint64_t offset, uint64_t length, bool wait);

// Ends a lock of exactly that range.
void fileUnlockRange(fileHandle handle, uint64_t offset, uint64_t length);

// The size in bytes; nothing when it cannot be read.
std::optional<uint64_t> fileSize(fileHandle handle);

// Reads up to `count` bytes at `offset`; `done` is how many came, fewer at the end of the file, 0 on failure.
fileStatus fileRead(fileHandle handle, uint64_t offset, void* buffer, uint32_t count, uint32_t& done);

// Writes `count` bytes at `offset`; `done` is how many were taken, which a full disk may leave short with Ok.
// A gap before `offset` reads as zeros.
fileStatus fileWrite(fileHandle handle, uint64_t offset, const void* data, uint32_t count, uint32_t& done);

// Cuts or extends the file to `size`.
bool fileSetSize(fileHandle handle, uint64_t size);

// Whether something, a file or a folder, bears that name.
bool fileExists(const std::u16string& path);

// The size of the file of that name; nothing when there is none or it cannot be told.
std::optional<uint64_t> fileSizeOf(const std::u16string& path);

// Removes a file, not a folder. False when it is missing, in use, or may not be removed.
bool fileRemove(const std::u16string& path);

// Gives a file another name on the same disk; false, with nothing changed, when the new name is taken.
bool fileRename(const std::u16string& from, const std::u16string& to);

// Copies a file's content to a new file; false when the new name is taken. A copy that fails midway leaves no
// file.
bool fileCopy(const std::u16string& from, const std::u16string& to);

// Makes one folder; its parent must exist. False also when it is there already.
bool fileMakeFolder(const std::u16string& path);

// How much of a path is its root, which no one can make: "C:\", "\\server\share\", "/", or nothing.
size_t fileRootLength(std::u16string_view path);

// Whether this unit separates the names in a path.
bool fileIsSeparator(char16_t unit);
