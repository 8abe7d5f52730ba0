// A store of typed values under named keys, one for each user, that outlives the program.
//
// Paths and names are UTF-8; the parts of a path are separated by backslashes, and a path has no backslash at
// either end. ASCII letters of paths and names are the same in either case; which case is kept is that of the
// first write. Every change is complete or not made at all, whenever the process ends; changes of several
// processes do not mix within one value. Any thread, though one handle serves one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

struct registryKey;

// The numbers are those that Windows publishes for its registry; values of other types keep theirs.
enum class registryType : uint32_t {
    Text = 1,    // UTF-16, little-endian, normally with its terminating zero
    Binary = 3,  // any bytes
    Dword = 4,   // 32 bits, little-endian
    Qword = 11,  // 64 bits, little-endian
};

enum class registryStatus : uint8_t {
    Ok,
    MoreData,  // the value is there and does not fit
    Failed,    // no such value, no right to read it, or the store cannot be read
};

// Opens an existing key of the current user for reading only. Null when there is none.
registryKey* registryOpen(const std::string& path);

// Opens a key of the current user for writing only, and makes it and its parents if they are missing. Null
// when that cannot be done.
registryKey* registryCreate(const std::string& path);

// Ends a handle; null is allowed.
void registryClose(registryKey* key);

// Reads a value. On entry `size` is the room in `buffer` in bytes; on return it is the value's size. With a
// null buffer nothing is copied and the status is Ok if the value exists. A handle opened for writing cannot
// read.
registryStatus registryQuery(registryKey* key, const std::string& name, registryType& type, void* buffer,
                             uint32_t& size);

// Writes a value, replacing one of any type. False when it could not be stored or the handle only reads.
bool registrySet(registryKey* key, const std::string& name, registryType type, const void* data,
                 uint32_t size);

// Removes a value. False when there was none or the handle only reads.
bool registryDelete(registryKey* key, const std::string& name);

// Removes the key at `path` with its values and all keys below it. False when there was none.
bool registryDeleteTree(const std::string& path);

// Where a person finds the store: a file's path on Linux, the name of the hive on Windows. UTF-8.
std::string registryPlace();
