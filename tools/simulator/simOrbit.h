// Where the satellites of each system go.
#pragma once

#include "tools/simulator/simReceiver.h"
#include "tools/simulator/simSky.h"

#include <cstdint>
#include <span>

// Satellites that share orbits of one shape: `Planes` planes evenly round the earth, the satellites of a
// plane evenly round it.
struct simConstellation {
    simSystem System;
    double Radius;       // of the orbit, metres
    double Inclination;  // degrees
    unsigned Planes;
    double FirstNode;                // right ascension of the first plane's node at the epoch, degrees
    double PlanePhase;               // by how much each plane runs ahead of the one before, degrees
    std::span<const uint8_t> Svids;  // dealt to the planes in turn
};

// Satellites that stand over one point of the earth.
struct simFixedSat {
    simSystem System;
    uint8_t Svid;
    double Latitude;   // degrees, of the point below
    double Longitude;  // degrees
};

std::span<const simConstellation> simConstellations();
std::span<const simFixedSat> simFixedSats();

// The position of the satellite at `index` in Svids, in the frame that turns with the earth, metres.
simVector simOrbitPosition(const simConstellation& constellation, size_t index, int64_t utcNs);
simVector simFixedPosition(const simFixedSat& sat);

// The signals that a satellite sends, with the UBX protocol's numbers.
std::span<const simSignal> simSignalsOf(simSystem system, uint8_t svid);
