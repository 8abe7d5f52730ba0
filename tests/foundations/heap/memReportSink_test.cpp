#include "foundations/heap/memReportSink.h"

#include "tests/foundations/heap/heapTest.h"

#include <array>

namespace {

class memReportSinkTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    textSink Sink;
};

// Takes so many writes and refuses the rest.
class narrowSink final : public memReportSink
{
public:
    explicit narrowSink(unsigned writes) : Left(writes) {}

private:
    bool Write(const char*, size_t) override
    {
        if (Left == 0)
            return false;
        --Left;
        return true;
    }

    unsigned Left;
};

struct alignas(64) words {
    std::array<uint64_t, 10> Word{0x1111, 0x2222, 0x3333, 0x4444, 0x5555,
                                  0x6666, 0x7777, 0x8888, 0x9999, 0xAAAABBBBCCCCDDDD};

    uint64_t At(size_t byte) const { return addressOf(Word.data()) + byte; }
};

}  // namespace

TEST_F(memReportSinkTest, WritesTextAsItStands)
{
    EXPECT_TRUE(Sink.Text("  a\r\nb"));
    EXPECT_TRUE(Sink.Text(""));
    EXPECT_EQ(Sink.Out, "  a\r\nb");
}

TEST_F(memReportSinkTest, WritesAddressesInSixteenDigits)
{
    Sink.Hex(0);
    Sink.Hex(0xABCDEF);
    Sink.Hex(UINT64_MAX);
    EXPECT_EQ(Sink.Out, "00000000000000000000000000ABCDEFFFFFFFFFFFFFFFFF");
}

TEST_F(memReportSinkTest, WritesNumbersInEveryBase)
{
    struct row {
        uint64_t Value;
        unsigned Base, Digits;
        const char* Text;
    };
    constexpr row Rows[] = {
        {0, 10, 1, "0"},
        {0, 10, 0, "0"},
        {0, 10, 3, "000"},
        {1234, 10, 1, "1234"},
        {1234, 10, 3, "1234"},
        {1234, 10, 6, "001234"},
        {UINT64_MAX, 10, 1, "18446744073709551615"},
        {0xBEEF, 16, 8, "0000BEEF"},
        {8, 8, 1, "10"},
        {5, 2, 4, "0101"},
        {35, 3, 1, "1022"},
        {UINT64_MAX, 2, 1, "1111111111111111111111111111111111111111111111111111111111111111"},
        {1, 2, 1000, "0000000000000000000000000000000000000000000000000000000000000001"},
        {255, 99, 1, "FF"},
        {3, 0, 1, "11"},
    };
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Text);
        Sink.Out.clear();
        EXPECT_TRUE(Sink.Number(each.Value, each.Base, each.Digits));
        EXPECT_EQ(Sink.Out, each.Text);
    }
}

TEST_F(memReportSinkTest, DumpsFourWordsInARow)
{
    const words memory;
    EXPECT_TRUE(Sink.Dump("Stack ", memory.At(0), 5));
    EXPECT_EQ(Sink.Out, "Stack " + hex(memory.At(0)) +
                            "\r\n      0000000000001111  0000000000002222  0000000000003333  0000000000004444"
                            "\r\n      0000000000005555\r\n");
}

TEST_F(memReportSinkTest, DumpsNoRowForNoWords)
{
    const words memory;
    Sink.Dump("", memory.At(0), 0);
    EXPECT_EQ(Sink.Out, hex(memory.At(0)) + "\r\n");
}

TEST_F(memReportSinkTest, DumpsOneWordMoreFromAnAddressThatIsNotAligned)
{
    const words memory;
    Sink.Dump("", memory.At(3), 4);
    EXPECT_EQ(Sink.Out, dumpText("", memory.At(0), 5));
}

TEST_F(memReportSinkTest, EndsADumpWhereMemoryCannotBeRead)
{
    const words memory;
    for (const unsigned readable : {0u, 1u, 3u, 4u, 7u}) {
        SCOPED_TRACE(readable);
        fakeReset();
        fakeUnreadable(memory.Word.data() + readable, 8);
        Sink.Out.clear();
        EXPECT_TRUE(Sink.Dump("title ", memory.At(0), 10));
        EXPECT_EQ(Sink.Out, dumpText("title ", memory.At(0), readable));
    }
}

TEST_F(memReportSinkTest, EndsADumpAtTheEndOfAllAddresses)
{
    Sink.Dump("", UINT64_MAX - 3, 8);
    EXPECT_EQ(Sink.Out, "FFFFFFFFFFFFFFF8\r\n");
    Sink.Out.clear();
    Sink.Dump("", 0, UINT32_MAX);
    EXPECT_EQ(Sink.Out, "0000000000000000\r\n");
}

TEST_F(memReportSinkTest, TellsOfEveryWriteThatFailed)
{
    const words memory;
    // The title, the address, three parts of the first word, two of the second, the line end.
    constexpr unsigned Writes = 8;
    for (unsigned taken = 0; taken < Writes; ++taken) {
        SCOPED_TRACE(taken);
        EXPECT_FALSE(narrowSink(taken).Dump("title", memory.At(0), 2));
    }
    EXPECT_TRUE(narrowSink(Writes).Dump("title", memory.At(0), 2));
    EXPECT_FALSE(narrowSink(0).Text("a"));
    EXPECT_FALSE(narrowSink(0).Hex(1));
    EXPECT_FALSE(narrowSink(0).Number(1));
}
