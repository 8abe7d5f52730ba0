// How fast the decoders take streams from memory, beside a plain loop that only finds the messages of the
// same bytes and computes their checksums. Before the ratios it says what each stream costs for a message and
// how often a message allocates; after them, how many bytes a second go through.
//
//     gnss_bench --input FILE --protocol nmea|tsip|ubx    measures that stream instead
//     gnss_bench --day EPOCHS                             only shows that so many epochs leave no memory
//     behind
#include "bench/gnssFloors.h"
#include "bench/gnssStreams.h"
#include "bench/ratio.h"
#include "gnss/gnssNMEA.h"
#include "gnss/gnssTSIP.h"
#include "gnss/gnssUBX.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>

namespace {

std::atomic<uint64_t> Allocations{0};
std::atomic<uint64_t> BytesLive{0};

ratioOption Input("input");
ratioOption Protocol("protocol");
ratioOption Day("day");

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

// A decoder in whose spectra somebody is interested.
struct spectrumDecoder : gnssUBX {
    spectrumDecoder()
    {
        OnRFSpectrum = [](const Spectrum& told) { benchmark::DoNotOptimize(told.Levels); };
    }
};

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

[[noreturn]] void WrongUse(const std::string& what)
{
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(2);
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
        WrongUse("--protocol is nmea, tsip or ubx");
}

// Feeds a stream over and over, in chunks of ever other sizes, until so many epochs have gone by. Whether the
// decoder holds as much memory at the end as it held once warm.
template <class Decoder>
bool StaysFlat(const char* name, const gnssEpochs& each, uint64_t epochs)
{
    const gnssStream& stream = each.Bytes;
    Decoder decoder;
    uint64_t liveWarm = 0;
    uint64_t allocationsWarm = 0;
    uint64_t done = 0;
    uint32_t random = 1;
    for (unsigned round = 0; done < epochs; round++, done += each.Count) {
        for (size_t at = 0; at < stream.size();) {
            random = random * 1664525 + 1013904223;
            const size_t chunk = std::min<size_t>(1 + (random >> 20), stream.size() - at);
            decoder.Feed(stream.data() + at, chunk);
            at += chunk;
        }
        if (round == 2) {
            liveWarm = BytesLive;
            allocationsWarm = Allocations;
        }
    }
    const uint64_t live = BytesLive;
    std::printf("%s: %llu epochs, %llu allocations once warm, %+lld bytes held more than then\n", name,
                static_cast<unsigned long long>(done),
                static_cast<unsigned long long>(Allocations - allocationsWarm),
                static_cast<long long>(live - liveWarm));
    return live <= liveWarm;
}

[[noreturn]] void ShowTheDay(uint64_t epochs)
{
    const bool flat = StaysFlat<gnssNMEA>("NMEA", gnssStreamNMEA(), epochs) &&
                      StaysFlat<gnssUBX>("UBX", gnssStreamUBX(), epochs) &&
                      StaysFlat<gnssTSIP>("TSIP", gnssStreamTSIP(), epochs);
    std::exit(flat ? 0 : 1);
}

gnssStream FileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    gnssStream bytes(std::istreambuf_iterator<char>(file), {});
    if (bytes.empty())
        WrongUse(path + " cannot be read, or is empty");
    return bytes;
}

}  // namespace

void ratioGroups()
{
    if (!Day.Value().empty())
        ShowTheDay(std::strtoull(Day.Value().c_str(), nullptr, 10));
    // The list is made first, so that it is still there when it is printed at the end.
    Figures();
    std::atexit(PrintFigures);
    if (!Input.Value().empty()) {
        GroupOf(Protocol.Value(), FileBytes(Input.Value()));
        return;
    }
    GroupOf("nmea", gnssStreamNMEA().Bytes);
    GroupOf("ubx", gnssStreamUBX().Bytes);
    GroupOf("tsip", gnssStreamTSIP().Bytes);
    Group<spectrumDecoder, ubxFloor>("UBX with spectra", gnssStreamSpectrum().Bytes);
}

// --- Every allocation of this program is counted. Its size stands in front of it.

constexpr size_t SizeRoom = alignof(std::max_align_t);

void* operator new(size_t size)
{
    Allocations.fetch_add(1, std::memory_order_relaxed);
    BytesLive.fetch_add(size, std::memory_order_relaxed);
    auto* const memory = static_cast<std::byte*>(std::malloc(size + SizeRoom));
    if (memory == nullptr)
        std::abort();
    std::memcpy(memory, &size, sizeof size);
    return memory + SizeRoom;
}

void operator delete(void* memory) noexcept
{
    if (memory == nullptr)
        return;
    std::byte* const start = static_cast<std::byte*>(memory) - SizeRoom;
    size_t size = 0;
    std::memcpy(&size, start, sizeof size);
    BytesLive.fetch_sub(size, std::memory_order_relaxed);
    std::free(start);
}

void operator delete(void* memory, size_t) noexcept
{
    operator delete(memory);
}
