#include "platform/socket.h"

#include "platform/linux/socketName.h"
#include "platform/linux/socketTable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

// From a new socket to its end, and what can be set on it.

namespace {

template <typename value>
bool SetOption(const openSocket& socket, int level, int option, value content)
{
    return setsockopt(socket.Descriptor.Get(), level, option, &content, sizeof(content)) == 0;
}

bool GetOption(const openSocket& socket, int option, int& content)
{
    socklen_t size = sizeof(content);
    return getsockopt(socket.Descriptor.Get(), SOL_SOCKET, option, &content, &size) == 0;
}

// Takes the result of a connect that goes on without us. Closing the socket ends it: what is closed before
// the wait is seen here, and what is closed later wakes poll.
bool FinishConnect(const openSocket& socket, const sockaddr* address, socklen_t size)
{
    int error = 0;
    if (!socketAwait(socket, POLLOUT) || !GetOption(socket, SO_ERROR, error))
        return socketFailed(socket);
    if (error != 0)
        return socketFailed(socket.Closed ? EBADF : error);
    // The system takes a socket for connecting until it was asked once more.
    const bool connected = connect(socket.Descriptor.Get(), address, size) == 0 || errno == EISCONN;
    return (connected && !socket.Closed) || socketFailed(socket);
}

// The connection died before it was taken, or the network had a word for it; the next may be well.
bool IsOfOneConnection(int error)
{
    constexpr std::array Errors = {ECONNABORTED, EPROTO,   EHOSTDOWN, EHOSTUNREACH,
                                   ENETUNREACH,  ENETDOWN, ENONET};
    return std::find(Errors.begin(), Errors.end(), error) != Errors.end();
}

// The system counts in whole seconds, from 1 on, and to no more than this.
int KeepAliveSeconds(uint32_t milliseconds)
{
    constexpr uint32_t MsPerSecond = 1000;
    constexpr uint32_t Longest = 32767;
    const uint32_t seconds = milliseconds / MsPerSecond + (milliseconds % MsPerSecond != 0 ? 1 : 0);
    return static_cast<int>(std::clamp(seconds, 1u, Longest));
}

}  // namespace

bool socketStart()
{
    return true;
}

void socketEnd()
{
    // There is nothing to undo.
}

socketHandle socketOpen()
{
    return socketKeep(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP));
}

void socketClose(socketHandle handle)
{
    const std::shared_ptr<openSocket> socket = socketTake(handle);
    if (!socket)
        return;
    // In this order, so that a call which is under way sees the one or feels the other. Without such calls
    // the socket just goes, for then the peer is told if what it sent was never read.
    socket->Closed = true;
    if (socket.use_count() > 1)
        shutdown(socket->Descriptor.Get(), SHUT_RDWR);
}

bool socketConnect(socketHandle handle, const socketAddress& address)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    sockaddr_storage system = {};
    const socklen_t size = socketToSystem(address, system);
    if (size == 0)
        return socketFailed(EAFNOSUPPORT);
    const auto* const target = reinterpret_cast<const sockaddr*>(&system);
    if (connect(socket->Descriptor.Get(), target, size) == 0)
        return true;
    return errno == EINPROGRESS ? FinishConnect(*socket, target, size) : socketFailed(*socket);
}

bool socketBind(socketHandle handle, const socketAddress& address)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    sockaddr_storage system = {};
    const socklen_t size = socketToSystem(address, system);
    if (size == 0)
        return socketFailed(EAFNOSUPPORT);
    // Otherwise the system keeps an address for a minute after the last connection on it.
    const bool bound = SetOption(*socket, SOL_SOCKET, SO_REUSEADDR, 1) &&
                       bind(socket->Descriptor.Get(), reinterpret_cast<const sockaddr*>(&system), size) == 0;
    return bound || socketFailed(*socket);
}

bool socketListen(socketHandle handle, uint32_t backlog)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    const int length = static_cast<int>(std::min<uint32_t>(backlog, INT_MAX));
    if (listen(socket->Descriptor.Get(), length) != 0)
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
    int accepted = -1;
    do
        accepted = socketCall(*socket, POLLIN, [&] {
            socklen_t size = sizeof(system);
            return accept4(socket->Descriptor.Get(), reinterpret_cast<sockaddr*>(&system), &size,
                           SOCK_CLOEXEC | SOCK_NONBLOCK);
        });
    while (accepted < 0 && !socket->Closed && IsOfOneConnection(errno));
    if (accepted < 0) {
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
    socklen_t size = sizeof(system);
    if (getsockname(socket->Descriptor.Get(), reinterpret_cast<sockaddr*>(&system), &size) != 0)
        return socketFailed(*socket);
    return socketFromSystem(system, address) || socketFailed(EAFNOSUPPORT);
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
    return shutdown(socket->Descriptor.Get(), SHUT_WR) == 0 || socketFailed(*socket);
}

bool socketSendBuffer(socketHandle handle, uint32_t& size)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    int bytes = 0;
    if (!GetOption(*socket, SO_SNDBUF, bytes))
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
    if (!GetOption(*socket, SO_ERROR, error))
        return socketFailed(*socket);
    code = static_cast<uint32_t>(error);
    return true;
}

bool socketKeepAlive(socketHandle handle, bool on, uint32_t idleMs, uint32_t intervalMs)
{
    const std::shared_ptr<openSocket> socket = socketFind(handle);
    if (!socket)
        return false;
    const bool set = SetOption(*socket, IPPROTO_TCP, TCP_KEEPIDLE, KeepAliveSeconds(idleMs)) &&
                     SetOption(*socket, IPPROTO_TCP, TCP_KEEPINTVL, KeepAliveSeconds(intervalMs)) &&
                     SetOption(*socket, SOL_SOCKET, SO_KEEPALIVE, on ? 1 : 0);
    return set || socketFailed(*socket);
}
