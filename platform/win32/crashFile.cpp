#include "platform/crash.h"

#include <algorithm>
#include <windows.h>

namespace {

// The system counts in 32 bits.
constexpr size_t mostAtOnce = 1u << 30;

static_assert(sizeof(HANDLE) == sizeof(intptr_t));

HANDLE systemFile(intptr_t file)
{
    return reinterpret_cast<HANDLE>(file);
}

intptr_t open(const char* path, DWORD access, DWORD sharing, DWORD disposition)
{
    const HANDLE file =
        CreateFileA(path, access, sharing, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    return file == INVALID_HANDLE_VALUE ? crashNoFile : reinterpret_cast<intptr_t>(file);
}

}  // namespace

intptr_t crashFileCreate(const char* path)
{
    return open(path, GENERIC_ALL, 0, CREATE_ALWAYS);
}

bool crashFileWrite(intptr_t file, const char* bytes, size_t count)
{
    while (count > 0) {
        const DWORD wanted = static_cast<DWORD>(std::min(count, mostAtOnce));
        DWORD done = 0;
        if (WriteFile(systemFile(file), bytes, wanted, &done, nullptr) == FALSE || done == 0)
            return false;
        bytes += done;
        count -= done;
    }
    return true;
}

intptr_t crashFileOpen(const char* path)
{
    return open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
}

size_t crashFileRead(intptr_t file, char* target, size_t room)
{
    DWORD done = 0;
    if (ReadFile(systemFile(file), target, static_cast<DWORD>(std::min(room, mostAtOnce)), &done, nullptr) ==
        FALSE)
        return 0;
    return done;
}

void crashFileClose(intptr_t file)
{
    CloseHandle(systemFile(file));
}
