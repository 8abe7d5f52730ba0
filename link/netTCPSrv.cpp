#include "link/netTCPSrv.h"

#include "platform/thread.h"

namespace {

constexpr uint32_t PollMs = 10;
constexpr uint32_t Backlog = 0x7FFFFFFF;

}  // namespace

netTCPSrv::~netTCPSrv()
{
    Stop(true);
}

void netTCPSrv::SetPort(uint16_t port)
{
    Port = port;
    if (Is(Connected))
        Listen();
}

void netTCPSrv::Listen()
{
    const bool listening = Is(Connected);
    EndThread([] {});
    if (listening)
        DisconnectClients(false);
    Set(Connecting);
    Begin("server", [this] { Run(); });
}

void netTCPSrv::Stop(bool final)
{
    if (final)
        EndThread([] {});
    else
        CloseSocket();
    DisconnectClients(final);
}

// All are told before any is waited for.
void netTCPSrv::DisconnectClients(bool final)
{
    const std::lock_guard lock(ClientsLock);
    for (const auto& client : Clients) {
        if (final)
            client->Abandon();
    }
    for (const auto& client : Clients)
        client->Disconnect(final);
}

void netTCPSrv::Raise(uint32_t event)
{
    if (OnEvent)
        OnEvent(event);
}

void netTCPSrv::Run()
{
    Set(ThreadBegun);
    if (Prepare()) {
        Set(Connected);
        Clear(Connecting);
        Raise(EventListening);
        AcceptAll();
    } else {
        TellError("");
        Raise(EventFailed);
    }
    CloseSocket();
    Bound = 0;
    Raise(EventStopped);
    Clear(Connecting | Connected);
    Set(ThreadEnded);
}

bool netTCPSrv::Prepare()
{
    const socketHandle socket = socketOpen();
    Socket = socket;
    socketAddress address;
    address.Port = Port;
    if (socket == socketNone || !socketBind(socket, address) || !socketListen(socket, Backlog))
        return false;
    socketAddress local;
    if (socketLocal(socket, local))
        Bound = local.Port;
    socketSetNonBlocking(socket);
    return true;
}

void netTCPSrv::AcceptAll()
{
    for (socketHandle socket = Socket;; socket = Socket) {
        socketAddress peer;
        const socketHandle accepted = socketAccept(socket, peer);
        if (accepted != socketNone) {
            Take(accepted, peer);
            if (Socket == socketNone)
                return;
            continue;
        }
        const socketFault fault = socketFaultOf(socketError());
        if (fault != socketFault::WouldBlock && fault != socketFault::None) {
            TellError("");
            Raise(EventAcceptFailed);
            return;
        }
        threadSleep(PollMs);
    }
}

void netTCPSrv::Take(socketHandle socket, const socketAddress& peer)
{
    const unsigned live = CountClients();
    const bool full = MaxClients != 0 && live >= MaxClients;
    const bool rejected = full || (OnAccepting && !OnAccepting(peer));
    auto made = std::make_unique<netTCPCli>(rejected ? Accepted | Rejected : Accepted);
    netTCPCli& client = *made;
    client.Adopt(socket, peer);
    if (!rejected && OnAccepted)
        OnAccepted(client);
    // Begun and listed as one step: who ends the server now finds a connection that can be ended, and one
    // that comes too late for that is ended here.
    const std::lock_guard lock(ClientsLock);
    Clients.push_back(std::move(made));
    client.Connect();
    if (Socket == socketNone)
        client.Disconnect(false);
}

// Drops the connections that have ended.
unsigned netTCPSrv::CountClients()
{
    const std::lock_guard lock(ClientsLock);
    std::erase_if(Clients, [](const auto& client) { return !client->IsAlive(); });
    unsigned count = 0;
    for (const auto& client : Clients) {
        if (!client->Is(Rejected))
            ++count;
    }
    return count;
}
