#include "tools/simulator/simPeer.h"

#include <string_view>

namespace {

constexpr uint32_t KeyGreeting = 0xFFFF0001;
constexpr uint32_t KeyStream = 0x53534E47;     // the letters "GNSS"
constexpr uint32_t KeyNothing = 0x504F4F4E;    // the letters "NOOP"
constexpr uint32_t SubkeyStream = 0x4D525453;  // the letters "STRM"
constexpr std::string_view Version = "Skyreckoning Server v20240612";
constexpr size_t HeaderSize = 8;
constexpr size_t SubkeySize = 4;
constexpr uint32_t LongestBody = 16u << 20;

}  // namespace

simBytes simPeer::Greeting()
{
    return simWriter(std::endian::little)
        .U4(KeyGreeting)
        .U4(Version.size())
        .Text(Version, Version.size())
        .Data;
}

simBytes simPeer::Stream(std::span<const uint8_t> bytes)
{
    return simWriter(std::endian::little)
        .U4(KeyStream)
        .U4(bytes.size() + SubkeySize)
        .U4(SubkeyStream)
        .Bytes(bytes)
        .Data;
}

bool simPeer::Take(std::span<const uint8_t> bytes, simBytes& toReceiver, simBytes& reply)
{
    Held.insert(Held.end(), bytes.begin(), bytes.end());
    size_t at = 0;
    bool good = true;
    while (Held.size() - at >= HeaderSize) {
        const std::span<const uint8_t> all = Held;
        const simReader message(all.subspan(at), std::endian::little);
        const uint32_t length = message.U4(4);
        good = length <= LongestBody;
        if (!good || message.Data.size() < HeaderSize + length)
            break;
        const std::span<const uint8_t> body = message.Data.subspan(HeaderSize, length);
        const bool stream = message.U4(0) == KeyStream && length >= SubkeySize;
        if (message.U4(0) == KeyNothing) {
            const std::span<const uint8_t> echo = message.Data.first(HeaderSize + length);
            reply.insert(reply.end(), echo.begin(), echo.end());
        } else if (stream && simReader(body, std::endian::little).U4(0) == SubkeyStream) {
            toReceiver.insert(toReceiver.end(), body.begin() + SubkeySize, body.end());
        }
        at += HeaderSize + length;
    }
    Held.erase(Held.begin(), Held.begin() + static_cast<ptrdiff_t>(at));
    return good;
}
