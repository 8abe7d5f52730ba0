// What the report says of a damaged heap, header field by header field.
#include "tests/foundations/heap/heapTest.h"

#include <algorithm>
#include <array>

namespace {

const std::string figures =
    lines({"Allocated blocks 3 / 3", "Allocated blocks bytes 3145728 / 3145728 (1048576)",
           "Allocated zones 5 / 5", "Allocated zones bytes 2097472 / 2097472 (1048448)"});

// Three blocks; the oldest holds three zones and a free rest, the others one zone each.
class memDamageReportTest : public heapTest
{
protected:
    void SetUp() override
    {
        heapTest::SetUp();
        // Nothing lies where the damaged pointers of these tests lead.
        fakeUnreadable(reinterpret_cast<const void*>(0x1234567), 64);
        for (unsigned i = 0; i < Zones.size(); ++i) {
            const memCallSite site(0xA0 + i);
            Zones[i] = memAlloc(i < 3 ? 100 : nearlyAll);
        }
        Old = blockOf(Zones[0]);
        Middle = blockOf(Zones[3]);
        New = blockOf(Zones[4]);
        ASSERT_EQ(report(), reportHead(figures + "  No errors\r\n"));
        // The zones of the oldest block take 576 bytes.
        ASSERT_EQ(statisticsNow(), (statistics{3, 3 * mebibyte, 5, 2 * 1048448 + 576}));
    }

    void TearDown() override
    {
        EXPECT_EQ(heapProblem(), "");
        for (void* const pointer : Zones)
            memFree(pointer);
        heapTest::TearDown();
    }

    // The report without what stands before the findings.
    std::string Findings()
    {
        const std::string text = report();
        const std::string head = reportHead(figures);
        EXPECT_EQ(text.substr(0, head.size()), head);
        return text.substr(head.size());
    }

    // What the locate step says when the zones of the nearest block below are sound.
    std::string Located(uint64_t damaged)
    {
        struct below {
            uint64_t Block, Last, Site;
        };
        const below blocks[] = {
            {Old, peek(zoneOf(Zones[2]) + zoneNext), 0},
            {Middle, peek(zoneOf(Zones[3]) + zoneNext), 0},
            {New, peek(zoneOf(Zones[4]) + zoneNext), 0},
        };
        below nearest{};
        for (const below& each : blocks)
            if (each.Block < damaged && each.Block > nearest.Block)
                nearest = each;
        if (nearest.Block == 0)
            return "  Can't locate problem\r\n";
        return lines({"  Possible problem in block " + hex(nearest.Block),
                      "  Memory zone " + hex(nearest.Last),
                      "    Current memory zone allocated in call from " + hex(nearest.Site)});
    }

    std::array<void*, 5> Zones{};
    uint64_t Old = 0;
    uint64_t Middle = 0;
    uint64_t New = 0;
};

std::string blockLine(uint64_t block)
{
    return "Memory block " + hex(block) + "\r\n";
}

std::string zoneHead(uint64_t block, uint64_t zone)
{
    return lines({"Memory block " + hex(block), "  Memory zone " + hex(zone)});
}

std::string zoneDumps(uint64_t block, uint64_t zone)
{
    return "    Current memory zone allocated in call from " + hex(peek(zone + zoneRetAddr)) + "\r\n" +
           dumpText("     Current block start ", block, 5) + dumpText("     Current zone start ", zone, 16);
}

std::string previousDump(uint64_t previous)
{
    return "    Previous memory zone allocated in call from " + hex(peek(previous + zoneRetAddr)) + "\r\n" +
           dumpText("     Previous zone start ", previous, 16);
}

const std::string brokenNext = "    Invalid pointer to next memory zone or invalid memory zone size\r\n";

}  // namespace

TEST_F(memDamageReportTest, NamesABlockWhosePreviousIsWrong)
{
    struct row {
        uint64_t Block, Right;
    };
    for (const row& each : {row{New, 0}, row{Middle, New}, row{Old, Middle}}) {
        SCOPED_TRACE(hex(each.Block));
        const damage broken(each.Block + blockPrevious, 0x1234567);
        EXPECT_EQ(Findings(),
                  blockLine(each.Block) +
                      "  Pointer to previous memory block corrupted - 0000000001234567 instead of " +
                      hex(each.Right) + "\r\n" + Located(each.Block));
    }
}

TEST_F(memDamageReportTest, NamesABlockWhoseSizeWraps)
{
    const damage broken(Middle + blockSize, UINT64_MAX - 100);
    EXPECT_EQ(Findings(),
              blockLine(Middle) + "  Invalid block size - 18446744073709551515\r\n" + Located(Middle));
}

TEST_F(memDamageReportTest, NamesABlockThatIsItsOwnNext)
{
    const damage broken(Middle + blockNext, Middle);
    EXPECT_EQ(Findings(), blockLine(Middle) + "  Block loop\r\n" + Located(Middle));
}

TEST_F(memDamageReportTest, NamesABlockWhoseNextLiesInside)
{
    for (const uint64_t next : {Middle + 1, Middle + 4096, Middle + mebibyte - 1}) {
        SCOPED_TRACE(hex(next));
        const damage broken(Middle + blockNext, next);
        EXPECT_EQ(Findings(), blockLine(Middle) + "  Invalid pointer to next memory block - " + hex(next) +
                                  "\r\n" + Located(Middle));
    }
}

TEST_F(memDamageReportTest, FollowsANextThatLeadsElsewhereAndWalksBackFromTheOldest)
{
    // An address that can be read but is no block, far below all blocks or above them.
    const std::array<uint64_t, 8> nowhere{};
    const uint64_t stray = addressOf(nowhere.data());
    const damage broken(Middle + blockNext, stray);
    EXPECT_EQ(Findings(), blockLine(stray) +
                              "  Pointer to previous memory block corrupted - 0000000000000000 instead of " +
                              hex(Middle) + "\r\n" + Located(stray) + blockLine(Middle) +
                              "  Pointer to next memory block corrupted - " + hex(stray) + " instead of " +
                              hex(Old) + "\r\n" + Located(Middle));
}

TEST_F(memDamageReportTest, FollowsANextThatSkipsABlock)
{
    const damage broken(New + blockNext, Old);
    EXPECT_EQ(Findings(), blockLine(Old) + "  Pointer to previous memory block corrupted - " + hex(Middle) +
                              " instead of " + hex(New) + "\r\n" + Located(Old));
}

TEST_F(memDamageReportTest, EndsInARingOfBlocks)
{
    const damage broken(Old + blockNext, New);
    EXPECT_EQ(Findings(), blockLine(New) + "  Pointer to previous memory block corrupted - " + hex(0) +
                              " instead of " + hex(Old) + "\r\n" + Located(New) + blockLine(Old) +
                              "  Pointer to next memory block corrupted - " + hex(New) + " instead of " +
                              hex(0) + "\r\n" + Located(Old));
}

TEST_F(memDamageReportTest, DoesNotNoticeANextThatEndsTheListEarly)
{
    const damage broken(Middle + blockNext, 0);
    EXPECT_EQ(Findings(), "  No errors\r\n");
}

TEST_F(memDamageReportTest, NamesABlockHeaderThatCannotBeRead)
{
    fakeUnreadable(reinterpret_cast<const void*>(Middle), 8);
    EXPECT_EQ(Findings(), blockLine(Middle) + "  Block header not readable\r\n" + Located(Middle));
}

TEST_F(memDamageReportTest, NamesAStrayNextThatCannotBeRead)
{
    const damage broken(Old + blockNext, 0x10);
    EXPECT_EQ(Findings(), blockLine(0x10) + "  Block header not readable\r\n  Can't locate problem\r\n" +
                              blockLine(Old) +
                              "  Pointer to next memory block corrupted - 0000000000000010 instead of "
                              "0000000000000000\r\n" +
                              Located(Old));
}

TEST_F(memDamageReportTest, FindsTheCulpritBelowADamagedBlock)
{
    // A fault of the nearest block's own zones is shown in the place of its last zone.
    const uint64_t blocks[] = {Old, Middle, New};
    const uint64_t highest = *std::max_element(std::begin(blocks), std::end(blocks));
    uint64_t nearest = 0;
    for (const uint64_t each : blocks)
        nearest = each != highest ? std::max(nearest, each) : nearest;

    const damage broken(highest + blockSize, UINT64_MAX);
    const damage zone(nearest + blockFirstZone, 0);
    EXPECT_THAT(Findings(),
                testing::HasSubstr(blockLine(highest) + "  Invalid block size - 18446744073709551615\r\n" +
                                   "  Possible problem in block " + hex(nearest) + "\r\n" +
                                   blockLine(nearest) + "  Corrupted memory block header\r\n"));
}

TEST_F(memDamageReportTest, CannotLocateWhatIsBelowTheLowestBlock)
{
    const uint64_t lowest = std::min({Old, Middle, New});
    const damage broken(lowest + blockSize, UINT64_MAX);
    EXPECT_THAT(Findings(), testing::HasSubstr("  Can't locate problem\r\n"));
}

TEST_F(memDamageReportTest, LooksAtTheBlocksBehindTheDamagedOneFromTheOtherEnd)
{
    const damage broken(Middle + blockPrevious, 0);
    const damage zone(Old + blockFirstZone, Old + 8);
    EXPECT_THAT(Findings(), testing::EndsWith(blockLine(Old) + "  Corrupted memory block header\r\n"));
    const damage newest(zoneOf(Zones[4]) + zoneSize, 64);
    EXPECT_THAT(Findings(), testing::StartsWith(zoneHead(New, zoneOf(Zones[4])) + brokenNext));
}

TEST_F(memDamageReportTest, NamesABlockWhoseFirstZoneCannotBe)
{
    for (const uint64_t first : {uint64_t{0}, Old, Old + 39, Old + 65, Old + mebibyte, Old - 64}) {
        SCOPED_TRACE(hex(first));
        const damage broken(Old + blockFirstZone, first);
        EXPECT_EQ(Findings(), blockLine(Old) + "  Corrupted memory block header\r\n");
    }
}

TEST_F(memDamageReportTest, NamesABlockTooSmallForItsFirstZone)
{
    const damage broken(Old + blockSize, 127);
    EXPECT_EQ(Findings(), blockLine(Old) + "  Corrupted memory block header\r\n");
}

TEST_F(memDamageReportTest, NamesABlockWhoseFirstZoneCannotBeRead)
{
    fakeUnreadable(reinterpret_cast<const void*>(zoneOf(Zones[0])), 8);
    EXPECT_EQ(Findings(), blockLine(Old) + "  Corrupted memory block header\r\n");
}

TEST_F(memDamageReportTest, DumpsAZoneWhoseNextIsWrong)
{
    const uint64_t zone = zoneOf(Zones[1]);
    for (const uint64_t next : {uint64_t{8}, zone, zoneOf(Zones[0]), zone + 256, UINT64_MAX}) {
        SCOPED_TRACE(hex(next));
        const damage broken(zone + zoneNext, next);
        EXPECT_EQ(Findings(),
                  zoneHead(Old, zone) + brokenNext + zoneDumps(Old, zone) + previousDump(zoneOf(Zones[0])));
    }
}

TEST_F(memDamageReportTest, DumpsAZoneWhoseSizeIsWrong)
{
    const uint64_t zone = zoneOf(Zones[1]);
    for (const uint64_t size : {uint64_t{0}, uint64_t{64}, UINT64_MAX}) {
        SCOPED_TRACE(size);
        const damage broken(zone + zoneSize, size);
        EXPECT_EQ(Findings(),
                  zoneHead(Old, zone) + brokenNext + zoneDumps(Old, zone) + previousDump(zoneOf(Zones[0])));
    }
}

TEST_F(memDamageReportTest, DumpsNoPreviousZoneForTheFirst)
{
    const uint64_t zone = zoneOf(Zones[0]);
    const damage broken(zone + zoneSize, 64);
    EXPECT_EQ(Findings(), zoneHead(Old, zone) + brokenNext + zoneDumps(Old, zone));
}

TEST_F(memDamageReportTest, DumpsNoPreviousZoneThatCannotBeRead)
{
    const uint64_t zone = zoneOf(Zones[0]);
    const damage broken(zone + zoneSize, 64);
    const damage previous(zone + zonePrevious, 0x20);
    EXPECT_EQ(Findings(), zoneHead(Old, zone) + brokenNext + zoneDumps(Old, zone));
}

TEST_F(memDamageReportTest, TakesANextThatCannotBeReadAsWrong)
{
    const uint64_t zone = zoneOf(Zones[1]);
    fakeUnreadable(reinterpret_cast<const void*>(zone + 192), 8);
    const std::string expected = zoneHead(Old, zone) + brokenNext + zoneDumps(Old, zone);
    EXPECT_EQ(Findings(), expected + previousDump(zoneOf(Zones[0])));
}

TEST_F(memDamageReportTest, EndsADumpAtTheEndOfReadableMemory)
{
    const uint64_t zone = zoneOf(Zones[2]);
    fakeUnreadable(reinterpret_cast<const void*>(zone + 72), 8);
    const damage broken(zone + zoneSize, 64);
    const std::string text = zoneHead(Old, zone) + brokenNext +
                             "    Current memory zone allocated in call from 00000000000000A2\r\n" +
                             dumpText("     Current block start ", Old, 5) +
                             dumpText("     Current zone start ", zone, 9);
    EXPECT_EQ(Findings(), text + previousDump(zoneOf(Zones[1])));
}

TEST_F(memDamageReportTest, DumpsTheEndOfAZoneWhoseNextPointsBackWrongly)
{
    const uint64_t zone = zoneOf(Zones[1]);
    const uint64_t next = zoneOf(Zones[2]);
    for (const uint64_t previous : {uint64_t{0}, uint64_t{0x1234567}, next, zoneOf(Zones[0])}) {
        SCOPED_TRACE(hex(previous));
        const damage broken(next + zonePrevious, previous);
        EXPECT_EQ(Findings(), zoneHead(Old, zone) + "    Invalid header of the next memory zone - " +
                                  hex(previous) + "\r\n" + zoneDumps(Old, zone) +
                                  dumpText("     Current zone end ", next - 128, 16) +
                                  previousDump(zoneOf(Zones[0])));
    }
}

TEST_F(memDamageReportTest, NamesEveryDamagedBlockOnce)
{
    const damage first(New + blockFirstZone, 0);
    const damage second(Middle + blockFirstZone, 0);
    const damage third(Old + blockFirstZone, 0);
    const std::string reason = "  Corrupted memory block header\r\n";
    EXPECT_EQ(Findings(), blockLine(New) + reason + blockLine(Middle) + reason + blockLine(Old) + reason);
}

TEST_F(memDamageReportTest, DoesNotNoticeDamageWhereNothingCanBeCompared)
{
    struct row {
        const char* Name;
        uint64_t Address;
    };
    const uint64_t rest = peek(zoneOf(Zones[2]) + zoneNext);
    const row rows[] = {
        {"free bytes of a block", Old + blockFree},
        {"previous of the first zone", zoneOf(Zones[0]) + zonePrevious},
        {"block of a zone", zoneOf(Zones[1]) + zoneBlock},
        {"maker of a zone", zoneOf(Zones[1]) + zoneRetAddr},
        {"reallocating call", zoneOf(Zones[1]) + zoneReallocFrom},
        {"time", zoneOf(Zones[1]) + zoneTime},
        {"the unused field", zoneOf(Zones[1]) + 56},
        {"size of the last zone", rest + zoneSize},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Name);
        const damage broken(each.Address, 0x1234567);
        EXPECT_EQ(Findings(), "  No errors\r\n");
    }
}

TEST_F(memDamageReportTest, ListsTheUsageAsFarAsADamagedHeapCanBeFollowed)
{
    const damage zone(zoneOf(Zones[1]) + zoneSize, 64);
    const memCallSite site(0x42);
    EXPECT_THROW(memAlloc(100), fakeBreak);
    const std::string failure = "memAlloc_Int - Invalid pointer to next memory zone\r\n"
                                "memAlloc_Int - Current memory zone allocated in call from 00000000000000A1";
    const std::string text = report();
    const uint64_t broken = zoneOf(Zones[1]);
    const std::string findings =
        zoneHead(Old, broken) + brokenNext + zoneDumps(Old, broken) + previousDump(zoneOf(Zones[0]));
    EXPECT_THAT(text,
                testing::StartsWith(reportHead(figures, failure) + findings + "\r\nMemory usage report\r\n"));
    EXPECT_THAT(text,
                testing::EndsWith("    Zone at " + hex(zoneOf(Zones[0])) +
                                  " - RetAddr 00000000000000A0 size 192 - time 1000000\r\n    Zone at " +
                                  hex(broken) + " - RetAddr 00000000000000A1 size 64 - time 1000000\r\n"));
}

TEST_F(memDamageReportTest, ListsNoZonesOfABlockThatCannotBeFollowed)
{
    const damage first(Old + blockFirstZone, 0);
    EXPECT_THROW(memAlloc(100), fakeBreak);
    EXPECT_THAT(report(), testing::EndsWith("  Block at " + hex(Old) + " - size 1048576 free " +
                                            decimal(peek(Old + blockFree)) + "\r\n"));
}
