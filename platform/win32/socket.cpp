#include "platform/socket.h"

#include "platform/win32/socketName.h"
#include "platform/win32/socketTable.h"

#include <algorithm>
#include <mstcpip.h>

// From a new socket to its end, and what can be set on it.

namespace {

bool option(const openSocket& socket, int name, int& content)
{
    int size = sizeof(content);
    return getsockopt(socket.System, SOL_SOCKET, name, reinterpret_cast<char*>(&content), &size) == 0;
}

// Waits for the end of a connect that goes on without us. The system's poll tells of no failed one; its
// select does.
bool awaitConnect(const openSocket& socket, bool& connected)
{
    for (;;) {
        fd_set good = {1, {socket.System}};
        fd_set bad = {1, {socket.System}};
        timeval turn = {0, socketTurnMs * 1000};
        if (socket.Closed || select(0, nullptr, &good, &bad, &turn) < 0)
            return socketFailed(socket);
        if (good.fd_count + bad.fd_count > 0) {
            connected = good.fd_count > 0;
            return !socket.Closed || socketFailed(socket);
        }
    }
}

bool finishConnect(const openSocket& socket)
{
    bool connected = false;
    if (!awaitConnect(socket, connected))
        return false;
    int error = 0;
    if (!option(socket, SO_ERROR, error))
        return socketFailed(socket);
    if (connected && error == 0)
        return true;
    return socketFailed(error != 0 ? error : WSAECONNREFUSED);
}

}  // namespace

bool socketStart()
{
    constexpr WORD Wanted = 0x0202;
    WSADATA data = {};
    const int error = WSAStartup(Wanted, &data);
    if (error != 0)
        return socketFailed(error);
    if (LOBYTE(data.wVersion) >= LOBYTE(Wanted))
        return true;
    WSACleanup();
    return socketFailed(WSAVERNOTSUPPORTED);
}

void socketEnd()
{
    WSACleanup();
}

socketHandle socketOpen()
{
    return socketKeep(WSASocketW(AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                                 WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT));
}

void socketClose(socketHandle handle)
{
    if (const std::shared_ptr<openSocket> socket = socketTake(handle))
        socket->Closed = true;
}

bool socketConnect(socketHandle handle, const socketAddress& address)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    sockaddr_storage system = {};
    const int size = socketToSystem(address, system);
    if (size == 0)
        return socketFailed(WSAEAFNOSUPPORT);
    if (connect(socket->System, reinterpret_cast<const sockaddr*>(&system), size) == 0)
        return true;
    return WSAGetLastError() == WSAEWOULDBLOCK ? finishConnect(*socket) : socketFailed(*socket);
}

bool socketBind(socketHandle handle, const socketAddress& address)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    sockaddr_storage system = {};
    const int size = socketToSystem(address, system);
    if (size == 0)
        return socketFailed(WSAEAFNOSUPPORT);
    // Otherwise another program could take the same address and get half of the visitors.
    const BOOL on = TRUE;
    const bool bound = setsockopt(socket->System, SOL_SOCKET, SO_EXCLUSIVEADDRUSE,
                                  reinterpret_cast<const char*>(&on), sizeof(on)) == 0 &&
                       bind(socket->System, reinterpret_cast<const sockaddr*>(&system), size) == 0;
    return bound || socketFailed(*socket);
}

bool socketListen(socketHandle handle, uint32_t backlog)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    if (listen(socket->System, static_cast<int>(std::min<uint32_t>(backlog, SOMAXCONN))) != 0)
        return socketFailed(*socket);
    socket->Listens = true;
    return true;
}

socketHandle socketAccept(socketHandle handle, socketAddress& peer)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return socketNone;
    sockaddr_storage system = {};
    SOCKET accepted = INVALID_SOCKET;
    const auto accepting = [&] {
        int size = sizeof(system);
        return accept(socket->System, reinterpret_cast<sockaddr*>(&system), &size);
    };
    const auto isGood = [](SOCKET result) { return result != INVALID_SOCKET; };
    // A connection that died before it was taken says nothing about the next.
    do
        accepted = socketCall(*socket, POLLIN, accepting, isGood);
    while (accepted == INVALID_SOCKET && !socket->Closed && WSAGetLastError() == WSAECONNRESET);
    if (accepted == INVALID_SOCKET) {
        socketFailed(*socket);
        return socketNone;
    }
    socketFromSystem(system, peer);
    return socketKeep(accepted);
}

bool socketLocal(socketHandle handle, socketAddress& address)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    sockaddr_storage system = {};
    int size = sizeof(system);
    if (getsockname(socket->System, reinterpret_cast<sockaddr*>(&system), &size) != 0)
        return socketFailed(*socket);
    return socketFromSystem(system, address) || socketFailed(WSAEAFNOSUPPORT);
}

bool socketSetNonBlocking(socketHandle handle)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    socket->Blocks = false;
    return true;
}

bool socketShutdownSend(socketHandle handle)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    return shutdown(socket->System, SD_SEND) == 0 || socketFailed(*socket);
}

bool socketSendBuffer(socketHandle handle, uint32_t& size)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    int bytes = 0;
    if (!option(*socket, SO_SNDBUF, bytes))
        return socketFailed(*socket);
    size = static_cast<uint32_t>(bytes);
    return true;
}

bool socketPending(socketHandle handle, uint32_t& code)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    int error = 0;
    if (!option(*socket, SO_ERROR, error))
        return socketFailed(*socket);
    code = static_cast<uint32_t>(error);
    return true;
}

bool socketKeepAlive(socketHandle handle, bool on, uint32_t idleMs, uint32_t intervalMs)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    tcp_keepalive values = {on ? 1u : 0u, idleMs, intervalMs};
    DWORD returned = 0;
    return WSAIoctl(socket->System, SIO_KEEPALIVE_VALS, &values, sizeof(values), nullptr, 0, &returned,
                    nullptr, nullptr) == 0 ||
           socketFailed(*socket);
}
