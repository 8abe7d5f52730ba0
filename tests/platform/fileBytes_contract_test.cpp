// The bytes of a file.
#include "tests/platform/fileTest.h"

#include <cstring>

namespace {

using fileBytesContract = fileTest;

TEST_F(fileBytesContract, ReadsWhatWasWritten)
{
    const fileHandle file = Create(u"file");
    EXPECT_EQ(WriteAt(file, 0, "abcdef"), 6u);
    EXPECT_EQ(WriteAt(file, 2, "CD"), 2u);
    EXPECT_EQ(ReadAt(file, 0, 6), "abCDef");
    EXPECT_EQ(ReadAt(file, 3, 2), "De");
    EXPECT_EQ(fileSize(file), 6u);
    Close(file);
    EXPECT_EQ(Content(u"file"), "abCDef");
    EXPECT_EQ(fileSizeOf(Path(u"file")), 6u);
}

TEST_F(fileBytesContract, ReadsLessAtTheEnd)
{
    const fileHandle file = Create(u"file");
    WriteAt(file, 0, "abcdef");
    EXPECT_EQ(ReadAt(file, 4, 100), "ef");
    EXPECT_EQ(ReadAt(file, 6, 100), "");
    EXPECT_EQ(ReadAt(file, 1'000'000'000'000, 100), "");
    EXPECT_EQ(ReadAt(file, 0, 0), "");
}

TEST_F(fileBytesContract, TakesAWriteOfNothing)
{
    const fileHandle file = Create(u"file");
    EXPECT_EQ(WriteAt(file, 0, ""), 0u);
    EXPECT_EQ(fileSize(file), 0u);
}

TEST_F(fileBytesContract, ReadsAGapAsZeros)
{
    const fileHandle file = Create(u"file");
    WriteAt(file, 0, "ab");
    WriteAt(file, 5, "c");
    EXPECT_EQ(ReadAt(file, 0, 10), std::string("ab\0\0\0c", 6));
}

TEST_F(fileBytesContract, HoldsManyBytes)
{
    std::string bytes(3'000'000, '\0');
    for (size_t i = 0; i < bytes.size(); i++)
        bytes[i] = static_cast<char>(i * 13 % 251);
    const fileHandle file = Create(u"file");
    EXPECT_EQ(WriteAt(file, 0, bytes), bytes.size());
    EXPECT_EQ(ReadAt(file, 0, 3'000'000), bytes);
}

TEST_F(fileBytesContract, CutsAndExtends)
{
    const fileHandle file = Create(u"file");
    WriteAt(file, 0, "abcdef");
    EXPECT_TRUE(fileSetSize(file, 3));
    EXPECT_EQ(fileSize(file), 3u);
    EXPECT_TRUE(fileSetSize(file, 5));
    EXPECT_EQ(ReadAt(file, 0, 10), std::string("abc\0\0", 5));
    EXPECT_TRUE(fileSetSize(file, 0));
    EXPECT_EQ(fileSize(file), 0u);
}

TEST_F(fileBytesContract, WritesNothingThroughAHandleForReading)
{
    Put(u"file", "content");
    const fileHandle files[] = {Open(u"file", Read), Create(u"new", Read)};
    for (const fileHandle file : files) {
        uint32_t done = 7;
        EXPECT_NE(fileWrite(file, 0, "x", 1, done), fileStatus::Ok);
        EXPECT_EQ(done, 0u);
        EXPECT_FALSE(fileSetSize(file, 0));
    }
    EXPECT_EQ(Content(u"file"), "content");
    EXPECT_EQ(Content(u"new"), "");
}

TEST_F(fileBytesContract, RefusesOffsetsThatNoFileHas)
{
    const fileHandle file = Create(u"file");
    char buffer[16] = {};
    uint32_t done = 7;
    EXPECT_NE(fileWrite(file, UINT64_MAX - 4, buffer, sizeof(buffer), done), fileStatus::Ok);
    EXPECT_EQ(done, 0u);
    fileRead(file, UINT64_MAX - 4, buffer, sizeof(buffer), done);
    EXPECT_EQ(done, 0u);
    EXPECT_FALSE(fileSetSize(file, UINT64_MAX));
    EXPECT_EQ(fileSize(file), 0u);
}

TEST_F(fileBytesContract, ReadsAndWritesPastTheCache)
{
    constexpr uint32_t Sector = 4096;
    const fileAccess direct{.Write = true, .Exclusive = true, .Unbuffered = true};
    alignas(Sector) static char memory[2 * Sector];
    std::memset(memory, 'x', sizeof(memory));
    const fileHandle file = Create(u"file", direct);
    uint32_t done = 0;
    ASSERT_EQ(fileWrite(file, 0, memory, sizeof(memory), done), fileStatus::Ok);
    EXPECT_EQ(done, sizeof(memory));
    Close(file);
    EXPECT_EQ(Content(u"file"), std::string(2 * Sector, 'x'));

    const fileHandle again = Open(u"file", direct);
    std::memset(memory, 0, sizeof(memory));
    ASSERT_EQ(fileRead(again, Sector, memory, Sector, done), fileStatus::Ok);
    EXPECT_EQ(done, Sector);
    EXPECT_EQ(std::string(memory, Sector), std::string(Sector, 'x'));
}

TEST_F(fileBytesContract, ReadsTheOddEndOfAFilePastTheCache)
{
    constexpr uint32_t Sector = 4096;
    Put(u"file", std::string(Sector + 100, 'x'));
    alignas(Sector) static char memory[4 * Sector];
    const fileHandle file = Open(u"file", {.Unbuffered = true});
    uint32_t done = 0;
    ASSERT_EQ(fileRead(file, 0, memory, sizeof(memory), done), fileStatus::Ok);
    EXPECT_EQ(done, Sector + 100);
}

}  // namespace
