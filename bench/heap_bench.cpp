#include "bench/ratio.h"

#include "foundations/heap/mem.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

// Sizes of buffers as the program has them, in an order without a pattern.
constexpr uint64_t Sizes[] = {4096, 320, 16384, 1000, 64, 8192, 2500, 128};
constexpr size_t SizeCount = sizeof(Sizes) / sizeof(Sizes[0]);

// Keeps so many buffers alive and replaces one in each turn.
template <class Take, class Give>
void Replace(benchmark::State& state, size_t live, const Take& take, const Give& give)
{
    std::vector<void*> buffers(live);
    size_t size = 0;
    for (void*& each : buffers)
        each = take(Sizes[size++ % SizeCount]);
    size_t next = 0;
    for ([[maybe_unused]] auto _ : state) {
        give(buffers[next]);
        buffers[next] = take(Sizes[size++ % SizeCount]);
        benchmark::DoNotOptimize(buffers[next]);
        // A step that is prime to all counts of buffers visits each of them.
        next = (next + 7) % live;
    }
    for (void* const each : buffers)
        give(each);
}

void Group(size_t live)
{
    ratioGroup("memAlloc and memFree, " + std::to_string(live) + " live")
        .Measure([live](benchmark::State& state) {
            Replace(
                state, live, [](uint64_t size) { return memAlloc(size); },
                [](void* pointer) { memFree(pointer); });
        })
        .Against("malloc", [live](benchmark::State& state) {
            Replace(
                state, live, [](uint64_t size) { return std::malloc(size); },
                [](void* pointer) { std::free(pointer); });
        });
}

}  // namespace

void ratioGroups()
{
    for (const size_t live : {size_t{10}, size_t{100}, size_t{1000}})
        Group(live);
}
