#include "platform/linux/socketTable.h"

#include "platform/handleTable.h"

#include <cerrno>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

thread_local uint32_t LastFailure = 0;

// Never destroyed, for static objects may close their socket after the end of main.
handleTable<openSocket>& Sockets()
{
    static handleTable<openSocket>& only = *new handleTable<openSocket>;
    return only;
}

// A program that was started without its standard streams would send its messages to the peer.
fileDescriptor AwayFromStreams(int descriptor)
{
    if (descriptor < 0 || descriptor > STDERR_FILENO)
        return fileDescriptor(descriptor);
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(descriptor);
    errno = error;
    return fileDescriptor(moved);
}

}  // namespace

socketHandle socketKeep(int descriptor)
{
    const auto socket = std::make_shared<openSocket>();
    socket->Descriptor = AwayFromStreams(descriptor);
    if (!socket->Descriptor.IsOpen()) {
        socketFailed(errno);
        return socketNone;
    }
    // A short message is not held back until the one before has been acknowledged.
    const int on = 1;
    setsockopt(socket->Descriptor.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return Sockets().Add(socket);
}

std::shared_ptr<openSocket> socketFind(socketHandle handle)
{
    std::shared_ptr<openSocket> socket = Sockets().Find(handle);
    if (!socket)
        socketFailed(EBADF);
    return socket;
}

std::shared_ptr<openSocket> socketTake(socketHandle handle)
{
    return Sockets().Take(handle);
}

bool socketFailed(const openSocket& socket)
{
    return socketFailed(socket.Closed ? EBADF : errno);
}

bool socketFailed(int error)
{
    LastFailure = static_cast<uint32_t>(error);
    return false;
}

bool socketAwait(const openSocket& socket, short events)
{
    pollfd each = {socket.Descriptor.Get(), events, 0};
    int ready = -1;
    // A socket that is closed from here on is ready at once.
    while (!socket.Closed && ready <= 0) {
        ready = poll(&each, 1, -1);
        if (ready < 0 && errno != EINTR)
            return false;
    }
    return !socket.Closed;
}

uint32_t socketError()
{
    return LastFailure;
}
