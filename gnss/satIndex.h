// Tells where in a list a satellite stands, in one step, and in which order satellites are sorted.
#pragma once

#include "gnss/gnss.h"

#include <bit>
#include <cstddef>
#include <cstdint>

class satIndex
{
public:
    static constexpr size_t None = SIZE_MAX;

    void Clear();

    // The position put last for this satellite, or None.
    size_t Find(gnss::Source source, uint8_t svId) const
    {
        const size_t key = Key(source, svId);
        return (Present[key / 64] >> key % 64 & 1) != 0 ? Positions[key] : None;
    }

    // Positions are below 2^32.
    void Put(gnss::Source source, uint8_t svId, size_t position)
    {
        const size_t key = Key(source, svId);
        Present[key / 64] |= uint64_t{1} << key % 64;
        Positions[key] = static_cast<uint32_t>(position);
    }

    // Hands over all positions in order of Source, then SvId.
    template <class Take>
    void Walk(Take take) const
    {
        for (size_t word = 0; word < Words; ++word) {
            for (uint64_t left = Present[word]; left != 0; left &= left - 1)
                take(size_t{Positions[word * 64 + static_cast<size_t>(std::countr_zero(left))]});
        }
    }

private:
    static constexpr size_t Keys = (static_cast<size_t>(gnss::Source::Mixed) + 1) * 256;
    static constexpr size_t Words = Keys / 64;

    static constexpr size_t Key(gnss::Source source, uint8_t svId)
    {
        return static_cast<size_t>(source) * 256 + svId;
    }

    uint64_t Present[Words] = {};
    uint32_t Positions[Keys];  // meaningful where Present has the bit
};
