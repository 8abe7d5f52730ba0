// The disk of the fake platform: names, their contents, and the handles on them. Used under the fake's mutex.
#pragma once

#include "tests/fakes/fakes.h"

#include <condition_variable>
#include <memory>

namespace fakes {

struct rangeLock {
    fileHandle Owner;
    fakeRange Range;
};

struct diskNode {
    bool Folder = false;
    std::string Bytes;
    std::vector<rangeLock> Locks;
};

struct diskHandle {
    std::shared_ptr<diskNode> Node;
    fileAccess Access;
    std::string Path;  // as it was opened, for the record
};

struct diskState {
    std::map<std::u16string, std::shared_ptr<diskNode>> Nodes;
    std::map<fileHandle, diskHandle> Handles;
    fileHandle LastHandle = 0;
    fileHandle LastForgotten = 0;
    std::condition_variable LocksChanged;
    std::optional<uint32_t> ShortRead;
    std::optional<uint32_t> ShortWrite;
};

diskState& disk();

// The one spelling of a path: "/" between names and none at the end, but for the root "/".
std::u16string diskKey(std::u16string_view path);

// The key of the folder that holds a name.
std::u16string diskParent(const std::u16string& key);

std::shared_ptr<diskNode> diskFind(const std::u16string& key);
bool diskIsFolder(const std::u16string& key);

// The first part of a key that tells one disk from another.
std::u16string diskRoot(const std::u16string& key);

// The handles on a node: all of them, or those that keep every other out.
unsigned diskHandles(const diskNode& node, bool exclusiveOnly);

// Null for a handle that is not open.
diskHandle* diskHandleOf(fileHandle handle);

}  // namespace fakes
