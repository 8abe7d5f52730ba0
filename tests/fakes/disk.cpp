#include "tests/fakes/disk.h"

#include "tests/fakes/core.h"

#include <algorithm>

namespace {

// The empty key is the folder that relative paths start from.
void makeRoots(fakes::diskState& on)
{
    for (const char16_t* root : {u"", u"/", u"C:"}) {
        on.Nodes[root] = std::make_shared<fakes::diskNode>();
        on.Nodes[root]->Folder = true;
    }
}

void makeFolders(const std::u16string& key)
{
    if (fakes::diskIsFolder(key))
        return;
    const std::u16string parent = fakes::diskParent(key);
    if (parent != key)
        makeFolders(parent);
    const auto node = std::make_shared<fakes::diskNode>();
    node->Folder = true;
    fakes::disk().Nodes[key] = node;
}

size_t nameEnd(std::u16string_view path, size_t from)
{
    while (from < path.size() && !fileIsSeparator(path[from]))
        ++from;
    return from;
}

bool isDrive(std::u16string_view path)
{
    const auto letter = [](char16_t unit) {
        return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
    };
    return path.size() >= 2 && letter(path[0]) && path[1] == u':';
}

}  // namespace

namespace fakes {

diskState& disk()
{
    static diskState& only = []() -> diskState& {
        diskState& made = *new diskState;
        makeRoots(made);
        return made;
    }();
    return only;
}

std::u16string diskKey(std::u16string_view path)
{
    const bool share = path.size() > 2 && fileIsSeparator(path[0]) && fileIsSeparator(path[1]);
    std::u16string key = share ? u"/" : u"";
    const bool rooted = !path.empty() && fileIsSeparator(path[0]);
    for (size_t from = 0; from < path.size();) {
        const size_t end = nameEnd(path, from);
        const std::u16string_view name = path.substr(from, end - from);
        if (!name.empty() && name != u".") {
            if (rooted || !key.empty())
                key += u'/';
            key += name;
        }
        from = end + 1;
    }
    return key.empty() && rooted ? u"/" : key;
}

std::u16string diskParent(const std::u16string& key)
{
    if (key == u"/" || key.empty())
        return key;
    const size_t slash = key.rfind(u'/');
    if (slash == std::u16string::npos)
        return isDrive(key) ? key : u"";
    return slash == 0 ? u"/" : key.substr(0, slash);
}

std::shared_ptr<diskNode> diskFind(const std::u16string& key)
{
    const auto found = disk().Nodes.find(key);
    return found == disk().Nodes.end() ? nullptr : found->second;
}

bool diskIsFolder(const std::u16string& key)
{
    const std::shared_ptr<diskNode> node = diskFind(key);
    return node && node->Folder;
}

std::u16string diskRoot(const std::u16string& key)
{
    return diskKey(std::u16string_view(key).substr(0, fileRootLength(key)));
}

unsigned diskHandles(const diskNode& node, bool exclusiveOnly)
{
    const auto counts = [&](const auto& row) {
        return row.second.Node.get() == &node && (row.second.Access.Exclusive || !exclusiveOnly);
    };
    return static_cast<unsigned>(std::count_if(disk().Handles.begin(), disk().Handles.end(), counts));
}

diskHandle* diskHandleOf(fileHandle handle)
{
    const auto found = disk().Handles.find(handle);
    return found == disk().Handles.end() ? nullptr : &found->second;
}

void resetFile()
{
    disk().Nodes.clear();
    makeRoots(disk());
    disk().Handles.clear();
    disk().LastForgotten = disk().LastHandle;
    disk().ShortRead.reset();
    disk().ShortWrite.reset();
    disk().LocksChanged.notify_all();
}

}  // namespace fakes

bool fileIsSeparator(char16_t unit)
{
    return unit == u'/' || unit == u'\\';
}

size_t fileRootLength(std::u16string_view path)
{
    if (isDrive(path))
        return path.size() > 2 && fileIsSeparator(path[2]) ? 3 : 2;
    if (path.empty() || !fileIsSeparator(path[0]))
        return 0;
    if (path.size() < 3 || !fileIsSeparator(path[1]) || fileIsSeparator(path[2]))
        return 1;
    const size_t server = nameEnd(path, 2);
    const size_t share = nameEnd(path, std::min(server + 1, path.size()));
    return std::min(share + 1, path.size());
}

void fakeFilePut(const std::u16string& path, const std::string& bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    const std::u16string key = fakes::diskKey(path);
    makeFolders(fakes::diskParent(key));
    std::shared_ptr<fakes::diskNode>& node = fakes::disk().Nodes[key];
    if (!node)
        node = std::make_shared<fakes::diskNode>();
    if (node->Folder)
        fakes::misuse("a folder has no bytes");
    node->Bytes = bytes;
}

bool fakeFileHas(const std::u16string& path)
{
    const std::lock_guard lock(fakes::stateMutex());
    return fakes::diskFind(fakes::diskKey(path)) != nullptr;
}

std::string fakeFileBytes(const std::u16string& path)
{
    const std::lock_guard lock(fakes::stateMutex());
    const std::shared_ptr<fakes::diskNode> node = fakes::diskFind(fakes::diskKey(path));
    return node ? node->Bytes : std::string();
}

unsigned fakeFileHandles()
{
    const std::lock_guard lock(fakes::stateMutex());
    return static_cast<unsigned>(fakes::disk().Handles.size());
}

std::vector<fakeRange> fakeFileLocks(const std::u16string& path)
{
    const std::lock_guard lock(fakes::stateMutex());
    std::vector<fakeRange> ranges;
    if (const std::shared_ptr<fakes::diskNode> node = fakes::diskFind(fakes::diskKey(path))) {
        for (const fakes::rangeLock& each : node->Locks)
            ranges.push_back(each.Range);
    }
    return ranges;
}

void fakeShort(const std::string& function, uint32_t bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    if (function == "fileRead")
        fakes::disk().ShortRead = bytes;
    else if (function == "fileWrite")
        fakes::disk().ShortWrite = bytes;
    else
        fakes::misuse("only fileRead and fileWrite come short");
}
