#include "platform/win32/path.h"

#include "platform/file.h"
#include "platform/win32/text.h"

#include <algorithm>
#include <windows.h>

namespace {

// Folders are limited to fewer units than files: a short file name must still fit below them.
constexpr size_t longestPlainPath = MAX_PATH - 13;

constexpr std::u16string_view longPrefix = u"\\\\?\\";
constexpr std::u16string_view longServerPrefix = u"\\\\?\\UNC\\";

size_t nameEnd(std::u16string_view path, size_t begin)
{
    while (begin < path.size() && !fileIsSeparator(path[begin]))
        ++begin;
    return begin;
}

// The name that begins here, and one separator behind it.
size_t rootPartEnd(std::u16string_view path, size_t begin)
{
    return std::min(nameEnd(path, begin) + 1, path.size());
}

size_t separatorsAtFront(std::u16string_view path)
{
    size_t count = 0;
    while (count < path.size() && fileIsSeparator(path[count]))
        ++count;
    return count;
}

bool isLetter(char16_t unit)
{
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

// Whether a path begins with "\\?\" or "\\.\", behind which the system looks nothing up.
bool hasDevicePrefix(std::u16string_view path)
{
    return path.size() >= 4 && separatorsAtFront(path) == 2 && (path[2] == u'?' || path[2] == u'.') &&
           fileIsSeparator(path[3]);
}

bool isServerDevice(std::u16string_view name)
{
    return name.size() == 3 && (name[0] | 0x20) == u'u' && (name[1] | 0x20) == u'n' &&
           (name[2] | 0x20) == u'c';
}

size_t deviceRootLength(std::u16string_view path)
{
    const size_t nameAt = longPrefix.size();
    const size_t end = rootPartEnd(path, nameAt);
    if (!isServerDevice(path.substr(nameAt, nameEnd(path, nameAt) - nameAt)))
        return end;
    return rootPartEnd(path, rootPartEnd(path, end));
}

std::optional<std::u16string> fullPath(const std::u16string& path)
{
    std::u16string full(MAX_PATH, u'\0');
    while (true) {
        const DWORD length = GetFullPathNameW(textUnits(path), static_cast<DWORD>(full.size()),
                                              textUnits(full.data()), nullptr);
        if (length == 0)
            return std::nullopt;
        const bool fits = length < full.size();
        full.resize(length);
        if (fits)
            return full;
    }
}

}  // namespace

bool fileIsSeparator(char16_t unit)
{
    return unit == u'\\' || unit == u'/';
}

size_t fileRootLength(std::u16string_view path)
{
    if (hasDevicePrefix(path))
        return deviceRootLength(path);
    const size_t separators = separatorsAtFront(path);
    if (separators == 2)
        return rootPartEnd(path, rootPartEnd(path, separators));
    if (separators > 0)
        return 1;
    if (path.size() < 2 || !isLetter(path[0]) || path[1] != u':')
        return 0;
    return path.size() > 2 && fileIsSeparator(path[2]) ? 3 : 2;
}

std::optional<std::u16string> pathForSystem(const std::u16string& path)
{
    if (path.empty() || path.find(u'\0') != std::u16string::npos)
        return std::nullopt;
    if (hasDevicePrefix(path)) {
        // Here the system itself would take a slash for a part of a name.
        std::u16string device = path;
        std::replace(device.begin(), device.end(), u'/', u'\\');
        return device;
    }
    const std::optional<std::u16string> full = fullPath(path);
    if (!full || full->size() <= longestPlainPath || hasDevicePrefix(*full))
        return full;
    if (separatorsAtFront(*full) == 2)
        return std::u16string(longServerPrefix).append(*full, 2);
    return std::u16string(longPrefix).append(*full);
}
