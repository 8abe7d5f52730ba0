// What the functions on sockets share: the sockets behind the handles, waiting, and the last failure.
//
// The system's own sockets never block. A call on one that blocks for its caller waits in short turns and
// looks whether the socket was closed meanwhile: ending a socket under a call that uses it would hand its
// number to the next one. The last such call ends it.
#pragma once

#include "platform/socket.h"

#include <atomic>
#include <memory>
#include <winsock2.h>
#include <ws2tcpip.h>

struct openSocket {
    explicit openSocket(SOCKET system) : System(system) {}
    ~openSocket() { closesocket(System); }
    openSocket(const openSocket&) = delete;
    openSocket& operator=(const openSocket&) = delete;

    const SOCKET System;
    std::atomic<bool> Closed{false};
    std::atomic<bool> Blocks{true};
    std::atomic<bool> Listens{false};
};

// The longest that a wait does not look whether its socket was closed.
constexpr unsigned socketTurnMs = 25;

// Makes the system's socket one that does not block, and gives it a handle; socketNone, with the failure
// noted, when there is none.
socketHandle socketKeep(SOCKET system);

// Null, with the failure noted, for a handle that is not open.
std::shared_ptr<openSocket> socketFind(socketHandle handle);

// The same, for the one caller that ends it.
std::shared_ptr<openSocket> socketTake(socketHandle handle);

// Notes the failure of the system's last call, or that the socket was closed under it. False, for the caller
// to hand on.
bool socketFailed(const openSocket& socket);
bool socketFailed(int error);

// Waits without limit until the socket is ready for `events` or has failed; false when it was closed.
bool socketAwait(const openSocket& socket, short events);

// Repeats a call of the system that gives a socket or a count, as long as it is not ready for `events`, on a
// socket that blocks. `isGood` tells from its result whether it worked.
template <typename call, typename question>
auto socketCall(const openSocket& socket, short events, const call& work, const question& isGood)
{
    for (;;) {
        const auto result = work();
        if (isGood(result) || WSAGetLastError() != WSAEWOULDBLOCK)
            return result;
        if (!socket.Blocks || !socketAwait(socket, events))
            return result;
    }
}
