// What the monitor shows of a receiver: a table, a line of text, or a line of JSON.
#pragma once

#include "link/gnssComm.h"
#include "platform/terminal.h"

#include <cstdint>
#include <string>

// What stands beside the receiver in the table.
struct consoleFacts {
    std::string Source;  // "ttyUSB0, 115200 baud", "antenna:4003"
    std::string Status;
    bool Serving = false;
    uint16_t ServingPort = 0;
    unsigned Clients = 0;
};

// All of these take the link's Lock themselves.

// "2026-11-21 12:34:56.00  47.3769000 N   8.5417000 E  408.0 m  HDOP 0.8  12 of 24 satellites". Without its
// end.
std::string consoleLine(gnssComm& link);

// {"event": "data", "protocol": "ubx", "receiver": {...}}, of which the last has every field of the decoder.
std::string consoleJson(gnssComm& link);

// {"event": "status", "status": "..."}
std::string consoleJsonStatus(const std::string& status);

// As many lines as fit, each ended by CR LF and none wider than the terminal.
std::string consoleTable(gnssComm& link, const consoleFacts& facts, const terminalSize& size);
