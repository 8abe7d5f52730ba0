// The frame of TSIP packets: DLE, id, data, DLE, ETX, where a DLE within the data is sent twice.
#pragma once

#include "tools/simulator/simBytes.h"

#include <cstdint>
#include <span>
#include <vector>

simBytes simTsipFrame(uint8_t id, std::span<const uint8_t> data);

// Finds packets in a stream: the id and the data of each, as they were before framing.
class simTsipParser
{
public:
    // All packets that these bytes complete; none is empty.
    std::vector<simBytes> Take(std::span<const uint8_t> bytes);

private:
    enum class state : uint8_t {
        Outside,
        Begun,  // behind the first DLE
        Inside,
        Escape,  // behind a DLE inside
    };

    void Step(uint8_t byte, std::vector<simBytes>& found);

    state State = state::Outside;
    simBytes Packet;
};
