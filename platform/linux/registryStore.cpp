#include "platform/linux/registryStore.h"

#include "platform/linux/fileSystem.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// What a person can still open in an editor; beyond that the file is somebody's accident.
constexpr size_t LargestFile = size_t{16} << 20;
constexpr mode_t PrivateFile = 0600;
constexpr mode_t PrivateFolder = 0700;
constexpr char Introduction[] = "# What Skyreckoning remembers. Edit it while the program does not run.\n";

std::string AbsoluteFolder(const char* variable)
{
    const char* const value = getenv(variable);
    return value != nullptr && value[0] == '/' ? value : "";
}

// Where the links lead that may stand in the file's place, also when nothing is there yet. Empty for a
// circle.
std::string Followed(std::string path)
{
    constexpr int MostLinks = 40;
    for (int link = 0; link < MostLinks; link++) {
        char target[4096];
        const ssize_t length = readlink(path.c_str(), target, sizeof(target));
        if (length < 0)
            return path;
        const std::string_view next(target, static_cast<size_t>(length));
        path = next.starts_with('/') ? std::string() : fileFolderOf(path) + '/';
        path += next;
    }
    return {};
}

bool ReadAll(const fileDescriptor& file, std::string& bytes)
{
    struct stat state = {};
    if (fstat(file.Get(), &state) != 0 || !S_ISREG(state.st_mode))
        return false;
    char part[65536];
    for (;;) {
        const ssize_t got = read(file.Get(), part, sizeof(part));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return got == 0;
        bytes.append(part, static_cast<size_t>(got));
        if (bytes.size() > LargestFile)
            return false;
    }
}

std::optional<registryText> ReadContent(const std::string& path)
{
    const fileDescriptor file = fileOpenDescriptor(path, O_RDONLY);
    if (!file.IsOpen())
        return errno == ENOENT ? std::optional(registryText("")) : std::nullopt;
    std::string bytes;
    if (!ReadAll(file, bytes))
        return std::nullopt;
    return registryText(std::move(bytes));
}

bool WriteThrough(const fileDescriptor& file, const std::string& bytes)
{
    return fileWriteAll(file.Get(), bytes.data(), bytes.size()) && fsync(file.Get()) == 0;
}

// Gives a new file the owner and the rights of the one it replaces.
bool TakeRights(const fileDescriptor& file, const std::string& path)
{
    struct stat old = {};
    struct stat made = {};
    if (stat(path.c_str(), &old) != 0)
        return errno == ENOENT;
    if (fstat(file.Get(), &made) != 0)
        return false;
    const bool sameOwner = old.st_uid == made.st_uid && old.st_gid == made.st_gid;
    // Only an administrator can give a file away; for everyone else a file of their own has to do.
    if (!sameOwner && fchown(file.Get(), old.st_uid, old.st_gid) != 0 && errno != EPERM)
        return false;
    return fchmod(file.Get(), old.st_mode & 0777) == 0;
}

// Makes the change of the folder's entries last through a loss of power.
void SyncFolder(const std::string& folder)
{
    const fileDescriptor file = fileOpenDescriptor(folder, O_RDONLY | O_DIRECTORY);
    if (file.IsOpen())
        fsync(file.Get());
}

// Puts a content in the file's place. The caller holds the lock.
bool Replace(const std::string& path, const std::string& bytes)
{
    if (bytes.size() > LargestFile)
        return false;
    const std::string made = path + ".new";
    // Left by a process that was ended while it wrote.
    unlink(made.c_str());
    const fileDescriptor file = fileOpenDescriptor(made, O_WRONLY | O_CREAT | O_EXCL, PrivateFile);
    if (!file.IsOpen())
        return false;
    if (!WriteThrough(file, bytes) || !TakeRights(file, path) || rename(made.c_str(), path.c_str()) != 0) {
        unlink(made.c_str());
        return false;
    }
    SyncFolder(fileFolderOf(path));
    return true;
}

// A file beside the store that stays, for the store itself is another file after every change.
fileDescriptor LockedBeside(const std::string& path)
{
    fileDescriptor lock = fileOpenDescriptor(path + ".lock", O_RDWR | O_CREAT, PrivateFile);
    while (lock.IsOpen() && flock(lock.Get(), LOCK_EX) != 0) {
        if (errno != EINTR)
            return fileDescriptor();
    }
    return lock;
}

// Failures show when the first file is to be made.
void MakeFolders(const std::string& folder)
{
    for (size_t end = folder.find('/', 1); end != std::string::npos; end = folder.find('/', end + 1))
        mkdir(folder.substr(0, end).c_str(), PrivateFolder);
    mkdir(folder.c_str(), PrivateFolder);
}

}  // namespace

std::string registryStorePath()
{
    const std::string configuration = AbsoluteFolder("XDG_CONFIG_HOME");
    if (!configuration.empty())
        return configuration + "/skyreckoning/registry";
    const std::string home = AbsoluteFolder("HOME");
    return home.empty() ? std::string() : home + "/.config/skyreckoning/registry";
}

std::optional<registryText> registryStoreRead()
{
    const std::string path = registryStorePath();
    return path.empty() ? std::nullopt : ReadContent(path);
}

bool registryStoreChange(const std::function<bool(registryText&)>& change)
{
    const std::string named = registryStorePath();
    if (named.empty())
        return false;
    MakeFolders(fileFolderOf(named));
    const std::string path = Followed(named);
    if (path.empty())
        return false;
    const fileDescriptor lock = LockedBeside(path);
    if (!lock.IsOpen())
        return false;
    std::optional<registryText> content = ReadContent(path);
    if (!content)
        return false;
    const std::string before = content->Bytes();
    if (!change(*content))
        return false;
    if (content->Bytes() == before)
        return true;
    return Replace(path, before.empty() ? Introduction + ('\n' + content->Bytes()) : content->Bytes());
}
