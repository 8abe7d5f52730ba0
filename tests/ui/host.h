// Somebody else in the network of this machine.
#pragma once

#include "platform/socket.h"

#include <cstdint>
#include <string_view>
#include <thread>
#include <vector>

// Holds a port of this machine, so that nobody else can listen there. It listens, and greets whoever comes.
class otherHost
{
public:
    // Port 0 is any that is free. The greeting is sent as it stands.
    explicit otherHost(uint16_t port = 0, std::string_view greeting = {});
    ~otherHost();
    otherHost(const otherHost&) = delete;
    otherHost& operator=(const otherHost&) = delete;

    uint16_t Port() const { return Port_; }  // 0 when it could not have the port

private:
    void Serve(const std::stop_token& stop, std::string_view greeting) const;

    const bool Started;
    const socketHandle Listener;
    uint16_t Port_ = 0;
    std::jthread Thread;
};

// A port that nobody has at this moment.
uint16_t freePort();
