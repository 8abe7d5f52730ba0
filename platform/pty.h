// Virtual serial ports: this program is the device at the far end, whoever opens the port is its host.
//
// One port belongs to one thread at a time. Nothing here blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

struct ptyPort;

// Whether this system has such ports at all.
bool ptyAvailable();

enum class ptyFault : uint8_t {
    None,
    Unavailable,  // the system has no such ports
    Name,         // the name does not begin with "tty", has a separator of paths in it, or is too long
    NoFolder,     // the person has no folder for what runs: XDG_RUNTIME_DIR is not set, or cannot be written
    Taken,        // another program has a virtual port of this name, or a file of that name stands there
    System,       // the system has no more ports, or refuses
};

// Makes a port that other programs find as `name`: it is opened by commOpen and listed by commDevices. A port
// of that name which a program left behind when it was killed is replaced. It starts with 9600 baud, eight
// bits and no parity. Null on failure.
ptyPort* ptyOpen(std::string_view name, ptyFault& fault);

// Unplugs the port: hosts that have it open see it go.
void ptyClose(ptyPort* port);

// Takes up to `count` bytes that the host has sent; how many. A host may come, go and come again meanwhile.
size_t ptyRead(ptyPort* port, void* buffer, size_t count);

// Hands bytes to the host; how many there was room for. What no host fetches fills that room, some thousand
// bytes, and is dropped when more comes.
size_t ptyWrite(ptyPort* port, const void* data, size_t count);

// The line setting that the host has made. Of parity only this much is visible that it is odd.
struct ptySetting {
    uint32_t BaudRate = 9600;
    bool Odd = false;
    uint8_t StopBits = 1;
};
ptySetting ptyHostSetting(ptyPort* port);
