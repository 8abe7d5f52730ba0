// How fast the decoders take streams from memory, beside a plain loop that only finds the messages of the
// same bytes and computes their checksums. Before the ratios it says what each stream costs for a message and
// how often a message allocates; after them, how many bytes a second go through.
//
//     gnss_bench --input FILE --protocol nmea|tsip|ubx    measures that stream instead
#include "bench/gnssFloors.h"
#include "bench/gnssStreams.h"
#include "bench/ratio.h"
#include "gnss/gnssNMEA.h"
#include "gnss/gnssTSIP.h"
#include "gnss/gnssUBX.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>

namespace {

std::atomic<uint64_t> Allocations{0};

ratioOption Input("input");
ratioOption Protocol("protocol");

constexpr size_t Chunks[] = {64, 65536};

// What was measured of one stream in chunks of one size.
struct figure {
    std::string Name;
    size_t Bytes;
    uint64_t Messages;
    double AllocationsEach;
    double BestSeconds = 0;
};

std::vector<std::unique_ptr<figure>>& Figures()
{
    static std::vector<std::unique_ptr<figure>> all;
    return all;
}

void PrintFigures()
{
    for (const auto& each : Figures()) {
        if (each->BestSeconds == 0)
            continue;
        const auto bytes = static_cast<double>(each->Bytes);
        const auto messages = static_cast<double>(each->Messages);
        std::printf("%s: %.0f MB/s, %.1f ns a message, %.3f allocations a message\n", each->Name.c_str(),
                    bytes / each->BestSeconds / 1e6, each->BestSeconds / messages * 1e9,
                    each->AllocationsEach);
    }
}

template <class Consumer>
void FeedAll(Consumer& consumer, const gnssStream& stream, size_t chunk)
{
    for (size_t at = 0; at < stream.size(); at += chunk)
        consumer.Feed(stream.data() + at, std::min(chunk, stream.size() - at));
}

template <class Floor>
uint64_t CountMessages(const gnssStream& stream)
{
    Floor floor;
    FeedAll(floor, stream, stream.size());
    return std::max<uint64_t>(floor.Messages, 1);
}

template <class Decoder>
double AllocationsEach(const gnssStream& stream, size_t chunk, uint64_t messages)
{
    Decoder decoder;
    // The first rounds bring all buffers to their size.
    for (unsigned round = 0; round < 3; round++)
        FeedAll(decoder, stream, chunk);
    const uint64_t before = Allocations;
    FeedAll(decoder, stream, chunk);
    return static_cast<double>(Allocations - before) / static_cast<double>(messages);
}

template <class Consumer>
ratioFunction Loop(std::shared_ptr<const gnssStream> stream, size_t chunk, figure* kept)
{
    return [=](benchmark::State& state) {
        Consumer consumer;
        const auto start = std::chrono::steady_clock::now();
        for ([[maybe_unused]] auto _ : state) {
            FeedAll(consumer, *stream, chunk);
            benchmark::ClobberMemory();
        }
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        const double each = spent.count() / static_cast<double>(state.iterations());
        if (kept != nullptr && (kept->BestSeconds == 0 || each < kept->BestSeconds))
            kept->BestSeconds = each;
        benchmark::DoNotOptimize(consumer);
    };
}

template <class Decoder, class Floor>
void Group(const std::string& name, const gnssStream& bytes)
{
    const auto stream = std::make_shared<const gnssStream>(bytes);
    const uint64_t messages = CountMessages<Floor>(bytes);
    for (const size_t chunk : Chunks) {
        const std::string title = name + " in chunks of " + std::to_string(chunk);
        const double allocations = AllocationsEach<Decoder>(bytes, chunk, messages);
        Figures().push_back(std::make_unique<figure>(figure{title, bytes.size(), messages, allocations}));
        ratioGroup(title)
            .Measure(Loop<Decoder>(stream, chunk, Figures().back().get()))
            .Against("frame and checksum", Loop<Floor>(stream, chunk, nullptr));
    }
}

void GroupOf(const std::string& protocol, const gnssStream& stream)
{
    if (protocol == "nmea")
        Group<gnssNMEA, nmeaFloor>("NMEA", stream);
    else if (protocol == "tsip")
        Group<gnssTSIP, tsipFloor>("TSIP", stream);
    else if (protocol == "ubx")
        Group<gnssUBX, ubxFloor>("UBX", stream);
    else
        std::fprintf(stderr, "--protocol is nmea, tsip or ubx\n");
}

gnssStream FileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    gnssStream bytes(std::istreambuf_iterator<char>(file), {});
    if (bytes.empty())
        std::fprintf(stderr, "%s cannot be read, or is empty\n", path.c_str());
    return bytes;
}

}  // namespace

void ratioGroups()
{
    // The list is made first, so that it is still there when it is printed at the end.
    Figures();
    std::atexit(PrintFigures);
    if (!Input.Value().empty()) {
        const gnssStream stream = FileBytes(Input.Value());
        if (!stream.empty())
            GroupOf(Protocol.Value(), stream);
        return;
    }
    GroupOf("nmea", gnssStreamNMEA());
    GroupOf("ubx", gnssStreamUBX());
    GroupOf("tsip", gnssStreamTSIP());
}

// --- Every allocation of this program is counted.

void* operator new(size_t size)
{
    Allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* const memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    std::abort();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}
