#include "platform/win32/crashExports.h"

#include <cstring>
#include <span>
#include <windows.h>

namespace {

// The file as it is loaded, which knows its places by their distance from its begin.
class loadedFile
{
public:
    loadedFile() : Base(reinterpret_cast<uint64_t>(GetModuleHandleA(nullptr))) {}

    template <typename T>
    const T* At(DWORD distance) const
    {
        return reinterpret_cast<const T*>(Base + distance);
    }

    template <typename T>
    std::span<const T> Table(DWORD distance, DWORD count) const
    {
        return {At<T>(distance), count};
    }

    const uint64_t Base;
};

// Null when the file exports nothing.
const IMAGE_EXPORT_DIRECTORY* exportsOf(const loadedFile& file)
{
    const DWORD header = static_cast<DWORD>(file.At<IMAGE_DOS_HEADER>(0)->e_lfanew);
    const IMAGE_DATA_DIRECTORY& place =
        file.At<IMAGE_NT_HEADERS64>(header)->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    return place.Size == 0 ? nullptr : file.At<IMAGE_EXPORT_DIRECTORY>(place.VirtualAddress);
}

// The name of what begins at that distance, or null.
const char* nameAt(const loadedFile& file, DWORD begin)
{
    const IMAGE_EXPORT_DIRECTORY* const exports = exportsOf(file);
    if (exports == nullptr)
        return nullptr;
    const auto functions = file.Table<DWORD>(exports->AddressOfFunctions, exports->NumberOfFunctions);
    const auto names = file.Table<DWORD>(exports->AddressOfNames, exports->NumberOfNames);
    const auto places = file.Table<WORD>(exports->AddressOfNameOrdinals, exports->NumberOfNames);
    for (size_t at = 0; at < names.size(); ++at) {
        if (functions[places[at]] == begin)
            return file.At<char>(names[at]);
    }
    return nullptr;
}

}  // namespace

bool crashExportAt(uint64_t address, crashSymbol& symbol)
{
    const loadedFile file;
    // What the system needs to leave a function by an exception tells where each one begins.
    DWORD64 base = 0;
    const RUNTIME_FUNCTION* const function = RtlLookupFunctionEntry(address, &base, nullptr);
    if (function == nullptr || base != file.Base)
        return false;
    const char* const name = nameAt(file, function->BeginAddress);
    if (name == nullptr)
        return false;
    const size_t length = strnlen(name, sizeof symbol.Name - 1);
    std::memcpy(symbol.Name, name, length);
    symbol.Name[length] = '\0';
    symbol.Displacement = address - base - function->BeginAddress;
    return true;
}
