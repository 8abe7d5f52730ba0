// Where serial ports are looked for, as parameters, so that the search can be shown a tree of its own.
#pragma once

#include "platform/comm.h"

#include <string>
#include <vector>

struct commPlaces {
    std::string Terminals;  // the kernel's folder of all terminals
    std::string ById;       // links to device files, named after what is plugged in
    std::string Virtual;    // links to virtual ports; empty for none
};

// The places of this system. A virtual port is a link to a terminal in $XDG_RUNTIME_DIR/skyreckoning.
commPlaces commSystemPlaces();

// Terminals with hardware behind them, and virtual ports whose name begins with the prefix of names.
std::vector<commDevice> commDevicesIn(const commPlaces& places);
