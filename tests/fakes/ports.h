// The serial ports of the fake platform. Used under the fake's mutex.
#pragma once

#include "tests/fakes/fakeLinks.h"

#include <array>
#include <condition_variable>
#include <map>
#include <string>
#include <vector>

namespace fakes {

constexpr char FirstPrefix[] = "COM";

struct portState {
    bool There = false;
    bool Taken = false;
    unsigned Plugged = 0;  // how often; a handle is good for one time
    std::string Arrived;
    std::string Sent;
    commControl Start;
    commControl Settings;
    commQueue Limits;
    uint32_t Modem = 0;
    uint32_t Unsent = 0;
    bool Blocked = false;
};

struct portHandle {
    std::string Name;
    unsigned Plugged;
};

struct portsState {
    std::map<std::string, portState> Ports;
    std::map<commHandle, portHandle> Handles;
    commHandle Last = 0;
    std::array<std::vector<commDevice>, commClasses> Devices;
    std::string Prefix = FirstPrefix;
    std::condition_variable Changed;
};

portsState& ports();

}  // namespace fakes
