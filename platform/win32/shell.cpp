#include "platform/shell.h"

#include "platform/win32/path.h"
#include "platform/win32/text.h"

#include <array>
#include <optional>
#include <windows.h>

#include <shellapi.h>

namespace {

using helpFunction = HWND(WINAPI*)(HWND caller, LPCWSTR file, UINT command, DWORD_PTR data);

constexpr WORD helpOrdinal = 15;
constexpr UINT helpDisplay = 0;
constexpr char helpKey[] = "CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";
constexpr char helpName[] = "hhctrl.ocx";

using helpText = std::array<char, MAX_PATH>;

// What the registry calls the help engine; empty when it does not know one.
std::string registeredEngine()
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, helpKey, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return {};
    helpText text = {};
    // Less than the room, for what is stored may lack its end.
    auto size = static_cast<DWORD>(text.size() - 1);
    DWORD type = 0;
    const LSTATUS status =
        RegQueryValueExA(key, nullptr, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size);
    RegCloseKey(key);
    if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
        return {};
    if (type == REG_SZ)
        return text.data();
    helpText expanded = {};
    const DWORD length =
        ExpandEnvironmentStringsA(text.data(), expanded.data(), static_cast<DWORD>(expanded.size()));
    return length > 0 && length <= expanded.size() ? expanded.data() : std::string();
}

helpFunction loadEngine()
{
    const std::string registered = registeredEngine();
    HMODULE module = registered.empty() ? nullptr : LoadLibraryExA(registered.c_str(), nullptr, 0);
    if (module == nullptr) {
        // Where the system's own files are, so that a stranger's file of that name is not taken.
        module = LoadLibraryExA(helpName, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    }
    if (module == nullptr)
        return nullptr;
    // A number in the place of the name.
    const auto* const ordinal = reinterpret_cast<const char*>(static_cast<ULONG_PTR>(helpOrdinal));
    return reinterpret_cast<helpFunction>(reinterpret_cast<void*>(GetProcAddress(module, ordinal)));
}

bool isFile(const std::u16string& path)
{
    const DWORD attributes = GetFileAttributesW(textUnits(path));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

}  // namespace

bool shellOpen(const std::string& target)
{
    // What the system gives as an instance is a code: these are faults.
    constexpr INT_PTR lastFault = 32;
    if (!shellTargetIsValid(target))
        return false;
    const std::optional<std::u16string> wide = textTo16(target);
    if (!wide)
        return false;
    const HINSTANCE given =
        ShellExecuteW(nullptr, L"open", textUnits(*wide), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(given) > lastFault;
}

bool shellHelp(const std::string& path)
{
    if (!shellTargetIsValid(path))
        return false;
    const std::optional<std::u16string> wide = textTo16(path);
    // The engine itself would complain to the user of a file that is missing.
    if (!wide || !isFile(*wide))
        return false;
    // Kept for later calls, and so is the failure.
    static const helpFunction show = loadEngine();
    return show != nullptr && show(nullptr, textUnits(*wide), helpDisplay, 0) != nullptr;
}
