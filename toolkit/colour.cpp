#include "toolkit/colour.h"

#include "foundations/fatal/crashFatal.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

// The three channels and the top byte, so that one vector instruction works on all of them.
constexpr size_t LaneCount = 4;
using lanes = std::array<int32_t, LaneCount>;

constexpr int32_t ChannelMost = 255;
constexpr uint32_t ScaleMost = 255;  // 255 times this is the most that 16 bits without a sign hold
constexpr uint32_t MixMost = 127;    // and with a sign

struct fraction {
    uint32_t Num;
    uint32_t Den;
};

fraction Reduced(uint32_t num, uint32_t den, uint32_t most)
{
    uint64_t wideNum = num;
    uint64_t wideDen = den;
    if (wideDen > most) {
        wideNum = wideNum * most / wideDen;
        wideDen = most;
    }
    if (wideNum > most) {
        wideDen = wideDen * most / wideNum;
        wideNum = most;
    }
    return {static_cast<uint32_t>(wideNum), static_cast<uint32_t>(wideDen)};
}

lanes Split(colour value)
{
    const uint32_t bits = static_cast<uint32_t>(value);
    lanes all{};
    for (size_t i = 0; i < LaneCount; ++i)
        all[i] = static_cast<int32_t>(bits >> (8 * i) & 0xFF);
    return all;
}

colour Joined(const lanes& all)
{
    uint32_t bits = 0;
    for (size_t i = 0; i < LaneCount - 1; ++i)
        bits |= static_cast<uint32_t>(std::clamp(all[i], 0, ChannelMost)) << (8 * i);
    return static_cast<colour>(bits);
}

// Shifts of negative numbers keep their sign, which is what rounds downwards.
void Divide(lanes& all, uint32_t den)
{
    if (den == 1)
        return;
    const int32_t factor = den == 2 ? 0x8000 : static_cast<int32_t>(0xFFFF / den + 1);
    for (int32_t& lane : all)
        lane = lane * factor >> 16;
}

}  // namespace

colour ColourScale(colour value, uint32_t num, uint32_t den)
{
    const fraction part = Reduced(num, den, ScaleMost);
    if (part.Den == 0) {
        crashFatal("ColourScale - Division by zero");
        return value;
    }
    lanes all = Split(value);
    for (int32_t& lane : all)
        lane *= static_cast<int32_t>(part.Num);
    Divide(all, part.Den);
    return Joined(all);
}

colour ColourMix(colour from, colour to, uint32_t den, uint32_t num)
{
    const fraction part = Reduced(num, den, MixMost);
    if (part.Den == 0) {
        crashFatal("ColourMix - Division by zero");
        return from;
    }
    const lanes start = Split(from);
    lanes all = Split(to);
    for (size_t i = 0; i < LaneCount; ++i)
        all[i] = (all[i] - start[i]) * static_cast<int32_t>(part.Num);
    Divide(all, part.Den);
    for (size_t i = 0; i < LaneCount; ++i)
        all[i] += start[i];
    return Joined(all);
}
