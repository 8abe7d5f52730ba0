// Serves the raw bytes of a receiver to any number of clients, and takes their commands.
//
// Start and Stop come from one thread; Send from any one thread at a time. Events run on the threads of the
// server and of its connections; they may call Send, but neither Start nor Stop.
#pragma once

#include "foundations/thread/thrSpin.h"
#include "link/netTCPSrv.h"
#include "link/pktComm.h"

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class gnssCommServer
{
public:
    gnssCommServer();

    // Ends all connections.
    ~gnssCommServer();
    gnssCommServer(const gnssCommServer&) = delete;
    gnssCommServer& operator=(const gnssCommServer&) = delete;

    // Listens on a port, 0 for any that is free; anew if it does already.
    void Start(uint16_t port);

    // Ends listening and tells the clients so. `final`: when it returns all threads have ended.
    void Stop(bool final);

    // The port on which it listens; 0 while it does not.
    uint16_t ListeningPort() const { return Server.ListeningPort(); }

    // Sends a block of the receiver's bytes to every client. Never waits for one.
    void Send(const std::vector<uint8_t>& block);

    unsigned Clients() const;

    // Set these before Start. Each may be empty.
    std::function<void(const uint8_t*, size_t)> OnCommand;  // bytes of a client for the receiver
    std::function<void(unsigned clients)> OnClients;        // their number changed
    std::function<void()> OnFailed;                         // the port cannot be had
    std::function<void()> OnBroken;                         // no connection can be accepted any more

    // Bytes that may wait for a client that does not read; it is disconnected when there are more. For those
    // that come after a change.
    std::atomic<uint32_t> QueueLimit{netTCPCli::QueueLimitDefault};

private:
    void Server_OnAcceptedClient(netTCPCli& client);
    void Client_OnMessage(const msgHead& message);
    void Client_OnEnd(const pktComm* stream);

    mutable thrSpin StreamsLock;  // before the lock of a stream
    std::vector<std::unique_ptr<pktComm>> Streams;
    std::atomic<bool> Ending{false};
    netTCPSrv Server;  // last, so that its threads end before what they use goes
};
