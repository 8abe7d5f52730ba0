// A serial line with a receiver's plug at its far end: the port is opened by the program under its name.
//
// One thread at a time. Each system defines this class once; where programs cannot make ports, whoever runs
// the tests gives one.
#pragma once

#include "tools/simulator/simBytes.h"
#include "tools/simulator/simReceiver.h"

#include <memory>
#include <optional>
#include <span>
#include <string>

class road
{
public:
    // How many can be had at once.
    static unsigned Most();

    // Whether pages are painted so fast that data may come much faster than from a receiver.
    static bool BearsHaste();

    // The port of this number, counted from 0, plugged in.
    explicit road(unsigned number);
    ~road();
    road(const road&) = delete;
    road& operator=(const road&) = delete;

    std::string Name() const;
    void Plug();
    void Unplug();

    // How many bytes there was room for.
    size_t Send(std::span<const uint8_t> bytes);
    simBytes Receive();

    // What the program has set; nothing where that cannot be seen, and the line then carries every setting.
    std::optional<simLine> HostLine() const;

private:
    struct parts;
    const std::unique_ptr<parts> Parts;
};
