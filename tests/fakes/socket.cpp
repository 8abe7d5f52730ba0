#include "platform/socket.h"

#include "tests/fakes/socketCall.h"

#include <algorithm>
#include <utility>

// From a new socket to its end, and what can be set on it.

namespace {

using fakes::network;
using fakes::socketCall;

constexpr uint32_t SendBuffer = 65536;

bool portIsTaken(uint16_t port)
{
    return std::any_of(network().Sockets.begin(), network().Sockets.end(),
                       [&](const auto& each) { return each.second->Port == port && !each.second->End; });
}

// What a connect would say at this moment.
uint32_t connectNow(fakes::socketState& socket, const socketAddress& address)
{
    const std::shared_ptr<fakes::socketState> listener = fakes::networkListener(address.Port);
    if (!listener && !network().Answering.contains(address.Port))
        return fakes::CodeRefused;
    if (socket.Port == 0)
        socket.Port = fakes::networkFreePort();
    const fakes::networkPair pair = fakes::networkConnect(socket.Port, address.Port);
    socket.End = pair.First;
    if (listener)
        listener->Waiting.push_back(pair.Second);
    else
        network().LastPeer[address.Port] = fakes::networkPeer(pair.Second);
    network().Changed.notify_all();
    return fakes::CodeNone;
}

}  // namespace

bool socketStart()
{
    const socketCall call("socketStart", {});
    if (!call)
        return false;
    ++network().Starts;
    return true;
}

void socketEnd()
{
    const socketCall call("socketEnd", {});
    --network().Starts;
}

socketHandle socketOpen()
{
    const socketCall call("socketOpen", {});
    if (!call)
        return socketNone;
    if (network().Starts == 0) {
        call.Fail(fakes::CodeNotStarted);
        return socketNone;
    }
    return fakes::networkAdd(std::make_shared<fakes::socketState>());
}

void socketClose(socketHandle handle)
{
    const socketCall call(handle, "socketClose", {});
    const std::shared_ptr<fakes::socketState> socket = fakes::networkSocket(handle);
    if (!socket)
        return;
    socket->Closed = true;
    if (socket->End)
        fakes::networkClose(*socket->End);
    for (const std::shared_ptr<fakes::end>& waiting : socket->Waiting)
        fakes::networkClose(*waiting);
    network().Sockets.erase(handle);
    network().Changed.notify_all();
}

bool socketConnect(socketHandle handle, const socketAddress& address)
{
    socketCall call(handle, "socketConnect", fakes::networkText(address));
    if (!call)
        return false;
    while (network().ConnectsBlocked) {
        if (!call.Wait())
            return false;
    }
    if (address.Family != socketFamily::IPv4)
        return call.Fail(fakes::CodeOtherFamily);
    if (call->End || call->Listens)
        return call.Fail(fakes::CodeIsConnected);
    const uint32_t code = connectNow(*call, address);
    return code == fakes::CodeNone || call.Fail(code);
}

bool socketBind(socketHandle handle, const socketAddress& address)
{
    const socketCall call(handle, "socketBind", fakes::networkText(address));
    if (!call)
        return false;
    if (address.Family != socketFamily::IPv4)
        return call.Fail(fakes::CodeOtherFamily);
    if (call->Port != 0)
        return call.Fail(fakes::CodeInvalid);
    if (address.Port != 0 && portIsTaken(address.Port))
        return call.Fail(fakes::CodeInUse);
    call->Port = address.Port != 0 ? address.Port : fakes::networkFreePort();
    return true;
}

bool socketListen(socketHandle handle, uint32_t backlog)
{
    const socketCall call(handle, "socketListen", std::to_string(backlog));
    if (!call)
        return false;
    if (call->End)
        return call.Fail(fakes::CodeIsConnected);
    if (call->Port == 0)
        call->Port = fakes::networkFreePort();
    call->Listens = true;
    return true;
}

socketHandle socketAccept(socketHandle handle, socketAddress& peer)
{
    socketCall call(handle, "socketAccept", {});
    if (!call)
        return socketNone;
    if (!call->Listens) {
        call.Fail(fakes::CodeInvalid);
        return socketNone;
    }
    if (!call.Await([&] { return !call->Waiting.empty(); }))
        return socketNone;
    const auto accepted = std::make_shared<fakes::socketState>();
    accepted->End = call->Waiting.front();
    accepted->Port = call->Port;
    call->Waiting.pop_front();
    peer = accepted->End->From;
    return fakes::networkAdd(accepted);
}

bool socketLocal(socketHandle handle, socketAddress& address)
{
    const socketCall call(handle, "socketLocal", {});
    if (!call)
        return false;
    address = fakes::networkLoopback(call->Port);
    return true;
}

bool socketSetNonBlocking(socketHandle handle)
{
    const socketCall call(handle, "socketSetNonBlocking", {});
    if (!call)
        return false;
    call->Blocks = false;
    return true;
}

bool socketShutdownSend(socketHandle handle)
{
    const socketCall call(handle, "socketShutdownSend", {});
    if (!call)
        return false;
    if (!call->End)
        return call.Fail(fakes::CodeNotConnected);
    call->End->Ended = true;
    network().Changed.notify_all();
    return true;
}

bool socketSendBuffer(socketHandle handle, uint32_t& size)
{
    const socketCall call(handle, "socketSendBuffer", {});
    if (!call)
        return false;
    size = SendBuffer;
    return true;
}

bool socketPending(socketHandle handle, uint32_t& code)
{
    const socketCall call(handle, "socketPending", {}, true);
    if (!call)
        return false;
    code = call->End ? std::exchange(call->End->Pending, fakes::CodeNone) : fakes::CodeNone;
    return true;
}

bool socketKeepAlive(socketHandle handle, bool on, uint32_t idleMs, uint32_t intervalMs)
{
    const std::string times = std::to_string(idleMs) + ' ' + std::to_string(intervalMs);
    const socketCall call(handle, "socketKeepAlive", (on ? "on " : "off ") + times);
    return static_cast<bool>(call);
}

uint32_t socketError()
{
    return fakes::socketLastFailure();
}

socketFault socketFaultOf(uint32_t code)
{
    struct faultRow {
        uint32_t Code;
        socketFault Fault;
    };
    constexpr faultRow Faults[] = {
        {fakes::CodeNone, socketFault::None},
        {fakes::CodeWouldBlock, socketFault::WouldBlock},
        {fakes::CodeShutdown, socketFault::Shutdown},
        {fakes::CodeNoSocket, socketFault::Lost},
        {10050, socketFault::Lost},
        {10052, socketFault::Lost},
        {10053, socketFault::Lost},
        {fakes::CodeReset, socketFault::Lost},
        {fakes::CodeNotConnected, socketFault::Lost},
        {10060, socketFault::Lost},
        {10065, socketFault::Lost},
    };
    for (const faultRow& row : Faults) {
        if (row.Code == code)
            return row.Fault;
    }
    return socketFault::Other;
}
