// The satellites over a place: real circular orbits over a turning earth.
#pragma once

#include "tools/simulator/simReceiver.h"

#include <cstdint>
#include <vector>

struct simVector {
    double X = 0;
    double Y = 0;
    double Z = 0;
};

// A place in the frame that turns with the earth, metres.
simVector simEarthFixed(const simPlace& place);

// All satellites of every system above five degrees at a moment, by system and number, with what they send
// and the level at which a good antenna hears them. Used is not set.
std::vector<simSat> simSatsOver(const simPlace& place, int64_t utcNs);

// GLONASS alone: the number of the satellite's channel, -7 to 6.
int simChannelOf(uint8_t svid);
