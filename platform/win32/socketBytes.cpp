// What goes over a connection, and waiting for it.
#include "platform/clock.h"
#include "platform/socket.h"
#include "platform/win32/socketTable.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int64_t NsPerMs = 1'000'000;

// The system counts in its own type.
int counted(size_t count)
{
    return static_cast<int>(std::min<size_t>(count, std::numeric_limits<int>::max()));
}

bool isCount(int result)
{
    return result >= 0;
}

bool hasBytes(const openSocket& socket)
{
    u_long bytes = 0;
    return ioctlsocket(socket.System, FIONREAD, &bytes) == 0 && bytes > 0;
}

// The system may tell of the end while bytes before it were not read.
socketEvents eventsOf(const openSocket& socket, short seen)
{
    socketEvents events;
    events.Writable = (seen & POLLWRNORM) != 0;
    const bool ended = (seen & (POLLHUP | POLLERR | POLLNVAL)) != 0;
    if (socket.Listens)
        events.Readable = (seen & POLLRDNORM) != 0;
    else if (ended || (seen & POLLRDNORM) != 0)
        events.Readable = hasBytes(socket);
    events.HungUp = ended && !events.Readable;
    return events;
}

bool hasEvent(const socketEvents& events)
{
    return events.Readable || events.Writable || events.HungUp;
}

// What is left of the time, rounded up, but no more than one turn.
int nextTurn(int64_t deadline)
{
    const int64_t left = deadline - clockSteadyNs();
    return static_cast<int>(std::clamp<int64_t>((left + NsPerMs - 1) / NsPerMs, 0, socketTurnMs));
}

}  // namespace

int64_t socketSend(socketHandle handle, const void* data, size_t count)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return -1;
    const auto sending = [&] {
        return send(socket->System, static_cast<const char*>(data), counted(count), 0);
    };
    const int sent = socketCall(*socket, POLLWRNORM, sending, isCount);
    if (sent < 0)
        socketFailed(*socket);
    return sent;
}

int64_t socketReceive(socketHandle handle, void* buffer, size_t count)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return -1;
    const auto receiving = [&] {
        return recv(socket->System, static_cast<char*>(buffer), counted(count), 0);
    };
    const int got = socketCall(*socket, POLLRDNORM, receiving, isCount);
    if (got < 0)
        socketFailed(*socket);
    return got;
}

bool socketAvailable(socketHandle handle, uint32_t& count)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    u_long bytes = 0;
    if (ioctlsocket(socket->System, FIONREAD, &bytes) != 0)
        return socketFailed(*socket);
    count = bytes;
    return true;
}

int socketPoll(socketHandle handle, bool wantWritable, uint32_t milliseconds, socketEvents& events)
{
    events = {};
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return -1;
    const int64_t deadline = clockSteadyNs() + milliseconds * NsPerMs;
    const int wanted = POLLRDNORM | POLLRDBAND | (wantWritable ? POLLWRNORM : 0);
    for (;;) {
        WSAPOLLFD each = {socket->System, static_cast<short>(wanted), 0};
        const int ready = WSAPoll(&each, 1, nextTurn(deadline));
        if (socket->Closed || ready < 0) {
            socketFailed(*socket);
            return -1;
        }
        if (ready > 0)
            events = eventsOf(*socket, each.revents);
        if (hasEvent(events))
            return 1;
        if (clockSteadyNs() >= deadline)
            return 0;
    }
}
