// Faults by the words that people type, on the command line or while the simulator runs.
#pragma once

#include "tools/simulator/simReceiver.h"

#include <string>
#include <string_view>

// What can be said, a line for each.
std::string_view simFaultHelp();

// Does what one line says: "silence on", "lose 3", "errors 0.01". An empty line does nothing. Gives what is
// wrong with it, or an empty text.
std::string simFaultCommand(simFaults& faults, std::string_view line);
