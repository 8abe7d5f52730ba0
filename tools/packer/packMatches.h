// Finds where bytes stood before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

struct packMatch {
    size_t Length = 0;
    size_t Distance = 0;
};

class packMatches
{
public:
    explicit packMatches(std::span<const uint8_t> bytes);

    // For the bytes from `position` on, matches with ever greater length and distance: the nearest for each
    // length that it is worth a look to find. Positions are to be asked for in order, none left out.
    std::vector<packMatch> At(size_t position);

private:
    size_t MostAt(size_t position) const;

    // 0 when it is certain that no more than `toBeat` bytes are the same.
    size_t LengthAt(size_t position, size_t earlier, size_t toBeat) const;

    std::span<const uint8_t> Bytes;
    std::vector<size_t> Newest;   // the last position of each hash, plus 1
    std::vector<size_t> Earlier;  // the one before with the same hash, plus 1
    packMatch Before;             // the longest of the position before
};
