// One connection of the server: what is said on it, byte for byte.
//
// All is little-endian. A message is a key of four bytes, the length of its body in four, and the body.
#pragma once

#include "tools/simulator/simBytes.h"

#include <cstdint>
#include <span>

class simPeer
{
public:
    // What a client is told first.
    static simBytes Greeting();

    // Bytes of the receiver as one message.
    static simBytes Stream(std::span<const uint8_t> bytes);

    // Takes what the client sent, in any cuts. What is for the receiver is appended to `toReceiver`, what is
    // to be sent back to `reply`. False when the client breaks the rules and its connection must end.
    bool Take(std::span<const uint8_t> bytes, simBytes& toReceiver, simBytes& reply);

private:
    simBytes Held;
};
