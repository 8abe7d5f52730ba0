#include "gnss/nmeaText.h"

#include <bit>

namespace {

constexpr size_t WordBytes = sizeof(uint64_t);
constexpr uint64_t EachByte = 0x0101010101010101;
constexpr uint64_t LowBits = 0x7F * EachByte;

// The first byte is the lowest. Written out, because compilers make one load of it then, and not of a loop.
template <class Byte>
uint64_t load(const Byte* bytes)
{
    const auto at = [bytes](unsigned i) { return uint64_t{static_cast<uint8_t>(bytes[i])} << 8 * i; };
    return at(0) | at(1) | at(2) | at(3) | at(4) | at(5) | at(6) | at(7);
}

// The top bit of each byte of `word` that equals `wanted`, of no other.
constexpr uint64_t equalBytes(uint64_t word, uint8_t wanted)
{
    const uint64_t different = word ^ wanted * EachByte;
    return ~(((different & LowBits) + LowBits) | different | LowBits);
}

size_t firstOf(uint64_t topBits)
{
    return static_cast<size_t>(std::countr_zero(topBits)) / 8;
}

// The top bits of eight bytes side by side, the first byte's lowest.
constexpr uint64_t gather(uint64_t topBits)
{
    constexpr uint64_t sideBySide = 0x0002040810204081;
    return topBits * sideBySide >> 56;
}

// One bit for each comma among the first 64 bytes.
uint64_t commas(const char* text, size_t count)
{
    uint64_t found = 0;
    size_t at = 0;
    for (; at + WordBytes <= count; at += WordBytes)
        found |= gather(equalBytes(load(text + at), ',')) << at;
    for (; at < count; ++at)
        found |= uint64_t{text[at] == ','} << at;
    return found;
}

}  // namespace

size_t nmeaLineLength(std::span<const uint8_t> bytes)
{
    size_t at = 0;
    for (; at + WordBytes <= bytes.size(); at += WordBytes) {
        const uint64_t word = load(bytes.data() + at);
        const uint64_t ends = equalBytes(word, '\r') | equalBytes(word, '\n');
        if (ends != 0)
            return at + firstOf(ends);
    }
    while (at < bytes.size() && bytes[at] != '\r' && bytes[at] != '\n')
        ++at;
    return at;
}

uint8_t nmeaChecksum(std::string_view text)
{
    uint64_t sums = 0;
    size_t at = 0;
    for (; at + WordBytes <= text.size(); at += WordBytes)
        sums ^= load(text.data() + at);
    for (; at < text.size(); ++at)
        sums ^= static_cast<uint8_t>(text[at]);
    for (unsigned half = 32; half >= 8; half /= 2)
        sums ^= sums >> half;
    return static_cast<uint8_t>(sums);
}

void nmeaSplit(std::string_view text, std::vector<std::string_view>& fields)
{
    constexpr size_t block = 64;
    size_t begin = 0;
    for (size_t at = 0; at < text.size(); at += block) {
        const size_t count = text.size() - at < block ? text.size() - at : block;
        for (uint64_t left = commas(text.data() + at, count); left != 0; left &= left - 1) {
            const size_t comma = at + static_cast<size_t>(std::countr_zero(left));
            fields.emplace_back(text.data() + begin, comma - begin);
            begin = comma + 1;
        }
    }
    if (begin < text.size())
        fields.emplace_back(text.data() + begin, text.size() - begin);
}
