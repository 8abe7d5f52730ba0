#include "platform/registry.h"

#include "platform/win32/text.h"

#include <vector>
#include <windows.h>

namespace {

HKEY systemKey(registryKey* key)
{
    return reinterpret_cast<HKEY>(key);
}

registryKey* ourKey(HKEY key)
{
    return reinterpret_cast<registryKey*>(key);
}

// An empty path would stand for everything that the user has.
std::optional<std::u16string> keyPath(const std::string& path)
{
    return path.empty() ? std::nullopt : textTo16(path);
}

bool isText(DWORD type)
{
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

}  // namespace

registryKey* registryOpen(const std::string& path)
{
    const std::optional<std::u16string> name = keyPath(path);
    HKEY key = nullptr;
    if (!name || RegOpenKeyExW(HKEY_CURRENT_USER, textUnits(*name), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return nullptr;
    return ourKey(key);
}

registryKey* registryCreate(const std::string& path)
{
    const std::optional<std::u16string> name = keyPath(path);
    HKEY key = nullptr;
    if (!name || RegCreateKeyExW(HKEY_CURRENT_USER, textUnits(*name), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                 KEY_WRITE, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return nullptr;
    return ourKey(key);
}

void registryClose(registryKey* key)
{
    if (key != nullptr)
        RegCloseKey(systemKey(key));
}

registryStatus registryQuery(registryKey* key, const std::string& name, registryType& type, void* buffer,
                             uint32_t& size)
{
    const std::optional<std::u16string> wideName = textTo16(name);
    if (!wideName)
        return registryStatus::Failed;
    DWORD systemType = REG_NONE;
    DWORD bytes = size;
    const LSTATUS status = RegQueryValueExW(systemKey(key), textUnits(*wideName), nullptr, &systemType,
                                            static_cast<BYTE*>(buffer), &bytes);
    if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA)
        return registryStatus::Failed;
    type = static_cast<registryType>(systemType);
    size = bytes;
    return status == ERROR_SUCCESS ? registryStatus::Ok : registryStatus::MoreData;
}

bool registrySet(registryKey* key, const std::string& name, registryType type, const void* data,
                 uint32_t size)
{
    const std::optional<std::u16string> wideName = textTo16(name);
    if (!wideName)
        return false;
    const DWORD systemType = static_cast<DWORD>(type);
    const BYTE* bytes = static_cast<const BYTE*>(data);
    std::vector<BYTE> guarded;
    if (isText(systemType) && size > 0) {
        // The system looks behind a text for a terminating zero that was not counted, and would store it too.
        guarded.assign(bytes, bytes + size);
        guarded.insert(guarded.end(), 2 * sizeof(char16_t), 0xFF);
        bytes = guarded.data();
    }
    return RegSetValueExW(systemKey(key), textUnits(*wideName), 0, systemType, bytes, size) == ERROR_SUCCESS;
}

bool registryDelete(registryKey* key, const std::string& name)
{
    const std::optional<std::u16string> wideName = textTo16(name);
    return wideName && RegDeleteValueW(systemKey(key), textUnits(*wideName)) == ERROR_SUCCESS;
}

bool registryDeleteTree(const std::string& path)
{
    const std::optional<std::u16string> name = keyPath(path);
    return name && RegDeleteTreeW(HKEY_CURRENT_USER, textUnits(*name)) == ERROR_SUCCESS;
}

std::string registryPlace()
{
    return "HKEY_CURRENT_USER";
}
