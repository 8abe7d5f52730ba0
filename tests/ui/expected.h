// What a page is to show of what a receiver has told, worked out apart from the decoders and the pages.
#pragma once

#include "toolkit/Canvas.h"
#include "tools/simulator/simReceiver.h"

#include <string>
#include <vector>

namespace expected {

// How a receiver tells things, as far as the page's numbers depend on it.
enum class way : uint8_t {
    Signals,     // UBX with each signal of a satellite
    Systems,     // UBX of older receivers
    NmeaSignal,  // NMEA with a signal in GSV
    NmeaPlain,   // NMEA without
    Tsip,
};

way WayOf(simModel model);

// A row of the table of satellites.
struct satRow {
    std::string Cells[5];
    uint8_t Style;
    colour Shade;
};

std::vector<satRow> RowsOf(const simTruth& truth, way how);

// "47º22′36.8400″N" of an angle as the receiver rounds it.
std::string AngleText(double degrees, bool isLatitude, int decimals);

}  // namespace expected
