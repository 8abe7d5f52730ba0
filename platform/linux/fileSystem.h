// What the functions on files and the settings' store share: descriptors that close themselves, paths in the
// system's own form, and the system's errors in our words.
#pragma once

#include "platform/file.h"

#include <optional>
#include <string>

#include <sys/types.h>

// An open file, closed at the end of its block unless released.
class fileDescriptor
{
public:
    explicit fileDescriptor(int value = -1) : Value(value) {}
    ~fileDescriptor() { Close(); }
    fileDescriptor(fileDescriptor&& other) noexcept : Value(other.Release()) {}
    fileDescriptor& operator=(fileDescriptor&& other) noexcept;
    fileDescriptor(const fileDescriptor&) = delete;
    fileDescriptor& operator=(const fileDescriptor&) = delete;

    bool IsOpen() const { return Value >= 0; }
    int Get() const { return Value; }
    int Release();

    // Ends the locks held through the file as well, also when a program that is just being started still
    // holds a copy of the descriptor.
    void Close();

private:
    int Value;
};

// Opens without ever blocking on a pipe or taking a terminal, out of reach of started programs and apart from
// the standard streams; `errno` tells why nothing is open.
fileDescriptor fileOpenDescriptor(const std::string& path, int flags, mode_t mode = 0);

// The path as the system takes it; nothing when it has no such form: a surrogate without its partner, or a
// NUL.
std::optional<std::string> fileSystemPath(const std::u16string& path);

// The folder that holds what the path names.
std::string fileFolderOf(const std::string& path);

fileStatus fileStatusOf(int error);

// Writes all bytes where the file stands, or gives false with `errno`.
bool fileWriteAll(int descriptor, const char* bytes, size_t count);

// Whether the path leads to this very file at this moment.
bool fileIsNamed(int descriptor, const std::string& path);

// Opens as fileOpen does.
fileStatus fileOpenAt(const std::string& path, const fileAccess& access, fileDescriptor& file);

// Makes a new file and lets `fill` write it before anybody can see it under its name, where the disk can do
// that. False from `fill`, and no file is left. `fill` may be called twice, each time with an empty file.
using fileFill = bool (*)(int descriptor, int source);
fileStatus fileCreateAt(const std::string& path, const fileAccess& access, mode_t mode, fileFill fill,
                        int source, fileDescriptor& file);
