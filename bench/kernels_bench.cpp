// The kernels of graphs, in the form that this processor was given, against the plain loop.
#include "bench/ratio.h"
#include "toolkit/graphKernels.h"
#include "toolkit/graphKernelsForms.h"

#include <string>
#include <vector>

namespace {

// A spectrum of a receiver, and a long recording.
constexpr size_t lengths[] = {256, 100'000};

std::vector<float> samples(size_t count)
{
    std::vector<float> data(count);
    uint32_t state = 1;
    for (float& one : data) {
        state = state * 1'664'525 + 1'013'904'223;
        one = static_cast<float>(state >> 8) * 0x1p-24F * 100 - 20;
    }
    return data;
}

// One group for each length: `run` calls the kernel that it is given on arrays of that length.
template <class Kernel, class Plain, class Run>
void group(const char* name, const Kernel& kernel, const Plain& plain, const Run& run)
{
    for (const size_t count : lengths) {
        const auto timed = [count, run](const auto& form) {
            return [count, run, &form](benchmark::State& state) {
                const std::vector<float> source = samples(count);
                std::vector<float> first(count);
                std::vector<float> second(count);
                for ([[maybe_unused]] auto _ : state) {
                    run(form, source, first, second);
                    benchmark::DoNotOptimize(first.data());
                    benchmark::ClobberMemory();
                }
            };
        };
        ratioGroup(std::string(name) + " of " + std::to_string(count))
            .Measure(timed(kernel))
            .Against("plain loop", timed(plain));
    }
}

using floats = std::vector<float>;

}  // namespace

void ratioGroups()
{
    const graphKernelForms& plain = *graphFormsOf(graphVector::None);
    group("MinMax", graphKernels.MinMax, plain.MinMax,
          [](const auto& form, const floats& source, floats& first, floats&) {
              form(source.data(), source.size(), first.data());
          });
    group("ScaleOffset", graphKernels.ScaleOffset, plain.ScaleOffset,
          [](const auto& form, const floats& source, floats& first, floats&) {
              form(first.data(), source.data(), source.size(), 3.5F, 0.25F);
          });
    group("LogScale", graphKernels.LogScale, plain.LogScale,
          [](const auto& form, const floats& source, floats& first, floats&) {
              form(first.data(), source.data(), source.size(), 8.6858896F);
          });
    group("Min", graphKernels.Min, plain.Min,
          [](const auto& form, const floats& source, floats& first, floats&) {
              first[0] = form(source.data(), source.size());
          });
    group("Max", graphKernels.Max, plain.Max,
          [](const auto& form, const floats& source, floats& first, floats&) {
              first[0] = form(source.data(), source.size());
          });
    group("Deinterleave", graphKernels.Deinterleave, plain.Deinterleave,
          [](const auto& form, const floats& source, floats& first, floats& second) {
              form(source.data(), source.size() / 2, first.data(), second.data());
          });
}
