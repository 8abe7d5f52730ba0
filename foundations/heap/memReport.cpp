#include "foundations/heap/mem.h"
#include "foundations/heap/memHeap.h"

#include <algorithm>

namespace {

// More blocks than any heap has. Threads that go on may change the list under a walk, so its own checks are
// not enough to end it.
constexpr unsigned MostBlocks = 1u << 20;

// One way through the list of blocks.
struct direction {
    memBlock* memBlock::*Along;
    memBlock* memBlock::*Back;
    std::string_view BackDamaged;
};

constexpr direction FromNewest{&memBlock::Next, &memBlock::Previous,
                               "  Pointer to previous memory block corrupted - "};
constexpr direction FromOldest{&memBlock::Previous, &memBlock::Next,
                               "  Pointer to next memory block corrupted - "};

// The chain of blocks as it can be followed from outside: each must be readable and point back to the one
// before it.
class chain
{
public:
    chain(uint64_t first, const direction& way) : Way(way), Address(first) { Look(); }

    explicit operator bool() const { return Held; }

    void Advance()
    {
        Former = Address;
        Address = memAddress(Header.*Way.Along);
        --Left;
        Look();
    }

    const direction& Way;
    uint64_t Address;
    uint64_t Former = 0;
    memBlock Header{};

private:
    void Look()
    {
        Held = Left > 0 && Address != 0 && memPeek(Address, Header) && memAddress(Header.*Way.Back) == Former;
    }

    unsigned Left = MostBlocks;
    bool Held = false;
};

uint64_t Newest()
{
    return memAddress(memHeap.Newest.load(std::memory_order_relaxed));
}

uint64_t Oldest()
{
    return memAddress(memHeap.Oldest.load(std::memory_order_relaxed));
}

void WriteFigure(memReportSink& sink, std::string_view title, const std::atomic<uint64_t>& now,
                 const std::atomic<uint64_t>& peak)
{
    sink.Text(title);
    sink.Number(now.load(std::memory_order_relaxed));
    sink.Text(" / ");
    sink.Number(peak.load(std::memory_order_relaxed));
}

void WriteLargest(memReportSink& sink, const std::atomic<uint64_t>& largest)
{
    sink.Text(" (");
    sink.Number(largest.load(std::memory_order_relaxed));
    sink.Text(")\r\n");
}

void WriteStatistics(memReportSink& sink)
{
    const memTally& blocks = memHeap.Blocks;
    const memTally& zones = memHeap.Zones;
    WriteFigure(sink, "Allocated blocks ", blocks.Count, blocks.CountPeak);
    WriteFigure(sink, "\r\nAllocated blocks bytes ", blocks.Bytes, blocks.BytesPeak);
    WriteLargest(sink, blocks.Largest);
    WriteFigure(sink, "Allocated zones ", zones.Count, zones.CountPeak);
    WriteFigure(sink, "\r\nAllocated zones bytes ", zones.Bytes, zones.BytesPeak);
    WriteLargest(sink, zones.Largest);
}

bool HasFailure()
{
    return memHeap.Failure[0].load(std::memory_order_relaxed) != '\0';
}

void WriteFailure(memReportSink& sink)
{
    char text[memFailureSize];
    size_t length = 0;
    for (; length < memFailureSize; ++length) {
        text[length] = memHeap.Failure[length].load(std::memory_order_relaxed);
        if (text[length] == '\0')
            break;
    }
    sink.Text({text, length});
    sink.Text("\r\n");
}

// The fault of one block in a walk, if it has one, in the words of the report.
struct blockFault {
    std::string_view Reason;
    uint64_t Value = 0;
    enum : uint8_t {
        Plain,
        Size,
        Pointer,
        Instead,
    } Kind = Plain;
};

blockFault FindFault(uint64_t address, const memBlock& block, const direction& way, uint64_t former)
{
    const uint64_t back = memAddress(block.*way.Back);
    const uint64_t next = memAddress(block.Next);
    if (back != former)
        return {way.BackDamaged, back, blockFault::Instead};
    if (address + block.Size < address)
        return {"  Invalid block size - ", block.Size, blockFault::Size};
    if (next == address)
        return {"  Block loop", 0, blockFault::Plain};
    if (next > address && next - address < block.Size)
        return {"  Invalid pointer to next memory block - ", next, blockFault::Pointer};
    return {};
}

void WriteFault(memReportSink& sink, uint64_t address, const blockFault& fault, uint64_t former)
{
    memAddressLine(sink, "Memory block ", address);
    sink.Text(fault.Reason);
    if (fault.Kind == blockFault::Size)
        sink.Number(fault.Value);
    else if (fault.Kind != blockFault::Plain)
        sink.Hex(fault.Value);
    if (fault.Kind == blockFault::Instead) {
        sink.Text(" instead of ");
        sink.Hex(former);
    }
    sink.Text("\r\n");
}

// What one walk over the blocks found.
struct walkResult {
    uint64_t Stopped = 0;  // the damaged block that ended it, or 0
    bool Sound = true;     // the zones of all blocks before
};

walkResult Walk(memReportSink& sink, uint64_t address, const direction& way, uint64_t end)
{
    walkResult result;
    uint64_t former = 0;
    for (unsigned left = MostBlocks; left > 0 && address != 0 && address != end; --left) {
        memBlock block;
        const blockFault fault = memPeek(address, block)
                                     ? FindFault(address, block, way, former)
                                     : blockFault{"  Block header not readable", 0, blockFault::Plain};
        if (!fault.Reason.empty()) {
            WriteFault(sink, address, fault, former);
            result.Stopped = address;
            break;
        }
        if (!memCheckZones(sink, address, block).Sound)
            result.Sound = false;
        former = address;
        address = memAddress(block.*way.Along);
    }
    return result;
}

uint64_t NearestBelow(chain blocks, uint64_t damaged)
{
    uint64_t nearest = 0;
    for (; blocks; blocks.Advance())
        if (blocks.Address < damaged)
            nearest = std::max(nearest, blocks.Address);
    return nearest;
}

// Memory is mostly overrun upwards: whoever owns what lies just below a damaged block is the likely culprit.
void Locate(memReportSink& sink, uint64_t damaged)
{
    const uint64_t nearest = std::max(NearestBelow(chain(Newest(), FromNewest), damaged),
                                      NearestBelow(chain(Oldest(), FromOldest), damaged));
    memBlock block;
    if (nearest == 0 || !memPeek(nearest, block)) {
        sink.Text("  Can't locate problem\r\n");
        return;
    }
    memAddressLine(sink, "  Possible problem in block ", nearest);
    const memZonesSeen zones = memCheckZones(sink, nearest, block);
    if (!zones.Sound)
        return;
    memAddressLine(sink, "  Memory zone ", zones.Last);
    memAddressLine(sink, "    Current memory zone allocated in call from ", zones.LastRetAddr);
}

bool CheckAll(memReportSink& sink)
{
    const walkResult down = Walk(sink, Newest(), FromNewest, 0);
    if (down.Stopped == 0)
        return down.Sound;
    Locate(sink, down.Stopped);
    const walkResult up = Walk(sink, Oldest(), FromOldest, down.Stopped);
    if (up.Stopped != 0)
        Locate(sink, up.Stopped);
    return false;
}

void WriteZone(memReportSink& sink, uint64_t address, const memZone& zone)
{
    sink.Text("    Zone at ");
    sink.Hex(address);
    sink.Text(" - RetAddr ");
    sink.Hex(zone.RetAddr);
    sink.Text(" size ");
    sink.Number(zone.Size);
    if (zone.ReallocFrom != 0) {
        sink.Text(" - reallocated from ");
        sink.Hex(zone.ReallocFrom);
    }
    sink.Text(" - time ");
    sink.Number(zone.Time);
    sink.Text("\r\n");
}

void WriteBlock(memReportSink& sink, uint64_t address, const memBlock& block)
{
    sink.Text("  Block at ");
    sink.Hex(address);
    sink.Text(" - size ");
    sink.Number(block.Size);
    sink.Text(" free ");
    sink.Number(block.Free);
    sink.Text("\r\n");
    if (!memFirstZoneFits(address, block))
        return;
    uint64_t at = memAddress(block.FirstZone);
    memZone zone;
    while (at != 0 && memPeek(at, zone)) {
        if (!memIsFree(&zone))
            WriteZone(sink, at, zone);
        at = memNextFits(at, zone) ? memAddress(zone.Next) : 0;
    }
}

}  // namespace

void memReport(memReportSink& sink)
{
    const bool failed = HasFailure();
    // Recorded call sites are told apart from those of another build or another run by their distance from
    // this address.
    memAddressLine(sink, "Reference address ", reinterpret_cast<uint64_t>(&memAlloc_Int));
    if (failed)
        WriteFailure(sink);
    WriteStatistics(sink);
    if (Newest() == 0) {
        sink.Text("No memory in use\r\n");
        return;
    }
    if (CheckAll(sink))
        sink.Text("  No errors\r\n");
    if (!failed)
        return;
    sink.Text("\r\nMemory usage report\r\n");
    for (chain blocks(Newest(), FromNewest); blocks; blocks.Advance())
        WriteBlock(sink, blocks.Address, blocks.Header);
}
