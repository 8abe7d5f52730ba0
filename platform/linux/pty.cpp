#include "platform/pty.h"

#include "platform/linux/fileSystem.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::string_view Prefix = "tty";
constexpr std::string_view LockEnding = ".lock";
constexpr unsigned FirstRate = 9600;

// What is left of a file's name when a point goes before it and an ending behind.
constexpr size_t LongestName = NAME_MAX - 1 - LockEnding.size();

// Raw, at the first rate: until a host sets the line, no byte means anything to it and none is sent back.
bool MakeRaw(int slave)
{
    termios2 line = {};
    if (ioctl(slave, TCGETS2, &line) != 0)
        return false;
    line.c_iflag = IGNBRK;
    line.c_oflag = 0;
    line.c_lflag = 0;
    line.c_cflag = CS8 | CREAD | CLOCAL | BOTHER | (BOTHER << IBSHIFT);
    line.c_ispeed = FirstRate;
    line.c_ospeed = FirstRate;
    line.c_cc[VMIN] = 1;
    line.c_cc[VTIME] = 0;
    return ioctl(slave, TCSETS2, &line) == 0;
}

std::string SlaveName(int master)
{
    std::array<char, 64> name = {};
    return ptsname_r(master, name.data(), name.size()) == 0 ? name.data() : std::string();
}

// Where links to virtual ports stand; empty when there is no such place.
std::filesystem::path Folder()
{
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || *runtime != '/')
        return {};
    std::filesystem::path folder = std::filesystem::path(runtime) / "skyreckoning";
    std::error_code failed;
    std::filesystem::create_directories(folder, failed);
    return failed ? std::filesystem::path() : folder;
}

bool IsName(std::string_view name)
{
    constexpr std::string_view Separators("/\\\0", 3);
    return name.starts_with(Prefix) && name.size() <= LongestName &&
           name.find_first_of(Separators) == std::string_view::npos;
}

// A file beside the link that says by its lock that the link's owner lives. It stays when the port goes: a
// lock on a file that others may remove would guard nothing.
fileDescriptor Lock(const std::filesystem::path& folder, std::string_view name)
{
    const std::filesystem::path file = folder / ("." + std::string(name).append(LockEnding));
    constexpr mode_t Mode = 0600;
    fileDescriptor lock = fileOpenDescriptor(file, O_RDWR | O_CREAT, Mode);
    if (lock.IsOpen() && flock(lock.Get(), LOCK_EX | LOCK_NB) != 0)
        return fileDescriptor();
    return lock;
}

// Puts the link in its place in one step, over one that was left behind but over nothing else.
bool PutLink(const std::filesystem::path& link, const std::string& target)
{
    std::error_code failed;
    const std::filesystem::file_status there = std::filesystem::symlink_status(link, failed);
    if (std::filesystem::exists(there) && !std::filesystem::is_symlink(there))
        return false;
    const std::filesystem::path fresh = link.parent_path() / ("." + link.filename().string() + ".new");
    std::filesystem::remove(fresh, failed);
    std::filesystem::create_symlink(target, fresh, failed);
    if (failed)
        return false;
    std::filesystem::rename(fresh, link, failed);
    return !failed;
}

}  // namespace

struct ptyPort {
    fileDescriptor LockFile;
    fileDescriptor Master;
    // Held open so that the device sees no hang-up between one host and the next.
    fileDescriptor Slave;
    std::string Target;
    std::filesystem::path Link;
};

bool ptyAvailable()
{
    return true;
}

ptyPort* ptyOpen(std::string_view name, ptyFault& fault)
{
    auto port = std::make_unique<ptyPort>();
    const auto failed = [&](ptyFault what) {
        fault = what;
        return nullptr;
    };
    if (!IsName(name))
        return failed(ptyFault::Name);
    const std::filesystem::path folder = Folder();
    if (folder.empty())
        return failed(ptyFault::NoFolder);
    port->LockFile = Lock(folder, name);
    if (!port->LockFile.IsOpen())
        return failed(access(folder.c_str(), W_OK) == 0 ? ptyFault::Taken : ptyFault::NoFolder);
    port->Master = fileDescriptor(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    const int master = port->Master.Get();
    if (!port->Master.IsOpen() || grantpt(master) != 0 || unlockpt(master) != 0)
        return failed(ptyFault::System);
    port->Target = SlaveName(master);
    port->Slave = fileOpenDescriptor(port->Target, O_RDWR);
    if (!port->Slave.IsOpen() || !MakeRaw(port->Slave.Get()))
        return failed(ptyFault::System);
    if (!PutLink(folder / name, port->Target))
        return failed(ptyFault::Taken);
    port->Link = folder / name;
    fault = ptyFault::None;
    return port.release();
}

void ptyClose(ptyPort* port)
{
    const std::unique_ptr<ptyPort> owned(port);
    if (!owned)
        return;
    std::error_code failed;
    if (std::filesystem::read_symlink(owned->Link, failed) == owned->Target)
        std::filesystem::remove(owned->Link, failed);
}

size_t ptyRead(ptyPort* port, void* buffer, size_t count)
{
    const ssize_t got = read(port->Master.Get(), buffer, count);
    return got < 0 ? 0 : static_cast<size_t>(got);
}

size_t ptyWrite(ptyPort* port, const void* data, size_t count)
{
    if (count == 0)
        return 0;
    const ssize_t put = write(port->Master.Get(), data, count);
    if (put > 0)
        return static_cast<size_t>(put);
    // Full: nobody has the port open, or nobody reads. A real driver loses bytes here.
    ioctl(port->Slave.Get(), TCFLSH, TCIFLUSH);
    return 0;
}

ptySetting ptyHostSetting(ptyPort* port)
{
    constexpr uint8_t Two = 2;
    termios2 line = {};
    ptySetting setting;
    if (ioctl(port->Slave.Get(), TCGETS2, &line) != 0)
        return setting;
    setting.BaudRate = line.c_ospeed;
    setting.Odd = (line.c_cflag & PARODD) != 0;
    setting.StopBits = (line.c_cflag & CSTOPB) != 0 ? Two : uint8_t{1};
    return setting;
}
