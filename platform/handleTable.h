// For backends: the numbers by which callers know things that may be closed while calls on them are under
// way.
//
// A number is given once in the life of the program, so that one which was closed never stands for something
// else, whatever the system does with its own numbers. All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

template <typename thing>
class handleTable
{
public:
    handleTable() = default;
    handleTable(const handleTable&) = delete;
    handleTable& operator=(const handleTable&) = delete;

    // A number of 1 or more.
    intptr_t Add(std::shared_ptr<thing> entry)
    {
        const std::lock_guard lock(Mutex);
        Entries.emplace(++Last, std::move(entry));
        return Last;
    }

    // Null for a number that stands for nothing any more. What is found lives until its last holder lets go,
    // though it is taken out meanwhile.
    std::shared_ptr<thing> Find(intptr_t handle)
    {
        const std::lock_guard lock(Mutex);
        const auto found = Entries.find(handle);
        return found == Entries.end() ? nullptr : found->second;
    }

    // Ends the number. Of several callers at once, one gets the entry.
    std::shared_ptr<thing> Take(intptr_t handle)
    {
        const std::lock_guard lock(Mutex);
        const auto found = Entries.find(handle);
        if (found == Entries.end())
            return nullptr;
        std::shared_ptr<thing> entry = std::move(found->second);
        Entries.erase(found);
        return entry;
    }

private:
    std::mutex Mutex;
    std::unordered_map<intptr_t, std::shared_ptr<thing>> Entries;
    intptr_t Last = 0;
};
