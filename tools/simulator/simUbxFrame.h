// The frame of UBX messages: two sync bytes, class, id, length, payload, two bytes of checksum.
#pragma once

#include "tools/simulator/simBytes.h"

#include <cstdint>
#include <span>
#include <vector>

struct simUbxMessage {
    uint8_t Class = 0;
    uint8_t Id = 0;
    simBytes Payload;
};

simBytes simUbxFrame(uint8_t messageClass, uint8_t id, std::span<const uint8_t> payload);

// Finds frames in a stream. What is no frame, or a broken one, is passed over byte by byte, so that a frame
// behind it is found; one that says it is longer than any command is no frame.
class simUbxParser
{
public:
    // All messages that these bytes complete.
    std::vector<simUbxMessage> Take(std::span<const uint8_t> bytes);

private:
    // Takes what can be judged off the front of Held; false when more bytes are needed.
    bool Step(std::vector<simUbxMessage>& found);

    simBytes Held;
};
