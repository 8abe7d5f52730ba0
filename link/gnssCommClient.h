// The far end of a served receiver: a connection to a server that is kept up, the receiver's bytes, and the
// way back.
#pragma once

#include "link/netTCPCli.h"
#include "link/pktComm.h"

#include <functional>
#include <string>

class gnssCommClient
{
public:
    // Between two attempts to connect.
    static constexpr uint32_t RetryMs = 2000;

    gnssCommClient();

    // Ends the connection.
    ~gnssCommClient();
    gnssCommClient(const gnssCommClient&) = delete;
    gnssCommClient& operator=(const gnssCommClient&) = delete;

    // Connects to "host" or "host:port", and again whenever the connection is lost, until Disconnect. False
    // when the name has no address; attempts go on at the address that was known before, if any.
    bool Connect(const std::string& address);

    // Gives up: no further attempts. `final`: when it returns the thread has ended.
    void Disconnect(bool final);

    // Sends bytes to the receiver. Any thread; lost without a word while there is no connection.
    void Send(const uint8_t* bytes, size_t count);

    // Set these before Connect; they run on the connection's thread. Each may be empty.
    std::function<void(const uint8_t*, size_t)> OnStream;  // the receiver's bytes
    std::function<void()> OnWrongServer;                   // the other end is none of ours
    std::function<void(const uint32_t& event)> OnEvent;    // netTCPCli's codes but EventData

    netTCPCli Link;

private:
    void Stream_OnMessage(const msgHead& message);

    pktComm Stream;
};
