// What the heap is made of, for this room and its tests alone.
//
// The heap is a list of blocks, large regions of a private platform heap, newest first. Each block is divided
// without gaps into zones, a list in address order; a zone is one allocation or free. Both headers have fixed
// layouts, so that a dump of them can be read by eye.
#pragma once

#include "foundations/heap/memReportSink.h"
#include "foundations/thread/thrSpin.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

struct heapHandle;
struct memZone;

// The start of a region. Its zones begin at the first address behind it that is aligned to memAlignment.
struct memBlock {
    memBlock* Next;      // the block added before this one
    memBlock* Previous;  // the block added after this one
    memZone* FirstZone;
    uint64_t Size;  // of the whole region, as the platform tells it
    uint64_t Free;  // bytes in free zones
};

// The start of a zone. What a caller owns begins right behind it. The type asks for no alignment of its own,
// because copies of it lie on stacks that cannot be aligned so far; in a block it is always aligned to
// memAlignment.
struct memZone {
    memZone* Next;
    memZone* Previous;
    memBlock* Block;
    uint64_t RetAddr;      // the allocating call, 0 in a free zone
    uint64_t ReallocFrom;  // the call that let the zone grow where it is, or 0
    uint64_t Size;         // with this header, a multiple of memAlignment
    uint64_t Time;         // of its making, microseconds of the steady clock
    uint64_t Unused;
};

constexpr uint64_t memAlignment = 64;

static_assert(std::is_standard_layout_v<memBlock> && std::is_trivially_copyable_v<memBlock>);
static_assert(sizeof(memBlock) == 40);
static_assert(offsetof(memBlock, Next) == 0);
static_assert(offsetof(memBlock, Previous) == 8);
static_assert(offsetof(memBlock, FirstZone) == 16);
static_assert(offsetof(memBlock, Size) == 24);
static_assert(offsetof(memBlock, Free) == 32);

static_assert(std::is_standard_layout_v<memZone> && std::is_trivially_copyable_v<memZone>);
static_assert(sizeof(memZone) == memAlignment);
static_assert(offsetof(memZone, Next) == 0);
static_assert(offsetof(memZone, Previous) == 8);
static_assert(offsetof(memZone, Block) == 16);
static_assert(offsetof(memZone, RetAddr) == 24);
static_assert(offsetof(memZone, ReallocFrom) == 32);
static_assert(offsetof(memZone, Size) == 40);
static_assert(offsetof(memZone, Time) == 48);

// How many blocks or zones there are, and how large. Changed under HeapLock; the report reads it without,
// hence the atomics.
class memTally
{
public:
    constexpr memTally() = default;

    // One more, or one less, of a size.
    void Enter(uint64_t size);
    void Leave(uint64_t size);

    // One of them has become this much larger, and is now `size` as a whole; or this much smaller.
    void Grow(uint64_t bytes, uint64_t size);
    void Shrink(uint64_t bytes);

    std::atomic<uint64_t> Count{0};
    std::atomic<uint64_t> CountPeak{0};
    std::atomic<uint64_t> Bytes{0};
    std::atomic<uint64_t> BytesPeak{0};
    std::atomic<uint64_t> Largest{0};  // of a single one, ever
};

constexpr size_t memFailureSize = 2048;

// The one heap of the process. It is ready before any static object is, and stays so after the last of them.
// Everything is guarded by HeapLock; what the report reads without it is atomic.
struct memHeapState {
    std::atomic<memBlock*> Newest{nullptr};
    std::atomic<memBlock*> Oldest{nullptr};
    heapHandle* Heap = nullptr;  // exists from the first allocation until the last block is freed
    thrSpin HeapLock;
    std::atomic<char> Failure[memFailureSize]{};  // the text of the last fault, zero-terminated
    memTally Blocks;
    memTally Zones;
};

extern constinit memHeapState memHeap;

// The allocation proper, under HeapLock. Nothing when a fault was reported: HeapLock is then released, in
// every other case it is still held. The pointer is null when memory cannot be had.
std::optional<void*> memAlloc_Int(uint64_t size, uint64_t caller, bool soft);

// The release proper, under HeapLock. False when a fault was reported: HeapLock is then released, otherwise
// it is still held.
bool memFree_Int(void* pointer, uint64_t caller);

// The site to record for a call: that of a living memCallSite, else the caller's.
uint64_t memSite(uint64_t caller);

inline uint64_t memAddress(const void* pointer)
{
    return reinterpret_cast<uint64_t>(pointer);
}

// The size of the zone for a request. It wraps for a request near 2^64 and is then not above it.
uint64_t memZoneSize(uint64_t request);

// Whether the first zone of the block at `address` can be where its header says.
bool memFirstZoneFits(uint64_t address, const memBlock& block);

// Whether the zone at `address` ends where it says that the next one begins, if it says so.
bool memNextFits(uint64_t address, const memZone& zone);

// The block around an address, or null.
memBlock* memFindBlock(const void* pointer);

// The zone whose header is at this address, with sound links to its neighbours, or null.
memZone* memFindZone(const memBlock& block, uint64_t address);

// Cuts a zone down to `size` and makes the rest a free zone behind it.
void memSplit(memZone& zone, uint64_t size);

// Makes a zone take in the one behind it.
void memAbsorbNext(memZone& zone);

inline bool memIsFree(const memZone* zone)
{
    return zone && zone->RetAddr == 0;
}

// Takes a region from the private heap, links it as the newest block, and gives its first zone, which has
// this size; a free one follows if there is room. Null when the memory cannot be had.
memZone* memNewBlock(uint64_t zoneSize);

// Unlinks an empty block and gives it back; the private heap goes with the last one.
void memReleaseBlock(memBlock& block);

// The text of one fault: put together under HeapLock while the headers still stand, told without it.
class memFault final : public memReportSink
{
public:
    explicit memFault(std::string_view text) { Text(text); }
    memFault(const memFault&) = delete;
    memFault& operator=(const memFault&) = delete;

    // Keeps the text as the last failure, releases HeapLock and ends the program with the text.
    void Raise();

    // The same, with another text told than the one that is kept.
    void Raise(std::string_view told);

private:
    bool Write(const char* bytes, size_t count) override;

    char Bytes[memFailureSize];
    size_t Length = 0;
};

// Raises the fault of an address that no block holds.
void memRaiseNoBlock(std::string_view operation, const void* pointer, uint64_t caller);

// What the report found out about the zones of one block.
struct memZonesSeen {
    bool Sound = false;
    uint64_t Last = 0;  // the last zone in address order and its RetAddr; set if sound
    uint64_t LastRetAddr = 0;
};

// Checks all zones of a block by reading them from outside, and writes the damage that it finds.
memZonesSeen memCheckZones(memReportSink& sink, uint64_t address, const memBlock& block);

// Copies a block's or zone's header, however damaged the pointer to it may be. False when it is not readable.
bool memPeek(uint64_t address, memBlock& block);
bool memPeek(uint64_t address, memZone& zone);

// Writes a text, an address and a line end.
void memAddressLine(memReportSink& sink, std::string_view text, uint64_t address);
