#include "toolkit/pixmapBytes.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

constexpr uint64_t FirstCapacity = 1024;

}  // namespace

pixmapBlock pixmapZeroed(uint64_t count)
{
    pixmapBlock block(static_cast<uint8_t*>(memAlloc(count, true)));
    if (block)
        std::memset(block.get(), 0, count);
    return block;
}

pixmapBytes::pixmapBytes(uint64_t most) : Most(most) {}

std::span<const uint8_t> pixmapBytes::Held() const
{
    if (!Block)
        return {};
    return {Block.get(), Count_};
}

void pixmapBytes::Append(std::span<const uint8_t> bytes)
{
    uint8_t* const room = Extend(bytes.size());
    if (room)
        std::ranges::copy(bytes, room);
}

void pixmapBytes::AppendRun(uint64_t count, uint8_t value)
{
    uint8_t* const room = Extend(count);
    if (room)
        std::memset(room, value, count);
}

bool pixmapBytes::AppendCopy(uint64_t count, uint64_t distance)
{
    if (distance == 0 || distance > Count_)
        return false;
    uint8_t* const room = Extend(count);
    if (!room)
        return true;
    const uint8_t* const from = room - distance;
    for (uint64_t i = 0; i < count; ++i)
        room[i] = from[i];
    return true;
}

void pixmapBytes::Clear()
{
    Drop();
    Count_ = 0;
    Dropped = false;
}

// Counts `more` bytes and gives where they go; null when there are none, or no room for them.
uint8_t* pixmapBytes::Extend(uint64_t more)
{
    const uint64_t before = Count_;
    Count_ += more;
    if (more == 0 || Dropped)
        return nullptr;
    if (!Grow(Count_)) {
        Drop();
        return nullptr;
    }
    return Block.get() + before;
}

// Not by memRealloc: to that, having no memory is fatal, and here a damaged image can ask for any amount.
bool pixmapBytes::Grow(uint64_t needed)
{
    if (needed > Most)
        return false;
    if (needed <= Capacity)
        return true;
    const uint64_t capacity = std::max(FirstCapacity, std::bit_ceil(needed));
    pixmapBlock larger(static_cast<uint8_t*>(memAlloc(capacity, true)));
    if (!larger)
        return false;
    if (Block)
        std::memcpy(larger.get(), Block.get(), Capacity);
    Block = std::move(larger);
    Capacity = capacity;
    return true;
}

void pixmapBytes::Drop()
{
    Block.reset();
    Capacity = 0;
    Dropped = true;
}
