// The life of a connection: its thread, its attempts, its end. What is sent stands in netTCPCliSend.cpp,
// where it leads in netTCPCliAddress.cpp.
#include "link/netTCPCli.h"

#include "platform/clock.h"
#include "platform/thread.h"

#include <algorithm>

namespace {

constexpr uint32_t PollMs = 10;
constexpr uint32_t KeepAliveSeconds = 7200;
constexpr uint32_t KeepAliveIntervalMs = 1000;
constexpr size_t DropSize = 16;
constexpr int64_t NsPerMs = 1'000'000;

}  // namespace

netTCPCli::netTCPCli(uint32_t flags)
{
    Set(flags);
}

netTCPCli::~netTCPCli()
{
    Disconnect(true);
    CloseSocket();
    DropQueue();
}

void netTCPCli::Adopt(socketHandle socket, const socketAddress& peer)
{
    SetAddress(peer);
    // Others may send before the thread of this connection runs, and must not wait for the peer.
    socketSetNonBlocking(socket);
    Socket = socket;
}

void netTCPCli::Connect()
{
    if (IsAlive()) {
        Set(Disconnecting);
        Interrupt();
        Clear(Disconnecting);
        if (Is(ThreadEnded))
            Thread.Join();
        if (RetryMs != 0)
            return;
    }
    Thread.Join();
    Begin("connection", [this] { Run(); });
}

// Ends what the thread is doing, so that it goes on to its next attempt.
void netTCPCli::Interrupt()
{
    WaitWhileConnecting();
    const socketHandle socket = Socket;
    if (Is(Connecting))
        CloseSocket();
    else if (Is(Connected) && socket != socketNone)
        SayFarewell(socket);
    else
        WaitEvent.Signal();
}

// Handles are never used again, so what is noted here cannot be taken for the farewell of a later connection.
void netTCPCli::SayFarewell(socketHandle socket)
{
    if (ToldSocket != socket) {
        ToldAtNs = clockSteadyNs();
        ToldSocket = socket;
    }
    socketShutdownSend(socket);
}

bool netTCPCli::IsForsaken(socketHandle socket) const
{
    return ToldSocket == socket && clockSteadyNs() - ToldAtNs >= FarewellMs * NsPerMs;
}

// Until there is a socket that can be closed, or nothing to close any more.
void netTCPCli::WaitWhileConnecting()
{
    while (Is(Connecting) && Socket == socketNone && !Thread.IsCaller())
        threadSleep(PollMs);
}

void netTCPCli::Disconnect(bool final)
{
    Set(Disconnecting);
    if (final) {
        RetryMs = 0;
        if (Thread.IsCaller())
            CloseSocket();
        else
            EndThread([this] { WaitEvent.Signal(); });
    } else if (IsAlive()) {
        Interrupt();
    }
    Clear(Disconnecting);
    if (Is(ThreadEnded))
        Thread.Join();
}

void netTCPCli::SetKeepAlive(bool on, uint32_t seconds)
{
    if (!Is(Connected | Accepted) || Is(Finished))
        return;
    const uint32_t idle = seconds == 0 ? KeepAliveSeconds : seconds;
    socketKeepAlive(Socket, on, idle * 1000, KeepAliveIntervalMs);
}

void netTCPCli::Raise(uint32_t event)
{
    if (OnEvent)
        OnEvent(event);
}

void netTCPCli::Run()
{
    // An accepted connection can be ended from its first moment: it has a socket, and nobody would end it
    // later.
    Set(Is(Accepted) ? ThreadBegun | Connecting : ThreadBegun);
    // A signal for a thread that has gone is not for this one.
    WaitEvent.Wait(0);
    do {
        if (Is(Disconnecting) && !Is(Accepted))
            threadSleep(PollMs);
        else
            Attempt();
    } while (RetryMs != 0);
    Set(ThreadEnded);
}

void netTCPCli::Attempt()
{
    // To an accepted connection others may have sent before its thread began.
    if (!Is(Accepted)) {
        QueuedBytes = 0;
        TxBytes = 0;
        RxBytes = 0;
        Clear(Finished);
    }
    Set(Connecting);
    if (Is(Accepted) || Reach())
        Serve();
    else
        Raise(EventFailed);
    EndConnection();
}

bool netTCPCli::Reach()
{
    if (OnConnecting && OnConnecting())
        return false;
    const socketHandle socket = socketOpen();
    Socket = socket;
    return socketConnect(socket, GetAddress());
}

void netTCPCli::Serve()
{
    const socketHandle socket = Socket;
    uint32_t size = 0;
    SendBufSize = socketSendBuffer(socket, size) ? size : 0;
    socketSetNonBlocking(socket);
    Set(Connected);
    Clear(Connecting);
    Raise(EventConnected);
    if (Is(Rejected))
        Disconnect(false);
    while (Socket != socketNone && !Is(Finished)) {
        if (!Turn(socket))
            break;
    }
}

// One look at the socket; false when the connection is over.
bool netTCPCli::Turn(socketHandle socket)
{
    socketEvents events;
    if (IsForsaken(socket))
        return false;
    const int result = socketPoll(socket, SendQueue != nullptr, PollMs, events);
    if (result < 0)
        return false;
    if (result == 0)
        return IsSound(socket);
    if (events.HungUp)
        return false;
    if (events.Readable && !TakeData())
        return false;
    return !events.Writable || SendQueued(socket);
}

bool netTCPCli::TakeData()
{
    Set(DataWaiting);
    if (OnEvent) {
        Raise(EventData);
    } else {
        uint8_t dropped[DropSize];
        Receive(dropped, sizeof dropped);
    }
    return !Is(Finished);
}

size_t netTCPCli::Receive(uint8_t* buffer, size_t size)
{
    if (!Is(DataWaiting))
        return 0;
    Clear(DataWaiting);
    const socketHandle socket = Socket;
    uint32_t available = 0;
    size_t count = size;
    if (socketAvailable(socket, available))
        count = std::min<size_t>(available, size);
    const int64_t received = socketReceive(socket, buffer, count);
    if (received <= 0) {
        Set(Finished);
        return 0;
    }
    RxBytes += static_cast<uint64_t>(received);
    return static_cast<size_t>(received);
}

bool netTCPCli::IsSound(socketHandle socket)
{
    uint32_t code = 0;
    if (!socketPending(socket, code)) {
        TellError("Fatal error after select timeout - ");
        return false;
    }
    return socketFaultOf(code) != socketFault::Lost;
}

void netTCPCli::EndConnection()
{
    CloseSocket();
    Clear(Connecting | Connected);
    Raise(EventDisconnected);
    DropQueue();
    Clear(Finished);
    if (!Is(Accepted) && RetryMs != 0)
        WaitEvent.Wait(RetryMs);
}
