#include "foundations/settings/settingsReg.h"

#include "foundations/heap/mem.h"
#include "foundations/settings/settingsRaw.h"

#include <limits>

namespace {

void appendLevel(std::string& path, const std::string& level)
{
    if (level.empty())
        return;
    if (!path.ends_with('\\') && !level.starts_with('\\'))
        path += '\\';
    path += level;
}

}  // namespace

settingsReg::~settingsReg()
{
    registryClose(Key);
    memFree(Buffer);
}

// The names may bring backslashes of their own, but the system takes none at either end.
std::string settingsReg::Path() const
{
    std::string path = Root;
    appendLevel(path, Section);
    appendLevel(path, Subsection);
    while (path.ends_with('\\'))
        path.pop_back();
    path.erase(0, path.find_first_not_of('\\'));
    return path;
}

bool settingsReg::Open(bool write)
{
    if (OpenCount == 0) {
        Key = write ? registryCreate(Path()) : registryOpen(Path());
        if (Key == nullptr)
            return false;
    }
    ++OpenCount;
    return true;
}

void settingsReg::Close(bool)
{
    if (OpenCount == 0 || --OpenCount != 0)
        return;
    registryClose(Key);
    Key = nullptr;
}

void settingsReg::DeleteValue(const char* key)
{
    if (!Open(true))
        return;
    registryDelete(Key, key);
    Close(true);
}

void settingsReg::DeleteAll()
{
    const std::string path = Path();
    // An empty path would be everything that the user has, of every program.
    if (!path.empty())
        registryDeleteTree(path);
}

void settingsReg::RestoreFile() {}

void settingsReg::RotateFiles() {}

settingsRaw settingsReg::Read(const char* key)
{
    settingsRaw raw;
    if (!Open(false))
        return raw;
    registryType type = {};
    uint32_t size = BufferSize;
    registryStatus status = registryQuery(Key, key, type, Buffer, size);
    // Another process may let the value grow between two queries, so this can take more than one.
    while (status != registryStatus::Failed && size > BufferSize) {
        Buffer = memRealloc(Buffer, size, 0);
        BufferSize = Buffer != nullptr ? size : 0;
        if (Buffer == nullptr)
            break;
        status = registryQuery(Key, key, type, Buffer, size);
    }
    Close(false);
    if (status == registryStatus::Ok && size <= BufferSize)
        raw = {type, static_cast<const uint8_t*>(Buffer), size};
    return raw;
}

void settingsReg::Write(const char* key, registryType type, const void* data, uint64_t count,
                        uint64_t elementSize)
{
    if (count > std::numeric_limits<uint32_t>::max() / elementSize || !Open(true))
        return;
    registrySet(Key, key, type, data, static_cast<uint32_t>(count * elementSize));
    Close(true);
}
