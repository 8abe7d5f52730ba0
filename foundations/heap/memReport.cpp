#include "foundations/heap/mem.h"
#include "foundations/heap/memChain.h"

namespace {

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
    if (memNewest() == 0) {
        sink.Text("No memory in use\r\n");
        return;
    }
    if (memCheckBlocks(sink))
        sink.Text("  No errors\r\n");
    if (!failed)
        return;
    sink.Text("\r\nMemory usage report\r\n");
    for (memChain blocks(memNewest(), memFromNewest); blocks; blocks.Advance())
        WriteBlock(sink, blocks.Address, blocks.Header);
}
