// The way out through a virtual serial port, at the speed of its line and with its garbage.
#pragma once

#include "platform/pty.h"
#include "tools/simulator/simBytes.h"
#include "tools/simulator/simReceiver.h"
#include "tools/simulator/simUart.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

class simPtyWay
{
public:
    // `hasLine` is whether there is a UART in between: else bytes pass at once and settings do not matter.
    simPtyWay(std::string_view name, bool hasLine) : Name(name), HasLine(hasLine) {}

    // Makes the port; gives what went wrong, or an empty text.
    std::string Plug();
    void Unplug();
    bool IsPlugged() const { return Port != nullptr; }

    // What the receiver hears of what the host has sent since the last call.
    simBytes Receive(const simLine& receiver);

    // Hands bytes of the receiver to the line, and to the host what the line has carried by now.
    void Send(std::span<const uint8_t> bytes, const simLine& receiver, int64_t nowNs);

    // How many bytes the line has still to carry.
    size_t Backlog() const { return Pace.Size(); }

    // How many it may carry before the receiver leaves messages out: what a slow line carries in half a
    // second, so that an answer need not wait longer.
    size_t BacklogLimit(const simLine& receiver) const;

private:
    struct closer {
        void operator()(ptyPort* port) const { ptyClose(port); }
    };

    simLine HostLine() const;

    const std::string Name;
    const bool HasLine;
    std::unique_ptr<ptyPort, closer> Port;
    simPace Pace;
};
