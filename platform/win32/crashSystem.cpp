#include "platform/crash.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <windows.h>

namespace {

constexpr char documentsKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr char documentsValue[] = "Personal";

struct systemRow {
    DWORD Major;
    DWORD Minor;
    std::string_view Name;
};

constexpr systemRow Systems[] = {
    {10, 0, "at least Windows 10"},
};

bool isAtLeast(const systemRow& row)
{
    OSVERSIONINFOEXW wanted = {};
    wanted.dwOSVersionInfoSize = sizeof wanted;
    wanted.dwMajorVersion = row.Major;
    wanted.dwMinorVersion = row.Minor;
    DWORDLONG conditions = 0;
    constexpr DWORD parts[] = {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR};
    DWORD asked = 0;
    for (const DWORD part : parts) {
        conditions = VerSetConditionMask(conditions, part, VER_GREATER_EQUAL);
        asked |= part;
    }
    return VerifyVersionInfoW(&wanted, asked, conditions) != FALSE;
}

// Of an open key, as many bytes as are stored; 0 when it is no plain text or does not fit.
size_t readText(HKEY key, const char* name, char* target, size_t room)
{
    DWORD type = REG_NONE;
    DWORD bytes = static_cast<DWORD>(room);
    const LSTATUS status =
        RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(target), &bytes);
    return status == ERROR_SUCCESS && type == REG_SZ ? bytes : 0;
}

}  // namespace

void crashSystemName(char* target, size_t room)
{
    if (room == 0)
        return;
    const systemRow* const row = std::find_if(std::begin(Systems), std::end(Systems), isAtLeast);
    const std::string_view name = row == std::end(Systems) ? std::string_view() : row->Name;
    target[name.copy(target, room - 1)] = '\0';
}

size_t crashDocuments(char* target, size_t room)
{
    HKEY key = nullptr;
    if (room < 2 || RegOpenKeyExA(HKEY_CURRENT_USER, documentsKey, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return 0;
    const size_t stored = readText(key, documentsValue, target, room);
    RegCloseKey(key);
    // It may be stored with a NUL at its end or without.
    size_t length = strnlen(target, stored);
    if (length >= room - 1)
        return 0;
    // The root of a drive has a separator of its own.
    while (length > 0 && target[length - 1] == crashSeparator())
        --length;
    target[length] = '\0';
    return length;
}

char crashSeparator()
{
    return '\\';
}

size_t crashProgramPath(char* target, size_t room)
{
    const DWORD length = GetModuleFileNameA(nullptr, target, static_cast<DWORD>(room));
    return length < room ? length : 0;
}

crashTime crashNow()
{
    SYSTEMTIME now = {};
    GetSystemTime(&now);
    return {now.wYear,
            static_cast<uint8_t>(now.wMonth),
            static_cast<uint8_t>(now.wDay),
            static_cast<uint8_t>(now.wHour),
            static_cast<uint8_t>(now.wMinute),
            static_cast<uint8_t>(now.wSecond)};
}

void crashTell(const char* caption, const char* text)
{
    MessageBoxA(nullptr, text, caption, MB_ICONEXCLAMATION);
}

void crashTellByProgram()
{
    // The system shows its messages in any state of the program.
}

bool crashMessageOf(int, char**, const char*&, const char*&)
{
    return false;
}
