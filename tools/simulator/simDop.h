// Dilution of precision: how the directions to the satellites spread the error of a solution.
#pragma once

#include "tools/simulator/simReceiver.h"

#include <optional>
#include <span>

struct simDop {
    double G = 99.99;
    double P = 99.99;
    double T = 99.99;
    double V = 99.99;
    double H = 99.99;
    double N = 99.99;
    double E = 99.99;
};

// Of the satellites that are Used; nothing when they are too few, or stand so that there is no solution.
std::optional<simDop> simDopOf(std::span<const simSat> sats);
