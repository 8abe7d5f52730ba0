#include "tools/simulator/simUbxFrame.h"

#include <algorithm>

namespace {

constexpr uint8_t Sync1 = 0xB5;
constexpr uint8_t Sync2 = 0x62;
constexpr size_t HeaderSize = 6;
constexpr size_t ChecksumSize = 2;
constexpr size_t LongestCommand = 2048;

struct checksum {
    uint8_t A = 0;
    uint8_t B = 0;
};

checksum ChecksumOf(std::span<const uint8_t> bytes)
{
    checksum sum;
    for (const uint8_t byte : bytes) {
        sum.A = static_cast<uint8_t>(sum.A + byte);
        sum.B = static_cast<uint8_t>(sum.B + sum.A);
    }
    return sum;
}

}  // namespace

simBytes simUbxFrame(uint8_t messageClass, uint8_t id, std::span<const uint8_t> payload)
{
    simWriter frame(std::endian::little);
    frame.U1(Sync1).U1(Sync2).U1(messageClass).U1(id).U2(payload.size()).Bytes(payload);
    const checksum sum = ChecksumOf(std::span(frame.Data).subspan(2));
    frame.U1(sum.A).U1(sum.B);
    return frame.Data;
}

std::vector<simUbxMessage> simUbxParser::Take(std::span<const uint8_t> bytes)
{
    Held.insert(Held.end(), bytes.begin(), bytes.end());
    std::vector<simUbxMessage> found;
    while (Step(found)) {
    }
    return found;
}

bool simUbxParser::Step(std::vector<simUbxMessage>& found)
{
    Held.erase(Held.begin(), std::ranges::find(Held, Sync1));
    if (Held.size() < HeaderSize) {
        if (Held.size() < 2 || Held[1] == Sync2)
            return false;
        Held.erase(Held.begin());
        return true;
    }
    const size_t length = simReader(Held, std::endian::little).U2(4);
    if (Held[1] != Sync2 || length > LongestCommand) {
        Held.erase(Held.begin());
        return true;
    }
    const size_t end = HeaderSize + length;
    if (Held.size() < end + ChecksumSize)
        return false;
    const checksum sum = ChecksumOf(std::span(Held).subspan(2, 4 + length));
    if (sum.A != Held[end] || sum.B != Held[end + 1]) {
        Held.erase(Held.begin());
        return true;
    }
    const auto payload = Held.begin() + HeaderSize;
    const auto after = payload + static_cast<ptrdiff_t>(length);
    found.push_back({Held[2], Held[3], simBytes(payload, after)});
    Held.erase(Held.begin(), after + ChecksumSize);
    return true;
}
