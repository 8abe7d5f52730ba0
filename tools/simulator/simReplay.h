// A recorded stream in a receiver's place: deaf, and always saying the same.
#pragma once

#include "tools/simulator/simBytes.h"
#include "tools/simulator/simReceiver.h"
#include "tools/simulator/simUart.h"

#include <cstdint>

struct simReplayOptions {
    double BytesPerSecond = 11'520;
    bool Loop = false;  // begins again at the end
    simLine Line = {115'200, 'N', 1};
};

class simReplay final : public simReceiver
{
public:
    simReplay(simBytes recorded, const simReplayOptions& options);

    // The faults that make sense here: Silent loses what is due, Unplugged stops the tape.
    void Take(std::span<const uint8_t>) override {}
    std::vector<uint8_t> Advance(int64_t nowNs) override;
    simTruth Truth() const override { return {}; }
    simLine Line() const override { return Options.Line; }

    // Whether everything has been sent; never with Loop.
    bool Ended() const;

private:
    const simBytes Recorded;
    const simReplayOptions Options;
    int64_t LastNs = 0;
    bool Started = false;
    double Credit = 0;
    size_t At = 0;
};
