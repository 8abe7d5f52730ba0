// Opening and making files, sharing and locking them.
#include "tests/await.h"
#include "tests/platform/fileTest.h"

#include <atomic>
#include <thread>

namespace {

using fileContract = fileTest;

TEST_F(fileContract, MakesAnEmptyFile)
{
    const fileHandle file = Create(u"new");
    EXPECT_NE(file, fileNone);
    EXPECT_EQ(fileSize(file), 0u);
    EXPECT_TRUE(fileExists(Path(u"new")));
    EXPECT_EQ(fileSizeOf(Path(u"new")), 0u);
}

TEST_F(fileContract, MakesNoFileInTheFolderThatIsMissing)
{
    EXPECT_EQ(Create(u"missing/new", Write, fileStatus::Missing), fileNone);
    EXPECT_EQ(Open(u"missing/old", Read, fileStatus::Missing), fileNone);
}

TEST_F(fileContract, OpensNoFileThatIsMissing)
{
    for (const fileAccess& access : {Read, Write, Alone, WriteAlone})
        EXPECT_EQ(Open(u"missing", access, fileStatus::Missing), fileNone);
    EXPECT_FALSE(fileExists(Path(u"missing")));
    EXPECT_EQ(fileSizeOf(Path(u"missing")), std::nullopt);
}

TEST_F(fileContract, MakesNoFileOfATakenName)
{
    Put(u"old", "content");
    EXPECT_EQ(Create(u"old", Write, fileStatus::Exists), fileNone);
    EXPECT_EQ(Content(u"old"), "content");
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    EXPECT_EQ(Create(u"folder", Write, fileStatus::Exists), fileNone);
}

TEST_F(fileContract, OpensNoFolder)
{
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    for (const fileAccess& access : {Read, Write, Alone, WriteAlone})
        EXPECT_EQ(Open(u"folder", access, fileStatus::Failed), fileNone);
}

TEST_F(fileContract, TakesNoEmptyPath)
{
    fileHandle handle = fileNone;
    EXPECT_NE(fileOpen(u"", Read, handle), fileStatus::Ok);
    EXPECT_NE(fileCreate(u"", Write, handle), fileStatus::Ok);
    EXPECT_EQ(handle, fileNone);
    EXPECT_FALSE(fileExists(u""));
    EXPECT_EQ(fileSizeOf(u""), std::nullopt);
    EXPECT_FALSE(fileRemove(u""));
    EXPECT_FALSE(fileMakeFolder(u""));
}

TEST_F(fileContract, KnowsNamesOfAllLetters)
{
    const std::u16string name = u"Gr\u00FC\u00DFe \u20AC \u4E2D";
    Put(name, "content");
    EXPECT_TRUE(fileExists(Path(name)));
    EXPECT_FALSE(fileExists(Path(u"Gr")));
    EXPECT_EQ(Content(name), "content");
    EXPECT_TRUE(fileRename(Path(name), Path(u"\u00E9")));
    EXPECT_TRUE(fileCopy(Path(u"\u00E9"), Path(name)));
    EXPECT_TRUE(fileRemove(Path(u"\u00E9")));
    EXPECT_EQ(Content(name), "content");
}

TEST_F(fileContract, LetsSeveralHandlesShareAFile)
{
    const fileHandle one = Create(u"file", Write);
    const fileHandle two = Open(u"file", Write);
    const fileHandle three = Open(u"file", Read);
    WriteAt(one, 0, "ab");
    WriteAt(two, 1, "c");
    EXPECT_EQ(ReadAt(three, 0, 10), "ac");
}

TEST_F(fileContract, KeepsEveryoneOutOfAFileThatIsOpenAlone)
{
    const fileHandle alone = Create(u"file", WriteAlone);
    for (const fileAccess& access : {Read, Write, Alone, WriteAlone})
        EXPECT_EQ(Open(u"file", access, fileStatus::Sharing), fileNone);
    EXPECT_EQ(Create(u"file", WriteAlone, fileStatus::Exists), fileNone);
    WriteAt(alone, 0, "mine");
    Close(alone);
    EXPECT_EQ(Content(u"file"), "mine");
}

TEST_F(fileContract, OpensNothingAloneThatOthersHave)
{
    const fileHandle shared = Create(u"file", Read);
    EXPECT_EQ(Open(u"file", Alone, fileStatus::Sharing), fileNone);
    EXPECT_EQ(Open(u"file", WriteAlone, fileStatus::Sharing), fileNone);
    Close(shared);
    EXPECT_NE(Open(u"file", WriteAlone), fileNone);
    EXPECT_EQ(Open(u"file", Read, fileStatus::Sharing), fileNone);
}

TEST_F(fileContract, LocksARangeAgainstOtherHandles)
{
    const fileHandle one = Create(u"file", Write);
    const fileHandle two = Open(u"file", Write);
    EXPECT_TRUE(fileLockRange(one, 0, 100, false));
    EXPECT_FALSE(fileLockRange(two, 0, 100, false));
    EXPECT_FALSE(fileLockRange(two, 99, 1, false));
    EXPECT_FALSE(fileLockRange(two, 50, 1000, false));
    EXPECT_TRUE(fileLockRange(two, 100, 100, false));
    EXPECT_FALSE(fileLockRange(one, 150, 1, false));
    fileUnlockRange(one, 0, 100);
    EXPECT_TRUE(fileLockRange(two, 0, 100, false));
}

TEST_F(fileContract, LocksRangesFarBehindTheEnd)
{
    const fileHandle one = Create(u"file", Write);
    const fileHandle two = Open(u"file", Write);
    constexpr uint64_t Far = uint64_t{1} << 62;
    EXPECT_TRUE(fileLockRange(one, Far, 8, false));
    EXPECT_FALSE(fileLockRange(two, Far + 7, 1, false));
    EXPECT_TRUE(fileLockRange(two, Far + 8, 1, false));
    EXPECT_EQ(fileSize(one), 0u);
}

TEST_F(fileContract, EndsLocksWithTheirHandle)
{
    const fileHandle one = Create(u"file", Write);
    const fileHandle two = Open(u"file", Write);
    const fileHandle three = Open(u"file", Write);
    ASSERT_TRUE(fileLockRange(one, 0, 100, false));
    Close(three);
    EXPECT_FALSE(fileLockRange(two, 0, 100, false));
    Close(one);
    EXPECT_TRUE(contractAwait([&] { return fileLockRange(two, 0, 100, false); }));
}

TEST_F(fileContract, LocksForAReaderAgainstWriters)
{
    const fileHandle writer = Create(u"file", Write);
    const fileHandle reader = Open(u"file", Read);
    EXPECT_TRUE(fileLockRange(reader, 0, 100, false));
    EXPECT_FALSE(fileLockRange(writer, 0, 100, false));
    fileUnlockRange(reader, 0, 100);
    EXPECT_TRUE(fileLockRange(writer, 0, 100, false));
    EXPECT_FALSE(fileLockRange(reader, 0, 100, false));
}

TEST_F(fileContract, WaitsForARangeUntilItIsFree)
{
    const fileHandle one = Create(u"file", Write);
    const fileHandle two = Open(u"file", Write);
    ASSERT_TRUE(fileLockRange(one, 0, 100, false));
    std::atomic<bool> begun{false};
    std::atomic<bool> freed{false};
    std::atomic<bool> ended{false};
    std::jthread waiter([&] {
        begun = true;
        EXPECT_TRUE(fileLockRange(two, 0, 100, true));
        EXPECT_TRUE(freed);
        ended = true;
    });
    EXPECT_TRUE(contractAwait([&] { return begun.load(); }));
    letOthersRun();
    freed = true;
    fileUnlockRange(one, 0, 100);
    EXPECT_TRUE(contractAwait([&] { return ended.load(); }));
}

}  // namespace
