// What all receivers have in common: power, time, the sky, solutions at a rate, and messages that get lost.
#pragma once

#include "tools/simulator/simBytes.h"
#include "tools/simulator/simDop.h"
#include "tools/simulator/simNoise.h"
#include "tools/simulator/simReceiver.h"

// One solution.
struct simEpoch {
    int64_t UtcNs = 0;
    unsigned Part = 0;  // which one of its second, from 0
    bool Fixed = false;
    simPlace Place;                 // with its noise
    double NorthSpeed = 0;          // m/s, all noise: the antenna stands still
    double EastSpeed = 0;           // m/s
    double HorizontalAccuracy = 0;  // metres
    double VerticalAccuracy = 0;    // metres
    simDop Dop;
    std::vector<simSat> Sats;

    bool IsWholeSecond() const { return Part == 0; }
};

class simCore : public simReceiver
{
public:
    explicit simCore(const simOptions& options);

    void Take(std::span<const uint8_t> fromHost) final;
    std::vector<uint8_t> Advance(int64_t nowNs) final;
    simTruth Truth() const override;
    simLine Line() const override { return Options.Line; }

protected:
    enum class kind : uint8_t {
        Answer,    // to something the host sent
        Periodic,  // sent by itself, left out while the line is full
    };

    // Begins anew with what survives a loss of power.
    virtual void PowerUp() = 0;
    // The first moment in which it hears and speaks after a power-up.
    virtual void OnReady() {}
    virtual void OnBytes(std::span<const uint8_t> fromHost) = 0;
    virtual void OnEpoch(const simEpoch& epoch) = 0;
    // Whether the receiver hears this signal of a system.
    virtual bool Hears(simSystem system, const simSignal& signal) const = 0;
    // Whether it can tell of this satellite at all.
    virtual bool Knows(simSystem, uint8_t) const { return true; }

    // Lets one message leave, with what the faults do to it.
    void Send(const simBytes& message, kind why);

    // Starts anew as after a power-up; the solution comes back `fixSeconds` later.
    void Restart(int fixSeconds);

    // Deaf and dumb until it has booted.
    bool IsBooting() const { return Booting; }

    const simEpoch& Current() const { return Epoch; }
    int64_t UtcNs() const { return Options.StartUtcNs + Elapsed; }

    simOptions Options;
    unsigned Rate;           // solutions a second, 1 to 25
    uint32_t SentBytes = 0;  // since power-up
    uint32_t ReceivedBytes = 0;
    simNoise Noise;

private:
    int64_t EpochTime(int64_t second, unsigned part) const;
    void ScheduleFrom(int64_t utcNs);
    void RunEpochsUpTo(int64_t utcNs);
    void Solve(int64_t utcNs);
    void SeeSats();
    void Locate();
    void BreakBytes(simBytes& message);

    simEpoch Epoch;
    simBytes Out;
    bool Started = false;
    bool Booting = false;
    bool WasUnplugged = false;
    int64_t Origin = 0;      // the owner's clock at power-up
    int64_t Elapsed = 0;     // since then
    int64_t ReadyAt = 0;     // on the scale of Elapsed
    int64_t FixAt = 0;       // on the scale of Elapsed
    int64_t NextSecond = 0;  // of the next solution, seconds since 1970
    unsigned NextPart = 0;
    unsigned ScheduledRate = 0;
    double Drift[3] = {};  // of the solution, metres to the north, to the east and up
};
