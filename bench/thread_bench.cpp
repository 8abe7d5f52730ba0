#include "bench/ratio.h"

#include "foundations/thread/thrGate.h"
#include "foundations/thread/thrSpin.h"

#include <array>
#include <mutex>
#include <thread>

namespace {

// What a lock guards here is one number: the shortest section there is, so that the lock itself shows.
template <class Enter, class Leave>
void Count(benchmark::State& state, const Enter& enter, const Leave& leave)
{
    static uint64_t number = 0;
    for ([[maybe_unused]] auto _ : state) {
        enter();
        benchmark::DoNotOptimize(++number);
        leave();
    }
}

thrSpin Spin;
std::mutex Mutex;

// Threads that sleep on words beside each other, as those do that wait for work. Where a run-time library
// notes sleepers in a few places by address, one of them is noted in the place of any lock.
class sleepers
{
public:
    sleepers()
    {
        for (size_t at = 0; at < Gates.size(); ++at)
            Threads[at] = std::jthread([this, at] { Gates[at].Sleep(); });
    }
    ~sleepers()
    {
        for (thrGate& gate : Gates)
            gate.Wake();
    }
    sleepers(const sleepers&) = delete;
    sleepers& operator=(const sleepers&) = delete;

private:
    static constexpr size_t Count = 16;
    std::array<thrGate, Count> Gates;
    std::array<std::jthread, Count> Threads;
};

void BySpin(benchmark::State& state)
{
    Count(
        state, [] { Spin.Lock(); }, [] { Spin.Unlock(); });
}

void ByMutex(benchmark::State& state)
{
    Count(
        state, [] { Mutex.lock(); }, [] { Mutex.unlock(); });
}

void BesideSleepers(benchmark::State& state)
{
    const sleepers others;
    BySpin(state);
}

}  // namespace

void ratioGroups()
{
    ratioGroup("thrSpin, alone").Measure(BySpin).Against("mutex", ByMutex);
    ratioGroup("thrSpin, alone while others sleep").Measure(BesideSleepers).Against("mutex", ByMutex);
    ratioGroup("thrSpin, two threads").Threads(2).Measure(BySpin).Against("mutex", ByMutex);
}
