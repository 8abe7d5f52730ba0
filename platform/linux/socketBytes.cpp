// What goes over a connection, and waiting for it.
#include "platform/linux/socketTable.h"
#include "platform/socket.h"

#include "platform/clock.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace {

constexpr int64_t NsPerMs = 1'000'000;

int BytesToRead(const openSocket& socket)
{
    int bytes = 0;
    return ioctl(socket.Descriptor.Get(), FIONREAD, &bytes) == 0 ? bytes : 0;
}

// The system tells of the end as soon as it knows it, with bytes before it that were not read.
socketEvents EventsOf(const openSocket& socket, short seen)
{
    socketEvents events;
    events.Writable = (seen & POLLOUT) != 0;
    const bool ended = (seen & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
    if (socket.Listens)
        events.Readable = (seen & POLLIN) != 0;
    else if (ended || (seen & POLLIN) != 0)
        events.Readable = BytesToRead(socket) > 0;
    events.HungUp = ended && !events.Readable;
    return events;
}

bool HasEvent(const socketEvents& events)
{
    return events.Readable || events.Writable || events.HungUp;
}

// What is left until the deadline, rounded up: the system would wake too early.
int MillisecondsUntil(int64_t deadline)
{
    constexpr int64_t Longest = 60LL * 60 * 1000;
    const int64_t left = deadline - clockSteadyNs();
    return static_cast<int>(std::clamp<int64_t>((left + NsPerMs - 1) / NsPerMs, 0, Longest));
}

}  // namespace

int64_t socketSend(socketHandle handle, const void* data, size_t count)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return -1;
    const ssize_t sent = socketCall(
        *socket, POLLOUT, [&] { return send(socket->Descriptor.Get(), data, count, MSG_NOSIGNAL); });
    if (sent < 0)
        socketFailed(*socket);
    return sent;
}

int64_t socketReceive(socketHandle handle, void* buffer, size_t count)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return -1;
    const ssize_t got =
        socketCall(*socket, POLLIN, [&] { return recv(socket->Descriptor.Get(), buffer, count, 0); });
    // Closing it looks from here as if the peer had ended.
    if (got < 0 || (got == 0 && socket->Closed)) {
        socketFailed(*socket);
        return -1;
    }
    return got;
}

bool socketAvailable(socketHandle handle, uint32_t& count)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    int bytes = 0;
    if (ioctl(socket->Descriptor.Get(), FIONREAD, &bytes) != 0)
        return socketFailed(*socket);
    count = static_cast<uint32_t>(bytes);
    return true;
}

int socketPoll(socketHandle handle, bool wantWritable, uint32_t milliseconds, socketEvents& events)
{
    events = {};
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return -1;
    const int64_t deadline = clockSteadyNs() + milliseconds * NsPerMs;
    const int wanted = POLLIN | POLLRDHUP | (wantWritable ? POLLOUT : 0);
    for (;;) {
        pollfd each = {socket->Descriptor.Get(), static_cast<short>(wanted), 0};
        const int ready = poll(&each, 1, MillisecondsUntil(deadline));
        if (socket->Closed || (ready < 0 && errno != EINTR)) {
            socketFailed(*socket);
            return -1;
        }
        if (ready > 0)
            events = EventsOf(*socket, each.revents);
        if (HasEvent(events))
            return 1;
        if (clockSteadyNs() >= deadline)
            return 0;
    }
}
