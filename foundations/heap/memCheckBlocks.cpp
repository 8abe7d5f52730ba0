#include "foundations/heap/memChain.h"

#include <algorithm>

namespace {

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

blockFault FindFault(uint64_t address, const memBlock& block, const memDirection& way, uint64_t former)
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

walkResult Walk(memReportSink& sink, uint64_t address, const memDirection& way, uint64_t end)
{
    walkResult result;
    uint64_t former = 0;
    for (unsigned left = memMostBlocks; left > 0 && address != 0 && address != end; --left) {
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

uint64_t NearestBelow(memChain blocks, uint64_t damaged)
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
    const uint64_t nearest = std::max(NearestBelow(memChain(memNewest(), memFromNewest), damaged),
                                      NearestBelow(memChain(memOldest(), memFromOldest), damaged));
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

}  // namespace

uint64_t memNewest()
{
    return memAddress(memHeap.Newest.load(std::memory_order_relaxed));
}

uint64_t memOldest()
{
    return memAddress(memHeap.Oldest.load(std::memory_order_relaxed));
}

bool memCheckBlocks(memReportSink& sink)
{
    const walkResult down = Walk(sink, memNewest(), memFromNewest, 0);
    if (down.Stopped == 0)
        return down.Sound;
    Locate(sink, down.Stopped);
    const walkResult up = Walk(sink, memOldest(), memFromOldest, down.Stopped);
    if (up.Stopped != 0)
        Locate(sink, up.Stopped);
    return false;
}
