#include "bench/ratio.h"

#include "foundations/thread/thrSpin.h"

#include <mutex>

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

}  // namespace

void ratioGroups()
{
    ratioGroup("thrSpin, alone").Measure(BySpin).Against("mutex", ByMutex);
    ratioGroup("thrSpin, two threads").Threads(2).Measure(BySpin).Against("mutex", ByMutex);
}
