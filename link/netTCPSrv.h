// A TCP server: a thread that accepts, and the connections that it made.
#pragma once

#include "link/netTCPBase.h"
#include "link/netTCPCli.h"

#include <memory>
#include <mutex>
#include <vector>

class netTCPSrv : public netTCPBase
{
public:
    // Codes of OnEvent.
    static constexpr uint32_t EventAcceptFailed = 0;  // the server ends, asked or not; EventStopped follows
    static constexpr uint32_t EventStopped = 1;
    static constexpr uint32_t EventFailed = 2;  // the port cannot be had; EventStopped follows
    static constexpr uint32_t EventListening = 3;

    netTCPSrv() = default;

    // Ends the server and all its connections.
    ~netTCPSrv();

    // The port on which the server listens; a server that listens starts anew.
    void SetPort(uint16_t port);

    // The port that the system gave when 0 was asked for; 0 while the server does not listen.
    uint16_t ListeningPort() const { return Bound; }

    // False once it was closed. Tells, in EventAcceptFailed, a server that broke from one that was ended.
    bool HasSocket() const { return Socket != socketNone; }

    // Starts to listen, or starts anew; connections then are told that it ends. Returns once the thread has
    // started.
    void Listen();

    // Ends listening, and tells all connections that it ends. `final`: when it returns all threads have
    // ended.
    void Stop(bool final);

    // False turns a connection away. On the server's thread. May be empty.
    std::function<bool(const socketAddress& peer)> OnAccepting;

    // A connection that is about to start: the place to set its events. On the server's thread. It is the
    // server's and lives until the next one arrives after its end, or the server ends. May be empty.
    std::function<void(netTCPCli& client)> OnAccepted;

    // On the server's thread. May be empty.
    std::function<void(const uint32_t& event)> OnEvent;

    std::atomic<uint32_t> MaxClients{0};  // 0 is no limit

private:
    void Run();
    bool Prepare();
    void AcceptAll();
    void Take(socketHandle socket, const socketAddress& peer);
    unsigned CountClients();
    void DisconnectClients(bool final);
    void Raise(uint32_t event);

    std::mutex ClientsLock;  // guards Clients
    std::vector<std::unique_ptr<netTCPCli>> Clients;
    std::atomic<uint16_t> Port{0};
    std::atomic<uint16_t> Bound{0};
};
