// Streams as receivers send them, about a quarter of a mebibyte each.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

using gnssStream = std::vector<uint8_t>;

struct gnssEpochs {
    gnssStream Bytes;
    unsigned Count = 0;
};

// As many epochs, for the seconds from 0, as make such a stream.
gnssEpochs gnssRepeat(const std::function<void(gnssStream& stream, unsigned second)>& epoch);

// Epochs of a receiver of all constellations: GGA, GLL, four GSA, GSV of 40 satellites with signal ids, RMC,
// VTG.
gnssEpochs gnssStreamNMEA();

// NAV-POSLLH, NAV-DOP, NAV-SAT of 40, NAV-SIG of 70, NAV-TIMEUTC, NAV-VELNED, TIM-TP.
gnssEpochs gnssStreamUBX();

// The same, begun by the MON-VER of a receiver with two RF blocks, and a MON-SPAN of both in every epoch.
gnssEpochs gnssStreamSpectrum();

// Primary and supplemental timing, signal levels, satellite tracking and selection.
gnssEpochs gnssStreamTSIP();
