// Puts messages together from the pieces in which a connection delivers them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

struct msgHead {
    uint32_t key;
    uint32_t length;  // of the body that follows

    std::span<const uint8_t> Body() const { return {reinterpret_cast<const uint8_t*>(this + 1), length}; }
};
static_assert(sizeof(msgHead) == 8);

class pktBuffer
{
public:
    // A head that tells more is not believed.
    static constexpr uint32_t LengthLimit = 16 * 1024 * 1024;

    enum class State : uint8_t {
        Partial,
        Whole,    // Message holds it, until Clear
        TooLong,  // nothing that follows can be made sense of
    };

    // Room for what comes next: first the head alone, then the body, so that no byte of the next message is
    // taken. Whatever a head says, memory is taken only a step ahead of what has come. Until the next call of
    // Room.
    std::span<uint8_t> Room();

    // So many bytes of the room were filled, from its beginning on.
    State Took(size_t count);

    const msgHead& Message() const { return *reinterpret_cast<const msgHead*>(Buffer.data()); }

    // Begins a new message.
    void Clear();

private:
    size_t Wanted() const;

    std::vector<uint8_t> Buffer;  // the message, with its head
    size_t Have = 0;
};
