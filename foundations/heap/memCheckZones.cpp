#include "foundations/heap/memHeap.h"
#include "platform/debug.h"

namespace {

constexpr unsigned BlockWords = sizeof(memBlock) / sizeof(uint64_t);
constexpr unsigned ZoneWords = 16;

// A zone as it was read, with its place.
struct place {
    uint64_t Block;
    uint64_t Address;
    memZone Zone;
};

void WriteHead(memReportSink& sink, const place& at)
{
    memAddressLine(sink, "Memory block ", at.Block);
    memAddressLine(sink, "  Memory zone ", at.Address);
}

void WriteCurrent(memReportSink& sink, const place& at)
{
    memAddressLine(sink, "    Current memory zone allocated in call from ", at.Zone.RetAddr);
    sink.Dump("     Current block start ", at.Block, BlockWords);
    sink.Dump("     Current zone start ", at.Address, ZoneWords);
}

void WritePrevious(memReportSink& sink, const place& at)
{
    const uint64_t address = memAddress(at.Zone.Previous);
    memZone previous;
    if (address == 0 || !memPeek(address, previous))
        return;
    memAddressLine(sink, "    Previous memory zone allocated in call from ", previous.RetAddr);
    sink.Dump("     Previous zone start ", address, ZoneWords);
}

void WriteBrokenNext(memReportSink& sink, const place& at)
{
    WriteHead(sink, at);
    sink.Text("    Invalid pointer to next memory zone or invalid memory zone size\r\n");
    WriteCurrent(sink, at);
    WritePrevious(sink, at);
}

void WriteWrongPrevious(memReportSink& sink, const place& at, uint64_t found)
{
    WriteHead(sink, at);
    memAddressLine(sink, "    Invalid header of the next memory zone - ", found);
    WriteCurrent(sink, at);
    const uint64_t end = memAddress(at.Zone.Next);
    sink.Dump("     Current zone end ", end - ZoneWords * sizeof(uint64_t), ZoneWords);
    WritePrevious(sink, at);
}

memZonesSeen WriteCorruptedBlock(memReportSink& sink, uint64_t address)
{
    memAddressLine(sink, "Memory block ", address);
    sink.Text("  Corrupted memory block header\r\n");
    return {};
}

}  // namespace

memZonesSeen memCheckZones(memReportSink& sink, uint64_t address, const memBlock& block)
{
    place at{address, memAddress(block.FirstZone), {}};
    if (!memFirstZoneFits(address, block) || !memPeek(at.Address, at.Zone))
        return WriteCorruptedBlock(sink, address);

    // Each step goes up, or is refused: the walk ends whatever the headers hold.
    while (at.Zone.Next) {
        const uint64_t next = memAddress(at.Zone.Next);
        memZone zone;
        if (!memNextFits(at.Address, at.Zone) || !memPeek(next, zone)) {
            WriteBrokenNext(sink, at);
            return {};
        }
        if (memAddress(zone.Previous) != at.Address) {
            WriteWrongPrevious(sink, at, memAddress(zone.Previous));
            return {};
        }
        at = {address, next, zone};
    }
    return {true, at.Address, at.Zone.RetAddr};
}

bool memPeek(uint64_t address, memBlock& block)
{
    return debugRead(reinterpret_cast<const void*>(address), &block, sizeof(block));
}

bool memPeek(uint64_t address, memZone& zone)
{
    return debugRead(reinterpret_cast<const void*>(address), &zone, sizeof(zone));
}

void memAddressLine(memReportSink& sink, std::string_view text, uint64_t address)
{
    sink.Text(text);
    sink.Hex(address);
    sink.Text("\r\n");
}
