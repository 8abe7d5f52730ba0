// What the functions on sockets share: the sockets behind the handles, waiting, and the last failure.
//
// The system's own sockets never block. A call on one that blocks for its caller waits in poll, from which
// socketClose frees it by ending the connection; the descriptor stays until the last such call has left.
#pragma once

#include "platform/linux/fileSystem.h"
#include "platform/socket.h"

#include <atomic>
#include <cerrno>
#include <memory>

struct openSocket {
    fileDescriptor Descriptor;
    std::atomic<bool> Closed{false};
    std::atomic<bool> Blocks{true};
    std::atomic<bool> Listens{false};
};

// Gives the system's socket a handle; socketNone, with the failure in `errno` noted, when there is none.
socketHandle socketKeep(int descriptor);

// Null, with the failure noted, for a handle that is not open.
std::shared_ptr<openSocket> socketFind(socketHandle handle);

// The same, for the one caller that ends it.
std::shared_ptr<openSocket> socketTake(socketHandle handle);

// Notes the failure of a call in `errno`, or that the socket was closed under it. False, for the caller to
// hand on.
bool socketFailed(const openSocket& socket);
bool socketFailed(int error);

// Waits without limit until the socket is ready for `events` or has failed; false when it was closed.
bool socketAwait(const openSocket& socket, short events);

// Repeats a call of the system, which gives -1 and `errno`, as long as it is interrupted and, on a socket
// that blocks, as long as it is not ready for `events`.
template <typename call>
auto socketCall(const openSocket& socket, short events, const call& work)
{
    for (;;) {
        const auto result = work();
        if (result >= 0 || (errno != EINTR && errno != EAGAIN))
            return result;
        if (errno == EAGAIN && (!socket.Blocks || !socketAwait(socket, events)))
            return result;
    }
}
