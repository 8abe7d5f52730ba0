#include "platform/win32/socketTable.h"

#include "platform/handleTable.h"

namespace {

thread_local uint32_t lastFailure = 0;

// Never destroyed, for static objects may close their socket after the end of main.
handleTable<openSocket>& sockets()
{
    static handleTable<openSocket>& only = *new handleTable<openSocket>;
    return only;
}

}  // namespace

socketHandle socketKeep(SOCKET system)
{
    if (system == INVALID_SOCKET) {
        socketFailed(WSAGetLastError());
        return socketNone;
    }
    const auto socket = std::make_shared<openSocket>(system);
    u_long on = 1;
    if (ioctlsocket(system, static_cast<long>(FIONBIO), &on) != 0) {
        socketFailed(WSAGetLastError());
        return socketNone;
    }
    // A short message is not held back until the one before has been acknowledged.
    const BOOL noDelay = TRUE;
    setsockopt(system, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&noDelay), sizeof noDelay);
    return sockets().Add(socket);
}

std::shared_ptr<openSocket> socketFind(socketHandle handle)
{
    std::shared_ptr<openSocket> socket = sockets().Find(handle);
    if (!socket)
        socketFailed(WSAENOTSOCK);
    return socket;
}

std::shared_ptr<openSocket> socketTake(socketHandle handle)
{
    return sockets().Take(handle);
}

bool socketFailed(const openSocket& socket)
{
    return socketFailed(socket.Closed ? WSAENOTSOCK : WSAGetLastError());
}

bool socketFailed(int error)
{
    lastFailure = static_cast<uint32_t>(error);
    return false;
}

bool socketAwait(const openSocket& socket, short events)
{
    WSAPOLLFD each = {socket.System, events, 0};
    int ready = 0;
    while (!socket.Closed && ready == 0)
        ready = WSAPoll(&each, 1, socketTurnMs);
    return !socket.Closed && ready > 0;
}

uint32_t socketError()
{
    return lastFailure;
}
