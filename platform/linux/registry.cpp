#include "platform/registry.h"

#include "platform/linux/registryStore.h"
#include "platform/linux/registryWords.h"

#include <cstring>
#include <memory>

struct registryKey {
    std::string Path;
    bool Writes;
};

namespace {

// No value beyond this fits into a store that people can open; refused before it is copied.
constexpr uint32_t LargestValue = uint32_t{16} << 20;

registryKey* NewKey(const std::string& path, bool writes)
{
    return std::make_unique<registryKey>(registryKey{path, writes}).release();
}

}  // namespace

registryKey* registryOpen(const std::string& path)
{
    if (!registryIsPath(path))
        return nullptr;
    const std::optional<registryText> content = registryStoreRead();
    return content && content->HasKey(path) ? NewKey(path, false) : nullptr;
}

registryKey* registryCreate(const std::string& path)
{
    if (!registryIsPath(path))
        return nullptr;
    const bool made = registryStoreChange([&path](registryText& content) {
        content.AddKey(path);
        return true;
    });
    return made ? NewKey(path, true) : nullptr;
}

void registryClose(registryKey* key)
{
    const std::unique_ptr<registryKey> owned(key);
}

registryStatus registryQuery(registryKey* key, const std::string& name, registryType& type, void* buffer,
                             uint32_t& size)
{
    if (key == nullptr || key->Writes)
        return registryStatus::Failed;
    const std::optional<registryText> content = registryStoreRead();
    const std::optional<registryValue> value = content ? content->Find(key->Path, name) : std::nullopt;
    if (!value)
        return registryStatus::Failed;
    const uint32_t room = size;
    type = value->Type;
    size = static_cast<uint32_t>(value->Data.size());
    if (buffer == nullptr)
        return registryStatus::Ok;
    if (size > room)
        return registryStatus::MoreData;
    if (size > 0)
        std::memcpy(buffer, value->Data.data(), size);
    return registryStatus::Ok;
}

bool registrySet(registryKey* key, const std::string& name, registryType type, const void* data,
                 uint32_t size)
{
    if (key == nullptr || !key->Writes || !registryIsUTF8(name) || size > LargestValue)
        return false;
    const uint8_t* const bytes = static_cast<const uint8_t*>(data);
    const registryValue value{type, std::vector<uint8_t>(bytes, bytes + size)};
    return registryStoreChange([&](registryText& content) {
        // A handle does not outlive its key.
        if (!content.HasKey(key->Path))
            return false;
        content.Set(key->Path, name, value);
        return true;
    });
}

bool registryDelete(registryKey* key, const std::string& name)
{
    if (key == nullptr || !key->Writes)
        return false;
    return registryStoreChange([&](registryText& content) { return content.Remove(key->Path, name); });
}

bool registryDeleteTree(const std::string& path)
{
    return registryIsPath(path) &&
           registryStoreChange([&path](registryText& content) { return content.RemoveTree(path); });
}

std::string registryPlace()
{
    return registryStorePath();
}
