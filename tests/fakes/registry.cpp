#include "platform/registry.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakes.h"

#include <cstring>
#include <memory>

namespace {

struct storedValue {
    std::string Name;  // as it was first written
    fakeValue Value;
};

struct storedKey {
    std::map<std::string, storedValue> Values;
    bool Deleted = false;
};

using keyMap = std::map<std::string, std::shared_ptr<storedKey>>;

}  // namespace

struct registryKey {
    std::shared_ptr<storedKey> Key;
    std::string Path;
    bool Writes;
    bool Forgotten = false;
};

namespace {

struct registryState {
    keyMap Keys;
    std::map<const registryKey*, std::unique_ptr<registryKey>> Handles;
};

registryState& state()
{
    static registryState& only = *new registryState;
    return only;
}

std::string folded(const std::string& text)
{
    std::string result = text;
    for (char& each : result)
        each = each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
    return result;
}

bool wellFormed(const std::string& path)
{
    return !path.empty() && !path.starts_with('\\') && !path.ends_with('\\') &&
           path.find("\\\\") == std::string::npos;
}

std::shared_ptr<storedKey> makeKey(const std::string& path)
{
    const std::string name = folded(path);
    for (size_t end = name.find('\\'); end != std::string::npos; end = name.find('\\', end + 1)) {
        if (!state().Keys.contains(name.substr(0, end)))
            state().Keys[name.substr(0, end)] = std::make_shared<storedKey>();
    }
    std::shared_ptr<storedKey>& key = state().Keys[name];
    if (!key)
        key = std::make_shared<storedKey>();
    return key;
}

registryKey* makeHandle(std::shared_ptr<storedKey> key, const std::string& path, bool writes)
{
    auto handle = std::make_unique<registryKey>(registryKey{std::move(key), path, writes});
    registryKey* const result = handle.get();
    state().Handles[result] = std::move(handle);
    return result;
}

std::string describe(const registryKey* key, const std::string& name)
{
    const std::lock_guard lock(fakes::stateMutex());
    if (!state().Handles.contains(key))
        fakes::misuse("no such registry handle");
    return key->Path + '\\' + name;
}

void put(storedKey& key, const std::string& name, fakeValue value)
{
    storedValue& stored = key.Values.try_emplace(folded(name), storedValue{name, {}}).first->second;
    stored.Value = std::move(value);
}

}  // namespace

void fakes::resetRegistry()
{
    state().Keys.clear();
    for (const auto& [key, handle] : state().Handles) {
        handle->Forgotten = true;
        handle->Key->Deleted = true;
    }
}

registryKey* registryOpen(const std::string& path)
{
    if (fakes::enter("registryOpen", path).Scripted)
        return nullptr;
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = state().Keys.find(folded(path));
    return found == state().Keys.end() ? nullptr : makeHandle(found->second, path, false);
}

registryKey* registryCreate(const std::string& path)
{
    if (fakes::enter("registryCreate", path).Scripted || !wellFormed(path))
        return nullptr;
    const std::lock_guard lock(fakes::stateMutex());
    return makeHandle(makeKey(path), path, true);
}

void registryClose(registryKey* key)
{
    if (!key) {
        fakes::enter("registryClose");
        return;
    }
    std::string path = describe(key, {});
    path.pop_back();
    fakes::enter("registryClose", path);
    const std::lock_guard lock(fakes::stateMutex());
    state().Handles.erase(key);
}

registryStatus registryQuery(registryKey* key, const std::string& name, registryType& type, void* buffer,
                             uint32_t& size)
{
    if (fakes::enter("registryQuery", describe(key, name)).Scripted)
        return registryStatus::Failed;
    const std::lock_guard lock(fakes::stateMutex());
    if (key->Writes || key->Key->Deleted)
        return registryStatus::Failed;
    const auto found = key->Key->Values.find(folded(name));
    if (found == key->Key->Values.end())
        return registryStatus::Failed;

    const fakeValue& value = found->second.Value;
    const uint32_t room = size;
    type = value.Type;
    size = static_cast<uint32_t>(value.Data.size());
    if (!buffer)
        return registryStatus::Ok;
    if (size > room)
        return registryStatus::MoreData;
    if (size > 0)
        std::memcpy(buffer, value.Data.data(), size);
    return registryStatus::Ok;
}

bool registrySet(registryKey* key, const std::string& name, registryType type, const void* data,
                 uint32_t size)
{
    if (fakes::enter("registrySet", describe(key, name)).Scripted)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    if (!key->Writes || key->Key->Deleted)
        return false;
    const uint8_t* const bytes = static_cast<const uint8_t*>(data);
    put(*key->Key, name,
        {type, size > 0 ? std::vector<uint8_t>(bytes, bytes + size) : std::vector<uint8_t>()});
    return true;
}

bool registryDelete(registryKey* key, const std::string& name)
{
    if (fakes::enter("registryDelete", describe(key, name)).Scripted)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    return key->Writes && key->Key->Values.erase(folded(name)) > 0;
}

bool registryDeleteTree(const std::string& path)
{
    if (fakes::enter("registryDeleteTree", path).Scripted || path.empty())
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    const std::string name = folded(path);
    if (!state().Keys.contains(name))
        return false;
    const std::string below = name + '\\';
    std::erase_if(state().Keys, [&](const keyMap::value_type& row) {
        const bool goes = row.first == name || row.first.starts_with(below);
        row.second->Deleted = row.second->Deleted || goes;
        return goes;
    });
    return true;
}

std::string registryPlace()
{
    return "the fake registry";
}

void fakeRegistryPut(const std::string& path, const std::string& name, const fakeValue& value)
{
    const std::lock_guard lock(fakes::stateMutex());
    put(*makeKey(path), name, value);
}

std::map<std::string, fakeValue> fakeRegistryValues(const std::string& path)
{
    const std::lock_guard lock(fakes::stateMutex());
    std::map<std::string, fakeValue> values;
    const auto found = state().Keys.find(folded(path));
    if (found == state().Keys.end())
        return values;
    for (const auto& [name, stored] : found->second->Values)
        values[stored.Name] = stored.Value;
    return values;
}

unsigned fakeRegistryHandles()
{
    const std::lock_guard lock(fakes::stateMutex());
    unsigned count = 0;
    for (const auto& [key, handle] : state().Handles)
        count += handle->Forgotten ? 0u : 1u;
    return count;
}
