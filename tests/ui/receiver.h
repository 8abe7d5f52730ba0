// A simulated receiver at a serial port, on a thread of its own.
#pragma once

#include "foundations/thread/thrSpin.h"
#include "tests/ui/road.h"
#include "tools/simulator/simReceiver.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <thread>

// Which bytes make sense, to a receiver and to the program: those of any line setting, or only those that
// came with the setting of the other's end.
enum class lineSense {
    Any,
    Matching
};

class receiver
{
public:
    explicit receiver(const simOptions& options, unsigned port = 0, lineSense sense = lineSense::Any);
    explicit receiver(simModel model, unsigned port = 0);
    ~receiver();
    receiver(const receiver&) = delete;
    receiver& operator=(const receiver&) = delete;

    std::string Port() const { return Line.Name(); }

    simTruth Truth();
    uint64_t Key(uint32_t key);  // of a u-blox receiver's configuration; 0 where it has none

    // What it told lately, the newest last.
    std::deque<simTruth> Told();

    // How many messages of a class and a number the program has sent.
    unsigned Asked(uint8_t messageClass, uint8_t id);

    // How fast its time passes from now on; at 0 it answers, and tells nothing by itself.
    void Hasten(int times) { Speed = times; }
    void Freeze() { Hasten(0); }

    // Whether it can be seen which setting the program has made on the line.
    bool SeesLine();

    // From now on it takes nothing off the line.
    void Block() { Blocked = true; }

    // The cable. Plugged in again it starts as after power-up.
    void Unplug();
    void Plug();

private:
    void Play(const std::stop_token& stop);
    void Step();
    void Hear(const simBytes& bytes);
    simBytes AsOnLine(const simBytes& bytes, bool toHost) const;

    std::mutex Mutex;
    road Line;
    const std::unique_ptr<simReceiver> Simulated;
    const lineSense Sense;
    simBytes Left;   // what the line had no room for
    simBytes Heard;  // the last bytes from the program
    std::deque<simTruth> Epochs;
    std::vector<unsigned> Counts;  // of messages, by class and number
    int64_t Now = 0;               // its own time
    int64_t LastStep = 0;          // on the clock
    std::atomic<int> Speed{1};
    std::atomic<bool> Blocked{false};
    std::jthread Player;
};
