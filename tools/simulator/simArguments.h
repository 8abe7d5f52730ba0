// The command line of the simulator.
#pragma once

#include "tools/simulator/simReceiver.h"
#include "tools/simulator/simReplay.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

struct simArguments {
    bool Help = false;
    simOptions Receiver;
    bool FixedStart = false;  // Receiver.StartUtcNs was given; else it is now
    double Speed = 1;         // seconds of the receiver, and of its line, in one of the machine; 1 to 100
    simFaults Faults;
    std::string Pty;                // the name of the virtual port; empty for none
    std::optional<uint16_t> Serve;  // the port of the server, 0 for any
    std::string Replay;             // the file of the recording; empty for a receiver
    simReplayOptions Recording;
    std::string Wrong;  // what is wrong, one line; empty when all is well
};

// Of the words behind the program's name.
simArguments simReadArguments(std::span<const std::string_view> words);

std::string simUsage();
