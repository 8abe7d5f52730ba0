// The receivers that speak UBX, by their index in the table of model names, and what each can do.
#pragma once

#include <cstdint>

namespace ubxModel {

constexpr uint8_t Generic = 6;
constexpr uint8_t Seven = 7;
constexpr uint8_t M8 = 8;
constexpr uint8_t M9 = 9;
constexpr uint8_t NeoM9N = 10;
constexpr uint8_t ZedF9R = 11;
constexpr uint8_t M10 = 12;
constexpr uint8_t MaxM10S = 13;
constexpr uint8_t NeoF10N = 14;

// A set of models, one bit each.
using Set = uint16_t;

constexpr Set From(uint8_t first, uint8_t last)
{
    return static_cast<Set>((2u << last) - (1u << first));
}

constexpr Set All = 0xFFFF;

constexpr bool In(uint8_t model, Set models)
{
    return model < 16 && (models >> model & 1) != 0;
}

struct Ability {
    uint8_t Model;
    bool Signals;            // reports each signal of a satellite (NAV-SIG)
    uint8_t SpectrumBlocks;  // RF blocks whose spectrum it tells (MON-SPAN)
};

constexpr Ability Abilities[] = {
    {Generic, false, 0}, {Seven, false, 0}, {M8, false, 0},     {M9, true, 0},      {NeoM9N, true, 1},
    {ZedF9R, true, 2},   {M10, true, 1},    {MaxM10S, true, 1}, {NeoF10N, true, 2},
};

constexpr Ability AbilityOf(uint8_t model)
{
    for (const Ability& row : Abilities)
        if (row.Model == model)
            return row;
    return {model, false, 0};
}

}  // namespace ubxModel
