#include "foundations/file/fileLocked.h"

#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>

#include <limits>
#include <new>
#include <string>

namespace {

using testing::ElementsAre;

const std::u16string Path = u"/a.txt";

class fileLockedBytes : public testing::Test
{
protected:
    void SetUp() override { Begin("0123456789"); }

    static void Begin(const std::string& content)
    {
        fakeReset();
        fakeFilePut(Path, content);
    }

    static std::string Read(fileLocked& file, uint64_t count)
    {
        std::string text(count, '?');
        text.resize(file.Read(text.data(), count));
        return text;
    }
};

TEST_F(fileLockedBytes, ReadsFromWhereItLeftOff)
{
    fileLocked file(Path, fileLocked::ModeRead);
    EXPECT_EQ(Read(file, 4), "0123");
    EXPECT_EQ(Read(file, 4), "4567");
    EXPECT_EQ(file.ReadPos, 8u);
    EXPECT_EQ(Read(file, 4), "89");
    EXPECT_EQ(Read(file, 4), "");
    EXPECT_EQ(file.ReadPos, 10u);
}

TEST_F(fileLockedBytes, ReadsNothingForACountOfZero)
{
    fileLocked file(Path, fileLocked::ModeRead);
    fakeClearCalls();
    EXPECT_EQ(file.Read(nullptr, 0), 0u);
    EXPECT_TRUE(fakeCalls().empty());
}

TEST_F(fileLockedBytes, StaysWhereItIsWhenReadingFails)
{
    fileLocked file(Path, fileLocked::ModeRead);
    fakeFail("fileRead");
    EXPECT_EQ(Read(file, 4), "");
    EXPECT_EQ(file.ReadPos, 0u);
    EXPECT_EQ(Read(file, 4), "0123");
}

TEST_F(fileLockedBytes, GivesWhatAShortReadBrought)
{
    fileLocked file(Path, fileLocked::ModeRead);
    fakeShort("fileRead", 3);
    EXPECT_EQ(Read(file, 8), "012");
    EXPECT_EQ(Read(file, 8), "3456789");
}

TEST_F(fileLockedBytes, LearnsOfTheBytesThatItReadBehindItsSize)
{
    fileLocked file(Path, 0);
    fakeFilePut(Path, "0123456789ABC");
    EXPECT_EQ(file.Size, 10u);
    EXPECT_EQ(Read(file, 100), "0123456789ABC");
    EXPECT_EQ(file.Size, 13u);
}

TEST_F(fileLockedBytes, WritesFromWhereItLeftOffApartFromReading)
{
    fileLocked file(Path, 0);
    EXPECT_EQ(Read(file, 2), "01");
    EXPECT_EQ(file.WriteString("ab"), 2u);
    EXPECT_EQ(file.Write("cd", 2), 2u);
    EXPECT_EQ(file.WritePos, 4u);
    EXPECT_EQ(file.ReadPos, 2u);
    EXPECT_EQ(file.Size, 10u);
    EXPECT_EQ(Read(file, 100), "cd456789");
    EXPECT_EQ(fakeFileBytes(Path), "abcd456789");
}

TEST_F(fileLockedBytes, GrowsWithWhatIsWrittenBehindTheEnd)
{
    fileLocked file(Path, 0);
    EXPECT_TRUE(file.Seek(-2, fileLocked::Origin::End));
    EXPECT_EQ(file.WriteString("abcdef"), 6u);
    EXPECT_EQ(file.Size, 14u);
    EXPECT_EQ(fakeFileBytes(Path), "01234567abcdef");
}

TEST_F(fileLockedBytes, WritesNothingForACountOfZero)
{
    fileLocked file(Path, 0);
    fakeClearCalls();
    EXPECT_EQ(file.Write(nullptr, 0), 0u);
    EXPECT_EQ(file.WriteString(""), 0u);
    EXPECT_TRUE(fakeCalls().empty());
}

TEST_F(fileLockedBytes, WritesNothingWhenReadOnly)
{
    fileLocked file(Path, fileLocked::ModeRead);
    fakeClearCalls();
    EXPECT_EQ(file.WriteString("abc"), 0u);
    EXPECT_TRUE(fakeCalls().empty());
    EXPECT_EQ(fakeFileBytes(Path), "0123456789");
}

TEST_F(fileLockedBytes, DoesNothingWhenItIsNotOpen)
{
    fileLocked file(u"/missing.txt", 0);
    fakeClearCalls();
    EXPECT_EQ(Read(file, 4), "");
    EXPECT_EQ(file.WriteString("abc"), 0u);
    EXPECT_EQ(file.WriteAt(0, "abc", 3, true), 0u);
    EXPECT_FALSE(file.Seek(0, fileLocked::Origin::Start));
    EXPECT_FALSE(file.SetEnd());
    EXPECT_TRUE(fakeCalls().empty());
}

TEST_F(fileLockedBytes, WritesElsewhereWithoutMovingThere)
{
    fileLocked file(Path, 0);
    EXPECT_EQ(file.WriteAt(8, "abcd", 4, false), 4u);
    EXPECT_EQ(file.WritePos, 0u);
    EXPECT_EQ(file.Size, 10u);
    EXPECT_EQ(fakeFileBytes(Path), "01234567abcd");
    EXPECT_EQ(file.WriteAt(0, "xyz", 3, true), 3u);
    EXPECT_EQ(file.WritePos, 3u);
}

TEST_F(fileLockedBytes, KeepsTheVerdictOfEachFailure)
{
    struct row {
        fileStatus Status;
        uint32_t Bits;
    };
    constexpr row Rows[] = {
        {fileStatus::DiskFull, 0x860}, {fileStatus::NoMemory, 0x860}, {fileStatus::NoQuota, 0x860},
        {fileStatus::Failed, 0x040},   {fileStatus::Sharing, 0x040},  {fileStatus::Missing, 0x040},
        {fileStatus::Exists, 0x040},
    };
    for (const row& each : Rows) {
        SCOPED_TRACE(static_cast<int>(each.Status));
        Begin("0123456789");
        fileLocked file(Path, 0);
        int errors = 0;
        file.OnError = [&] { ++errors; };
        fakeFail("fileWrite", {.Status = each.Status});
        EXPECT_EQ(file.WriteString("abc"), 0u);
        EXPECT_EQ(file.State, 0x204 | each.Bits);
        EXPECT_EQ(file.WritePos, 0u);
        EXPECT_EQ(errors, 1);
    }
}

TEST_F(fileLockedBytes, LeavesTheDiskAloneOnceItWasFull)
{
    fileLocked file(Path, 0);
    fakeFail("fileWrite", {.Status = fileStatus::DiskFull});
    file.WriteString("abc");
    fakeClearCalls();
    EXPECT_EQ(file.WriteString("abc"), 0u);
    EXPECT_EQ(file.Write("abc", 3), 0u);
    EXPECT_TRUE(fakeCalls().empty());
    EXPECT_EQ(Read(file, 3), "012");
}

TEST_F(fileLockedBytes, GoesOnAfterAnyOtherFailure)
{
    fileLocked file(Path, 0);
    fakeFail("fileWrite");
    EXPECT_EQ(file.WriteString("abc"), 0u);
    EXPECT_EQ(file.WriteString("xyz"), 3u);
    EXPECT_EQ(file.State, 0x244u);
    EXPECT_EQ(fakeFileBytes(Path), "xyz3456789");
}

TEST_F(fileLockedBytes, TakesAShortWriteForAFailureOfTheDisk)
{
    fileLocked file(Path, 0);
    int errors = 0;
    file.OnError = [&] { ++errors; };
    fakeShort("fileWrite", 2);
    EXPECT_EQ(file.WriteString("abc"), 2u);
    EXPECT_EQ(file.State, 0x264u);
    EXPECT_EQ(file.WritePos, 0u);
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(file.WriteString("xyz"), 3u);
    EXPECT_EQ(errors, 1);
}

TEST_F(fileLockedBytes, TellsOfAFailureWithoutHoldingALock)
{
    fileLocked file(Path, 0);
    std::string seen;
    file.OnError = [&] {
        seen = Read(file, 4);
        file.OnError = nullptr;
        file.WriteString("ok");
    };
    fakeFail("fileWrite");
    file.WriteString("abc");
    EXPECT_EQ(seen, "0123");
    EXPECT_EQ(fakeFileBytes(Path), "ok23456789");
}

TEST_F(fileLockedBytes, FailsWithoutAHandler)
{
    fileLocked file(Path, 0);
    fakeFail("fileWrite");
    EXPECT_EQ(file.WriteString("abc"), 0u);
}

TEST_F(fileLockedBytes, SeeksWithinTheFile)
{
    using enum fileLocked::Origin;
    constexpr int64_t Least = std::numeric_limits<int64_t>::min();
    constexpr int64_t Most = std::numeric_limits<int64_t>::max();
    struct row {
        uint64_t From;
        int64_t Offset;
        fileLocked::Origin Origin;
        uint64_t To;
    };
    constexpr row Rows[] = {
        {0, 4, Start, 4},
        {0, 10, Start, 10},
        {0, 11, Start, 10},
        {5, -1, Start, 0},
        {5, Most, Start, 10},
        {5, Least, Start, 0},
        {5, 2, WritePosition, 7},
        {5, 0, WritePosition, 5},
        {5, -2, WritePosition, 3},
        {5, -6, WritePosition, 0},
        {5, 6, WritePosition, 10},
        {5, Most, WritePosition, 10},
        {5, Least, WritePosition, 0},
        {5, 0, End, 10},
        {5, -3, End, 7},
        {5, 1, End, 10},
        {5, -11, End, 0},
        {5, Most, End, 10},
        {5, Least, End, 0},
    };
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Offset);
        fileLocked file(Path, 0);
        ASSERT_TRUE(file.Seek(static_cast<int64_t>(each.From), Start));
        EXPECT_TRUE(file.Seek(each.Offset, each.Origin));
        EXPECT_EQ(file.WritePos, each.To);
        EXPECT_EQ(file.ReadPos, 0u);
    }
}

TEST_F(fileLockedBytes, SeeksInAHugeFileWithoutLosingItsWay)
{
    fileLocked file(Path, 0);
    file.Size = UINT64_MAX;
    file.WritePos = UINT64_MAX - 5;
    EXPECT_TRUE(file.Seek(10, fileLocked::Origin::WritePosition));
    EXPECT_EQ(file.WritePos, UINT64_MAX);
    EXPECT_TRUE(file.Seek(std::numeric_limits<int64_t>::min(), fileLocked::Origin::End));
    EXPECT_EQ(file.WritePos, UINT64_MAX - (uint64_t{1} << 63));
}

TEST_F(fileLockedBytes, EndsTheFileAtTheWritePosition)
{
    fileLocked file(Path, 0);
    EXPECT_EQ(Read(file, 8), "01234567");
    EXPECT_TRUE(file.Seek(4, fileLocked::Origin::Start));
    EXPECT_TRUE(file.SetEnd());
    EXPECT_EQ(file.Size, 4u);
    EXPECT_EQ(file.ReadPos, 4u);
    EXPECT_EQ(file.WritePos, 4u);
    EXPECT_EQ(fakeFileBytes(Path), "0123");
}

TEST_F(fileLockedBytes, LeavesAReadPositionBeforeTheEnd)
{
    fileLocked file(Path, 0);
    EXPECT_EQ(Read(file, 2), "01");
    EXPECT_TRUE(file.Seek(4, fileLocked::Origin::Start));
    EXPECT_TRUE(file.SetEnd());
    EXPECT_EQ(file.ReadPos, 2u);
}

TEST_F(fileLockedBytes, ChangesNothingWhenTheSystemRefusesTheEnd)
{
    fileLocked file(Path, 0);
    EXPECT_EQ(Read(file, 8), "01234567");
    fakeFail("fileSetSize");
    EXPECT_FALSE(file.SetEnd());
    EXPECT_EQ(file.Size, 10u);
    EXPECT_EQ(file.ReadPos, 8u);
}

// Address space for counts past a chunk; nobody touches it.
class hugeBuffer
{
public:
    explicit hugeBuffer(size_t bytes) : Memory(::operator new(bytes, std::nothrow)) {}
    ~hugeBuffer() { ::operator delete(Memory); }
    hugeBuffer(const hugeBuffer&) = delete;
    hugeBuffer& operator=(const hugeBuffer&) = delete;

    void* const Memory;
};

TEST_F(fileLockedBytes, CarriesOutLargeCountsInChunks)
{
    constexpr uint64_t Chunk = 0x7FFFFFFF;
    const hugeBuffer buffer(Chunk + 5);
    if (!buffer.Memory)
        GTEST_SKIP() << "no address space";
    fileLocked file(Path, 0);
    fakeFail("fileWrite", {.Times = 3, .Status = fileStatus::Ok});
    fakeFail("fileRead", {.Times = 3, .Status = fileStatus::Ok});
    fakeClearCalls();
    EXPECT_EQ(file.Write(buffer.Memory, Chunk), Chunk);
    EXPECT_EQ(file.Write(buffer.Memory, Chunk + 5), Chunk + 5);
    EXPECT_EQ(file.Read(buffer.Memory, Chunk), Chunk);
    EXPECT_EQ(file.Read(buffer.Memory, Chunk + 5), Chunk + 5);
    EXPECT_THAT(fakeCalls(),
                ElementsAre("fileWrite /a.txt 0 2147483647", "fileWrite /a.txt 2147483647 2147483647",
                            "fileWrite /a.txt 4294967294 5", "fileRead /a.txt 0 2147483647",
                            "fileRead /a.txt 2147483647 2147483647", "fileRead /a.txt 4294967294 5"));
    EXPECT_EQ(file.Size, 2 * Chunk + 5);
}

TEST_F(fileLockedBytes, EndsALargeCountWithTheFirstChunkThatFails)
{
    constexpr uint64_t Chunk = 0x7FFFFFFF;
    const hugeBuffer buffer(Chunk + 5);
    if (!buffer.Memory)
        GTEST_SKIP() << "no address space";
    fileLocked file(Path, 0);
    fakeFail("fileWrite");
    EXPECT_EQ(file.Write(buffer.Memory, Chunk + 5), 0u);
    EXPECT_EQ(fakeCallCount("fileWrite"), 1u);
    EXPECT_EQ(file.Read(buffer.Memory, Chunk + 5), 10u);
    EXPECT_EQ(fakeCallCount("fileRead"), 1u);
}

}  // namespace
