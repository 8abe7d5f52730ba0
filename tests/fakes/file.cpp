#include "platform/file.h"

#include "tests/fakes/core.h"
#include "tests/fakes/disk.h"

#include <algorithm>
#include <cstring>
#include <utility>

using fakes::disk;
using fakes::diskHandle;
using fakes::diskNode;

namespace {

constexpr uint64_t SectorSize = 512;
constexpr uint64_t DiskRoom = uint64_t{1} << 30;  // the largest file

std::string described(const std::u16string& path, const fileAccess& access)
{
    return fakes::narrow(path) + (access.Write ? " write" : "") + (access.Exclusive ? " exclusive" : "") +
           (access.Unbuffered ? " unbuffered" : "");
}

std::string described(fileHandle handle)
{
    const std::lock_guard lock(fakes::stateMutex());
    const diskHandle* const open = fakes::diskHandleOf(handle);
    return open ? open->Path : "?";
}

std::string described(fileHandle handle, uint64_t first, uint64_t second)
{
    return described(handle) + ' ' + std::to_string(first) + ' ' + std::to_string(second);
}

fileHandle makeHandle(std::shared_ptr<diskNode> node, const fileAccess& access, const std::u16string& path)
{
    disk().Handles[++disk().LastHandle] = {std::move(node), access, fakes::narrow(path)};
    return disk().LastHandle;
}

// Past the cache the disk only takes whole sectors.
bool fitsSectors(const diskHandle& open, uint64_t offset, const void* memory, uint32_t count)
{
    const uint64_t all = offset | reinterpret_cast<uintptr_t>(memory) | count;
    return !open.Access.Unbuffered || all % SectorSize == 0;
}

bool overlap(const fakeRange& one, const fakeRange& other)
{
    if (one.Length == 0 || other.Length == 0)
        return false;
    return one.Offset <= other.Offset ? other.Offset - one.Offset < one.Length
                                      : one.Offset - other.Offset < other.Length;
}

bool rangeFree(const diskNode& node, fileHandle handle, const fakeRange& range)
{
    return std::none_of(node.Locks.begin(), node.Locks.end(), [&](const fakes::rangeLock& each) {
        return each.Owner != handle && overlap(each.Range, range);
    });
}

uint32_t cutShort(std::optional<uint32_t>& script, uint32_t count)
{
    const std::optional<uint32_t> limit = std::exchange(script, std::nullopt);
    return limit ? std::min(*limit, count) : count;
}

bool removable(const std::u16string& key)
{
    const std::shared_ptr<diskNode> node = fakes::diskFind(key);
    return node && !node->Folder && fakes::diskHandles(*node, false) == 0;
}

bool creatable(const std::u16string& key)
{
    return !fakes::diskFind(key) && fakes::diskIsFolder(fakes::diskParent(key));
}

}  // namespace

fileStatus fileOpen(const std::u16string& path, const fileAccess& access, fileHandle& handle)
{
    const fakes::verdict script = fakes::enter("fileOpen", described(path, access));
    if (script.Scripted)
        return script.Status;
    const std::lock_guard lock(fakes::stateMutex());
    const std::shared_ptr<diskNode> node = fakes::diskFind(fakes::diskKey(path));
    if (!node || path.empty())
        return fileStatus::Missing;
    if (node->Folder)
        return fileStatus::Failed;
    if (fakes::diskHandles(*node, !access.Exclusive) > 0)
        return fileStatus::Sharing;
    handle = makeHandle(node, access, path);
    return fileStatus::Ok;
}

fileStatus fileCreate(const std::u16string& path, const fileAccess& access, fileHandle& handle)
{
    const fakes::verdict script = fakes::enter("fileCreate", described(path, access));
    if (script.Scripted)
        return script.Status;
    const std::lock_guard lock(fakes::stateMutex());
    const std::u16string key = fakes::diskKey(path);
    if (path.empty() || !fakes::diskIsFolder(fakes::diskParent(key)))
        return fileStatus::Missing;
    if (fakes::diskFind(key))
        return fileStatus::Exists;
    disk().Nodes[key] = std::make_shared<diskNode>();
    handle = makeHandle(disk().Nodes[key], access, path);
    return fileStatus::Ok;
}

void fileClose(fileHandle handle)
{
    fakes::enter("fileClose", described(handle));
    const std::lock_guard lock(fakes::stateMutex());
    const diskHandle* const open = fakes::diskHandleOf(handle);
    if (!open && (handle <= 0 || handle > disk().LastForgotten))
        fakes::misuse("fileClose of what is no open handle");
    if (!open)
        return;
    std::erase_if(open->Node->Locks, [&](const fakes::rangeLock& each) { return each.Owner == handle; });
    disk().Handles.erase(handle);
    disk().LocksChanged.notify_all();
}

bool fileLockRange(fileHandle handle, uint64_t offset, uint64_t length, bool wait)
{
    if (fakes::enter("fileLockRange", described(handle, offset, length) + (wait ? " wait" : "")).Scripted)
        return false;
    std::unique_lock lock(fakes::stateMutex());
    const fakeRange range{offset, length};
    for (;;) {
        const diskHandle* const open = fakes::diskHandleOf(handle);
        if (!open)
            return false;
        if (rangeFree(*open->Node, handle, range)) {
            open->Node->Locks.push_back({handle, range});
            return true;
        }
        if (!wait)
            return false;
        disk().LocksChanged.wait(lock);
    }
}

void fileUnlockRange(fileHandle handle, uint64_t offset, uint64_t length)
{
    fakes::enter("fileUnlockRange", described(handle, offset, length));
    const std::lock_guard lock(fakes::stateMutex());
    const diskHandle* const open = fakes::diskHandleOf(handle);
    if (!open)
        return;
    std::vector<fakes::rangeLock>& locks = open->Node->Locks;
    const auto found = std::find_if(locks.begin(), locks.end(), [&](const fakes::rangeLock& each) {
        return each.Owner == handle && each.Range.Offset == offset && each.Range.Length == length;
    });
    if (found != locks.end())
        locks.erase(found);
    disk().LocksChanged.notify_all();
}

std::optional<uint64_t> fileSize(fileHandle handle)
{
    if (fakes::enter("fileSize", described(handle)).Scripted)
        return std::nullopt;
    const std::lock_guard lock(fakes::stateMutex());
    const diskHandle* const open = fakes::diskHandleOf(handle);
    return open ? std::optional<uint64_t>(open->Node->Bytes.size()) : std::nullopt;
}

fileStatus fileRead(fileHandle handle, uint64_t offset, void* buffer, uint32_t count, uint32_t& done)
{
    const fakes::verdict script = fakes::enter("fileRead", described(handle, offset, count));
    done = script.Scripted && script.Status == fileStatus::Ok ? count : 0;
    if (script.Scripted)
        return script.Status;
    const std::lock_guard lock(fakes::stateMutex());
    const diskHandle* const open = fakes::diskHandleOf(handle);
    if (!open || !fitsSectors(*open, offset, buffer, count))
        return fileStatus::Failed;
    const std::string& bytes = open->Node->Bytes;
    const uint32_t wanted = cutShort(disk().ShortRead, count);
    if (offset < bytes.size())
        done = static_cast<uint32_t>(std::min<uint64_t>(wanted, bytes.size() - offset));
    if (done > 0)
        std::memcpy(buffer, bytes.data() + offset, done);
    return fileStatus::Ok;
}

fileStatus fileWrite(fileHandle handle, uint64_t offset, const void* data, uint32_t count, uint32_t& done)
{
    const fakes::verdict script = fakes::enter("fileWrite", described(handle, offset, count));
    done = script.Scripted && script.Status == fileStatus::Ok ? count : 0;
    if (script.Scripted)
        return script.Status;
    const std::lock_guard lock(fakes::stateMutex());
    const diskHandle* const open = fakes::diskHandleOf(handle);
    if (!open || !open->Access.Write || !fitsSectors(*open, offset, data, count))
        return fileStatus::Failed;
    const uint32_t taken = cutShort(disk().ShortWrite, count);
    if (offset > DiskRoom || taken > DiskRoom - offset)
        return fileStatus::DiskFull;
    if (taken == 0)
        return fileStatus::Ok;
    std::string& bytes = open->Node->Bytes;
    bytes.resize(std::max<uint64_t>(bytes.size(), offset + taken));
    std::memcpy(bytes.data() + offset, data, taken);
    done = taken;
    return fileStatus::Ok;
}

bool fileSetSize(fileHandle handle, uint64_t size)
{
    if (fakes::enter("fileSetSize", described(handle) + ' ' + std::to_string(size)).Scripted)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    const diskHandle* const open = fakes::diskHandleOf(handle);
    if (!open || !open->Access.Write || size > DiskRoom)
        return false;
    open->Node->Bytes.resize(size);
    return true;
}

bool fileExists(const std::u16string& path)
{
    if (fakes::enter("fileExists", fakes::narrow(path)).Scripted)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    return !path.empty() && fakes::diskFind(fakes::diskKey(path)) != nullptr;
}

std::optional<uint64_t> fileSizeOf(const std::u16string& path)
{
    if (fakes::enter("fileSizeOf", fakes::narrow(path)).Scripted)
        return std::nullopt;
    const std::lock_guard lock(fakes::stateMutex());
    const std::shared_ptr<diskNode> node = fakes::diskFind(fakes::diskKey(path));
    return node && !node->Folder ? std::optional<uint64_t>(node->Bytes.size()) : std::nullopt;
}

bool fileRemove(const std::u16string& path)
{
    if (fakes::enter("fileRemove", fakes::narrow(path)).Scripted)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    const std::u16string key = fakes::diskKey(path);
    return removable(key) && disk().Nodes.erase(key) > 0;
}

bool fileRename(const std::u16string& from, const std::u16string& to)
{
    if (fakes::enter("fileRename", fakes::narrow(from) + ' ' + fakes::narrow(to)).Scripted)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    const std::u16string source = fakes::diskKey(from);
    const std::u16string target = fakes::diskKey(to);
    if (!removable(source) || !creatable(target) || fakes::diskRoot(source) != fakes::diskRoot(target))
        return false;
    disk().Nodes[target] = disk().Nodes[source];
    disk().Nodes.erase(source);
    return true;
}

bool fileCopy(const std::u16string& from, const std::u16string& to)
{
    if (fakes::enter("fileCopy", fakes::narrow(from) + ' ' + fakes::narrow(to)).Scripted)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    const std::shared_ptr<diskNode> source = fakes::diskFind(fakes::diskKey(from));
    const std::u16string target = fakes::diskKey(to);
    if (!source || source->Folder || fakes::diskHandles(*source, true) > 0 || !creatable(target))
        return false;
    const auto copy = std::make_shared<diskNode>();
    copy->Bytes = source->Bytes;
    disk().Nodes[target] = copy;
    return true;
}

bool fileMakeFolder(const std::u16string& path)
{
    if (fakes::enter("fileMakeFolder", fakes::narrow(path)).Scripted)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    const std::u16string key = fakes::diskKey(path);
    if (path.empty() || !creatable(key))
        return false;
    disk().Nodes[key] = std::make_shared<diskNode>();
    disk().Nodes[key]->Folder = true;
    return true;
}
