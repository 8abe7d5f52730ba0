#include "platform/comm.h"

#include "platform/handleTable.h"
#include "platform/linux/commDevices.h"
#include "platform/linux/commLine.h"
#include "platform/linux/fileSystem.h"

#include <atomic>
#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// What the system does with the lines of a port when it opens one.
constexpr uint32_t FlagsAtFirst = commFlag::DTREnable | commFlag::RTSEnable;

struct serialLine {
    fileDescriptor Line;
    fileDescriptor Wake;     // readable from commClose on
    bool IsVirtual = false;  // a link to a terminal that another program holds open
    std::atomic<bool> Closed{false};
    std::atomic<unsigned> Waiting{0};  // writes that wait for room
    std::mutex Settings;
    uint32_t Flags = FlagsAtFirst;
};

// Never destroyed, for static objects may close their port after the end of main.
handleTable<serialLine>& Lines()
{
    static handleTable<serialLine>& only = *new handleTable<serialLine>;
    return only;
}

bool IsName(std::string_view name)
{
    constexpr std::string_view Separators("/\\\0", 3);
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(Separators) == std::string_view::npos;
}

bool IsSomething(const std::string& path)
{
    struct stat state = {};
    return lstat(path.c_str(), &state) == 0;
}

// A virtual port goes before a device of the same name, or it could not be reached. In a folder that cannot
// be looked into, as that of another person, there is none.
fileDescriptor OpenNamed(const std::string& name, bool& isVirtual)
{
    isVirtual = false;
    const std::string folder = commSystemPlaces().Virtual;
    if (!folder.empty()) {
        const std::string path = folder + '/' + name;
        fileDescriptor line = fileOpenDescriptor(path, O_RDWR);
        isVirtual = line.IsOpen();
        if (isVirtual || (errno != ENOENT && IsSomething(path)))
            return line;
    }
    return fileOpenDescriptor("/dev/" + name, O_RDWR);
}

// Away from the standard streams: in a program that was started without them, a message to one would count as
// a close of the port.
fileDescriptor NewWake()
{
    const fileDescriptor wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    return fileDescriptor(fcntl(wake.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

// The lock keeps out whoever looks at it, an administrator too; the exclusive mode all others. A virtual port
// would stay in that mode when this program is killed, since its maker keeps it open.
bool TakeAlone(const serialLine& port)
{
    if (flock(port.Line.Get(), LOCK_EX | LOCK_NB) != 0)
        return false;
    return port.IsVirtual || ioctl(port.Line.Get(), TIOCEXCL) == 0;
}

// From here on another may open the port, although calls that are under way still hold its descriptor.
void GiveBack(const serialLine& port)
{
    if (!port.IsVirtual)
        ioctl(port.Line.Get(), TIOCNXCL);
    flock(port.Line.Get(), LOCK_UN);
}

// Waits for room in the driver's queue; false when the port is closed.
bool AwaitRoom(serialLine& port)
{
    pollfd both[] = {{port.Line.Get(), POLLOUT, 0}, {port.Wake.Get(), POLLIN, 0}};
    ++port.Waiting;
    int ready = -1;
    do
        ready = poll(both, std::size(both), -1);
    while (ready < 0 && errno == EINTR);
    --port.Waiting;
    return ready > 0 && both[1].revents == 0;
}

}  // namespace

commHandle commOpen(std::string_view name)
{
    if (!IsName(name))
        return commNone;
    const auto port = std::make_shared<serialLine>();
    port->Line = OpenNamed(std::string(name), port->IsVirtual);
    port->Wake = NewWake();
    if (!port->Line.IsOpen() || !port->Wake.IsOpen() || !TakeAlone(*port))
        return commNone;
    if (!commLineMakeRaw(port->Line.Get())) {
        GiveBack(*port);
        return commNone;
    }
    commLineFlush(port->Line.Get(), false);
    return Lines().Add(port);
}

void commClose(commHandle handle)
{
    const std::shared_ptr<serialLine> port = Lines().Take(handle);
    if (!port)
        return;
    port->Closed = true;
    // The system's close waits until everything is sent, which on a dead line is half a minute.
    commLineFlush(port->Line.Get(), port->Waiting != 0 || !commLineDrainsSoon(port->Line.Get()));
    GiveBack(*port);
    eventfd_write(port->Wake.Get(), 1);
}

bool commDefault(commHandle handle, commControl& control)
{
    if (!Lines().Find(handle))
        return false;
    control = {};
    control.Flags = FlagsAtFirst;
    return true;
}

bool commGetControl(commHandle handle, commControl& control)
{
    const std::shared_ptr<serialLine> port = Lines().Find(handle);
    if (!port)
        return false;
    const std::lock_guard lock(port->Settings);
    return commLineGet(port->Line.Get(), port->Flags, control);
}

bool commSetControl(commHandle handle, const commControl& control)
{
    const std::shared_ptr<serialLine> port = Lines().Find(handle);
    if (!port)
        return false;
    const std::lock_guard lock(port->Settings);
    return commLineSet(port->Line.Get(), control, port->Flags);
}

bool commQueueLimits(commHandle handle, commQueue& limits)
{
    if (!Lines().Find(handle))
        return false;
    limits = {};
    return true;
}

void commSetQueues(commHandle, const commQueue&)
{
    // The driver's queues are of one size.
}

void commSetEvents(commHandle, uint32_t)
{
    // There are no such notes.
}

bool commPending(commHandle handle, commLevel& level)
{
    const std::shared_ptr<serialLine> port = Lines().Find(handle);
    return port && commLineLevel(port->Line.Get(), level);
}

bool commRead(commHandle handle, void* buffer, uint32_t count, uint32_t& done)
{
    done = 0;
    const std::shared_ptr<serialLine> port = Lines().Find(handle);
    if (!port)
        return false;
    char* const target = static_cast<char*>(buffer);
    // The driver gives a page at a time.
    while (done < count) {
        const ssize_t got = read(port->Line.Get(), target + done, count - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0 && errno == EAGAIN)
            break;
        // A port that has gone gives the end of a file.
        if (got <= 0)
            return done > 0;
        done += static_cast<uint32_t>(got);
    }
    return true;
}

bool commWrite(commHandle handle, const void* data, uint32_t count, uint32_t& done)
{
    done = 0;
    const std::shared_ptr<serialLine> port = Lines().Find(handle);
    if (!port)
        return false;
    const char* const source = static_cast<const char*>(data);
    while (done < count && !port->Closed) {
        const ssize_t put = write(port->Line.Get(), source + done, count - done);
        if (put >= 0)
            done += static_cast<uint32_t>(put);
        else if (errno == EAGAIN ? !AwaitRoom(*port) : errno != EINTR)
            return false;
    }
    return done == count;
}

bool commModemStatus(commHandle handle, uint32_t& status)
{
    const std::shared_ptr<serialLine> port = Lines().Find(handle);
    return port && commLineModem(port->Line.Get(), status);
}

std::vector<commDevice> commDevices(unsigned deviceClass)
{
    // The other classes are a division of another system.
    return deviceClass == 0 ? commDevicesIn(commSystemPlaces()) : std::vector<commDevice>();
}

std::string_view commNamePrefix()
{
    return "tty";
}
