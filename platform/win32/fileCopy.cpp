#include "platform/file.h"

#include "platform/win32/path.h"
#include "platform/win32/text.h"

#include <memory>
#include <windows.h>

namespace {

constexpr uint32_t pieceBytes = 1 << 18;

bool copyContent(HANDLE from, HANDLE to)
{
    const std::unique_ptr<char[]> piece = std::make_unique_for_overwrite<char[]>(pieceBytes);
    while (true) {
        DWORD taken = 0;
        if (ReadFile(from, piece.get(), pieceBytes, &taken, nullptr) == FALSE)
            return false;
        if (taken == 0)
            return true;
        DWORD done = 0;
        if (WriteFile(to, piece.get(), taken, &done, nullptr) == FALSE || done != taken)
            return false;
    }
}

// Removes the file through the handle that made it: by its name it might be another one by now.
void removeOnClose(HANDLE file)
{
    FILE_DISPOSITION_INFO disposition = {TRUE};
    SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition);
}

bool copyToNew(HANDLE from, const std::u16string& target)
{
    const HANDLE to = CreateFileW(textUnits(target), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
    if (to == INVALID_HANDLE_VALUE)
        return false;
    const bool copied = copyContent(from, to);
    if (!copied)
        removeOnClose(to);
    CloseHandle(to);
    return copied;
}

}  // namespace

// The system's own copy takes along the source's attributes, read-only among them, and is not known to clean
// up behind itself everywhere.
bool fileCopy(const std::u16string& from, const std::u16string& to)
{
    const std::optional<std::u16string> source = pathForSystem(from);
    const std::optional<std::u16string> target = pathForSystem(to);
    fileHandle handle = fileNone;
    if (!source || !target || fileOpen(from, {}, handle) != fileStatus::Ok)
        return false;
    const bool copied = copyToNew(reinterpret_cast<HANDLE>(handle), *target);
    fileClose(handle);
    return copied;
}
