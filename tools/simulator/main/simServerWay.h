// The way out through a TCP server, as the program's own serves the receiver that it has.
#pragma once

#include "platform/socket.h"
#include "tools/simulator/simBytes.h"
#include "tools/simulator/simPeer.h"

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

class simServerWay
{
public:
    simServerWay() = default;
    ~simServerWay();
    simServerWay(const simServerWay&) = delete;
    simServerWay& operator=(const simServerWay&) = delete;

    // Listens on this machine's own address; port 0 takes any. Gives what went wrong, or an empty text.
    std::string Open(uint16_t port);
    uint16_t Port() const { return Number; }

    // Lets clients in, and gives what they have sent for the receiver.
    simBytes Receive();

    // Sends bytes of the receiver to all clients, and what was left to send. One that does not read is
    // dropped when too much waits for it.
    void Send(std::span<const uint8_t> bytes);

private:
    struct client {
        socketHandle Socket = socketNone;
        simPeer Peer;
        std::deque<uint8_t> Waiting;
        bool Over = false;
    };

    void LetIn();
    static void Hear(client& from, simBytes& toReceiver);
    static void Queue(client& to, std::span<const uint8_t> bytes);
    static void Flush(client& to);
    void DropOver();

    bool Started = false;
    socketHandle Listener = socketNone;
    uint16_t Number = 0;
    std::vector<client> Clients;
};
