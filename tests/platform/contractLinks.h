// What the suites of serial ports and sockets need beside the seam: a line with somebody at its far end, and
// a host that never answers.
#pragma once

#include "platform/socket.h"
#include "tests/platform/contract.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

// Plugs in a serial port; false where tests cannot have one.
bool contractPlug();
void contractUnplug();
std::string contractPort();  // its name

// From the far end to the port: how many bytes were taken.
size_t contractLineSend(std::string_view bytes);

// Everything that came out at the far end since the port was plugged in.
std::string contractLineReceived();

// From now on the far end takes nothing.
void contractLineDies();

// Whether the system keeps a second opener out of that port.
bool contractPortIsExclusive();

// Whether the system can set any baud rate on that port.
bool contractPortTakesAnyRate();

// Where waits move the clock themselves, they wait from now on until the test moves it.
void contractHoldTime();

// Whether the system hides from its programs that a peer broke a connection off.
bool contractResetIsAnEnd();

// While it lives, connections to its address neither succeed nor fail.
class contractSilentHost
{
public:
    contractSilentHost();
    ~contractSilentHost();
    contractSilentHost(const contractSilentHost&) = delete;
    contractSilentHost& operator=(const contractSilentHost&) = delete;

    socketAddress Address;

private:
    struct parts;
    const std::unique_ptr<parts> Parts;
};
