#include "tools/packer/packMatches.h"

#include <algorithm>

namespace {

constexpr size_t Shortest = 2;
constexpr size_t HashCount = size_t{1} << 16;

// Beyond these a search gains next to nothing and, on a picture of one colour, takes for ever.
constexpr unsigned MostLooks = 500;
constexpr size_t LongEnough = 4096;

size_t Hash(const uint8_t* bytes)
{
    return bytes[0] | size_t{bytes[1]} << 8;
}

}  // namespace

packMatches::packMatches(std::span<const uint8_t> bytes)
    : Bytes(bytes), Newest(HashCount), Earlier(bytes.size())
{}

std::vector<packMatch> packMatches::At(size_t position)
{
    std::vector<packMatch> found;
    if (Bytes.size() - position < Shortest)
        return found;
    size_t& newest = Newest[Hash(&Bytes[position])];
    size_t longest = Shortest - 1;
    unsigned looks = 0;
    const size_t most = MostAt(position);
    for (size_t next = newest; next > 0 && looks < MostLooks && longest < most; ++looks) {
        const size_t earlier = next - 1;
        const size_t length = LengthAt(position, earlier, longest);
        if (length > longest) {
            found.push_back({length, position - earlier});
            longest = length;
        }
        next = Earlier[earlier];
    }
    Earlier[position] = newest;
    newest = position + 1;
    Before = found.empty() ? packMatch{} : found.back();
    return found;
}

size_t packMatches::MostAt(size_t position) const
{
    return std::min(LongEnough, Bytes.size() - position);
}

size_t packMatches::LengthAt(size_t position, size_t earlier, size_t toBeat) const
{
    const size_t most = MostAt(position);
    // The byte that decides is seen first, or long runs that end alike would be compared for ever.
    if (Bytes[earlier + toBeat] != Bytes[position + toBeat])
        return 0;
    // What was the same from the position before on, but for its first byte, needs no second look.
    size_t length = position - earlier == Before.Distance ? Before.Length - 1 : 0;
    while (length < most && Bytes[earlier + length] == Bytes[position + length])
        ++length;
    return length;
}
