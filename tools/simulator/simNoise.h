// What looks random and is the same in every run.
#pragma once

#include <cstdint>

class simNoise
{
public:
    explicit simNoise(uint64_t seed) : State(seed) {}

    uint64_t Next();

    // From 0 to below 1.
    double Unit();

    // About normally distributed, of mean 0 and deviation 1.
    double Normal();

    // A number that always belongs to the same two, from 0 to below 1.
    static double Of(uint64_t first, uint64_t second);

private:
    uint64_t State;
};
