#include "tools/simulator/simTsipFrame.h"

#include <utility>

namespace {

constexpr uint8_t DLE = 0x10;
constexpr uint8_t ETX = 0x03;
constexpr size_t LongestPacket = 512;

}  // namespace

simBytes simTsipFrame(uint8_t id, std::span<const uint8_t> data)
{
    simBytes frame = {DLE, id};
    for (const uint8_t byte : data) {
        if (byte == DLE)
            frame.push_back(DLE);
        frame.push_back(byte);
    }
    frame.push_back(DLE);
    frame.push_back(ETX);
    return frame;
}

std::vector<simBytes> simTsipParser::Take(std::span<const uint8_t> bytes)
{
    std::vector<simBytes> found;
    for (const uint8_t byte : bytes)
        Step(byte, found);
    return found;
}

void simTsipParser::Step(uint8_t byte, std::vector<simBytes>& found)
{
    switch (State) {
    case state::Outside:
        State = byte == DLE ? state::Begun : state::Outside;
        return;
    case state::Begun:
        // DLE and ETX are no ids: the DLE before was the end of something else.
        if (byte == DLE)
            return;
        Packet.assign(1, byte);
        State = byte == ETX ? state::Outside : state::Inside;
        return;
    case state::Inside:
        if (byte == DLE)
            State = state::Escape;
        else
            Packet.push_back(byte);
        break;
    case state::Escape:
        State = state::Outside;
        if (byte == ETX) {
            found.push_back(std::exchange(Packet, {}));
        } else if (byte == DLE) {
            Packet.push_back(DLE);
            State = state::Inside;
        } else {
            // A DLE that stands alone begins the next packet; what was before it has lost its end.
            Packet.assign(1, byte);
            State = state::Inside;
        }
        break;
    }
    if (Packet.size() > LongestPacket)
        State = state::Outside;
}
