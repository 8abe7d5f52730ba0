#include "link/pktBuffer.h"

#include <algorithm>

namespace {

// How much is made room for at once: a peer is believed what it has sent, not what it says it will send.
constexpr size_t Step = size_t{64} * 1024;

// A buffer that one long message has blown up is not kept.
constexpr size_t KeepLimit = size_t{1024} * 1024;

}  // namespace

// How large the message is, as far as that is known.
size_t pktBuffer::Wanted() const
{
    return Have < sizeof(msgHead) ? sizeof(msgHead) : sizeof(msgHead) + Message().length;
}

std::span<uint8_t> pktBuffer::Room()
{
    const size_t room = std::min(Wanted() - Have, Step);
    Buffer.resize(Have + room);
    return std::span(Buffer).subspan(Have);
}

pktBuffer::State pktBuffer::Took(size_t count)
{
    Have += count;
    Buffer.resize(Have);
    if (Have < sizeof(msgHead))
        return State::Partial;
    if (Message().length > LengthLimit)
        return State::TooLong;
    return Have == Wanted() ? State::Whole : State::Partial;
}

void pktBuffer::Clear()
{
    Have = 0;
    Buffer.clear();
    if (Buffer.capacity() > KeepLimit)
        Buffer.shrink_to_fit();
}
