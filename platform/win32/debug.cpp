#include "platform/debug.h"

#include <algorithm>
#include <windows.h>

namespace {

// Bytes of a text that are shown at once. UTF-16 never takes more units than UTF-8 takes bytes.
constexpr size_t pieceBytes = 255;

bool continuesSequence(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// How much of the text to show next, so that no character is cut in two.
size_t pieceLength(std::string_view text)
{
    if (text.size() <= pieceBytes)
        return text.size();
    constexpr size_t longestSequence = 4;
    for (size_t length = pieceBytes; length > pieceBytes - longestSequence; --length) {
        if (!continuesSequence(text[length]))
            return length;
    }
    return pieceBytes;
}

void writePiece(std::string_view piece)
{
    wchar_t units[pieceBytes + 1];
    const int count = MultiByteToWideChar(CP_UTF8, 0, piece.data(), static_cast<int>(piece.size()), units,
                                          static_cast<int>(pieceBytes));
    if (count <= 0)
        return;
    units[count] = L'\0';
    OutputDebugStringW(units);
}

// Whether the system calls the whole range readable. The read itself cannot tell: it reaches behind
// protections on some systems, and on a stack it would use up the page that makes the stack grow.
bool isReadable(const void* address, size_t bytes)
{
    const char* at = static_cast<const char*>(address);
    size_t left = bytes;
    while (true) {
        MEMORY_BASIC_INFORMATION range;
        if (VirtualQuery(at, &range, sizeof range) == 0 || range.State != MEM_COMMIT ||
            (range.Protect & (PAGE_NOACCESS | PAGE_GUARD | PAGE_EXECUTE)) != 0)
            return false;
        const char* const end = static_cast<const char*>(range.BaseAddress) + range.RegionSize;
        const size_t covered = static_cast<size_t>(end - at);
        if (left <= covered)
            return true;
        left -= covered;
        at = end;
    }
}

}  // namespace

void debugWrite(std::string_view text)
{
    while (!text.empty()) {
        // The system would take a NUL for the end.
        const std::string_view line = text.substr(0, text.find('\0'));
        const size_t length = pieceLength(line);
        if (length > 0)
            writePiece(line.substr(0, length));
        text.remove_prefix(std::max<size_t>(length, 1));
    }
}

bool debugAttached()
{
    return IsDebuggerPresent() != FALSE;
}

void debugBreak()
{
    __debugbreak();
}

bool debugRead(const void* address, void* target, size_t bytes)
{
    if (bytes == 0)
        return true;
    SIZE_T done = 0;
    return isReadable(address, bytes) &&
           ReadProcessMemory(GetCurrentProcess(), address, target, bytes, &done) != FALSE && done == bytes;
}
