#include "platform/file.h"

#include "tests/platform/contract.h"

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

namespace {

constexpr fileAccess Read{};
constexpr fileAccess Write{.Write = true};
constexpr fileAccess Alone{.Exclusive = true};
constexpr fileAccess WriteAlone{.Write = true, .Exclusive = true};

class fileContract : public contractTest
{
protected:
    void TearDown() override
    {
        for (const fileHandle handle : Handles)
            fileClose(handle);
    }

    static std::u16string Path(const std::u16string& name) { return contractFolder() + u'/' + name; }

    // A handle that the test's end closes; none unless the status is as expected.
    fileHandle Open(const std::u16string& name, const fileAccess& access,
                    fileStatus expected = fileStatus::Ok)
    {
        fileHandle handle = fileNone;
        EXPECT_EQ(fileOpen(Path(name), access, handle), expected);
        return Kept(handle);
    }

    fileHandle Create(const std::u16string& name, const fileAccess& access = Write,
                      fileStatus expected = fileStatus::Ok)
    {
        fileHandle handle = fileNone;
        EXPECT_EQ(fileCreate(Path(name), access, handle), expected);
        return Kept(handle);
    }

    void Close(fileHandle handle)
    {
        std::erase(Handles, handle);
        fileClose(handle);
    }

    void Put(const std::u16string& name, const std::string& bytes)
    {
        const fileHandle handle = Create(name);
        EXPECT_EQ(WriteAt(handle, 0, bytes), bytes.size());
        Close(handle);
    }

    std::string Content(const std::u16string& name)
    {
        const fileHandle handle = Open(name, Read);
        const std::string bytes = ReadAt(handle, 0, 1'000'000);
        Close(handle);
        return bytes;
    }

    static uint32_t WriteAt(fileHandle handle, uint64_t offset, const std::string& bytes)
    {
        uint32_t done = 0;
        EXPECT_EQ(fileWrite(handle, offset, bytes.data(), static_cast<uint32_t>(bytes.size()), done),
                  fileStatus::Ok);
        return done;
    }

    static std::string ReadAt(fileHandle handle, uint64_t offset, uint32_t count)
    {
        std::string bytes(count, '?');
        uint32_t done = 0;
        EXPECT_EQ(fileRead(handle, offset, bytes.data(), count, done), fileStatus::Ok);
        bytes.resize(done);
        return bytes;
    }

private:
    fileHandle Kept(fileHandle handle)
    {
        if (handle != fileNone)
            Handles.push_back(handle);
        return handle;
    }

    std::vector<fileHandle> Handles;
};

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

TEST_F(fileContract, ReadsWhatWasWritten)
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

TEST_F(fileContract, ReadsLessAtTheEnd)
{
    const fileHandle file = Create(u"file");
    WriteAt(file, 0, "abcdef");
    EXPECT_EQ(ReadAt(file, 4, 100), "ef");
    EXPECT_EQ(ReadAt(file, 6, 100), "");
    EXPECT_EQ(ReadAt(file, 1'000'000'000'000, 100), "");
    EXPECT_EQ(ReadAt(file, 0, 0), "");
}

TEST_F(fileContract, TakesAWriteOfNothing)
{
    const fileHandle file = Create(u"file");
    EXPECT_EQ(WriteAt(file, 0, ""), 0u);
    EXPECT_EQ(fileSize(file), 0u);
}

TEST_F(fileContract, ReadsAGapAsZeros)
{
    const fileHandle file = Create(u"file");
    WriteAt(file, 0, "ab");
    WriteAt(file, 5, "c");
    EXPECT_EQ(ReadAt(file, 0, 10), std::string("ab\0\0\0c", 6));
}

TEST_F(fileContract, HoldsManyBytes)
{
    std::string bytes(3'000'000, '\0');
    for (size_t i = 0; i < bytes.size(); i++)
        bytes[i] = static_cast<char>(i * 13 % 251);
    const fileHandle file = Create(u"file");
    EXPECT_EQ(WriteAt(file, 0, bytes), bytes.size());
    EXPECT_EQ(ReadAt(file, 0, 3'000'000), bytes);
}

TEST_F(fileContract, CutsAndExtends)
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

TEST_F(fileContract, WritesNothingThroughAHandleForReading)
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

TEST_F(fileContract, RefusesOffsetsThatNoFileHas)
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
    freed = true;
    fileUnlockRange(one, 0, 100);
    EXPECT_TRUE(contractAwait([&] { return ended.load(); }));
}

TEST_F(fileContract, RemovesAFile)
{
    Put(u"file", "content");
    EXPECT_TRUE(fileRemove(Path(u"file")));
    EXPECT_FALSE(fileExists(Path(u"file")));
    EXPECT_FALSE(fileRemove(Path(u"file")));
}

TEST_F(fileContract, RemovesNoFileInUse)
{
    for (const fileAccess& access : {Write, WriteAlone}) {
        const fileHandle file = Create(u"file", access);
        EXPECT_FALSE(fileRemove(Path(u"file")));
        EXPECT_TRUE(fileExists(Path(u"file")));
        Close(file);
        EXPECT_TRUE(fileRemove(Path(u"file")));
    }
}

TEST_F(fileContract, RemovesNoFolder)
{
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    EXPECT_FALSE(fileRemove(Path(u"folder")));
    EXPECT_TRUE(fileExists(Path(u"folder")));
}

TEST_F(fileContract, GivesAFileAnotherName)
{
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    Put(u"file", "content");
    EXPECT_TRUE(fileRename(Path(u"file"), Path(u"folder/other")));
    EXPECT_FALSE(fileExists(Path(u"file")));
    EXPECT_EQ(Content(u"folder/other"), "content");
}

TEST_F(fileContract, TakesNoNameFromAnotherFile)
{
    Put(u"file", "content");
    Put(u"taken", "other");
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    for (const char16_t* const taken : {u"taken", u"folder"}) {
        EXPECT_FALSE(fileRename(Path(u"file"), Path(taken)));
        EXPECT_FALSE(fileCopy(Path(u"file"), Path(taken)));
    }
    EXPECT_EQ(Content(u"file"), "content");
    EXPECT_EQ(Content(u"taken"), "other");
}

TEST_F(fileContract, RenamesAndCopiesNothingThatIsMissing)
{
    EXPECT_FALSE(fileRename(Path(u"missing"), Path(u"new")));
    EXPECT_FALSE(fileCopy(Path(u"missing"), Path(u"new")));
    EXPECT_FALSE(fileExists(Path(u"new")));
    Put(u"file", "content");
    EXPECT_FALSE(fileRename(Path(u"file"), Path(u"missing/new")));
    EXPECT_FALSE(fileCopy(Path(u"file"), Path(u"missing/new")));
    EXPECT_EQ(Content(u"file"), "content");
}

TEST_F(fileContract, CopiesAFileWhole)
{
    const std::string large(300'001, 'x');
    Put(u"large", large);
    Put(u"empty", "");
    EXPECT_TRUE(fileCopy(Path(u"large"), Path(u"large copy")));
    EXPECT_TRUE(fileCopy(Path(u"empty"), Path(u"empty copy")));
    EXPECT_EQ(Content(u"large copy"), large);
    EXPECT_EQ(Content(u"large"), large);
    EXPECT_EQ(Content(u"empty copy"), "");
    EXPECT_TRUE(fileRemove(Path(u"large copy")));
}

TEST_F(fileContract, CopiesNoFolder)
{
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    EXPECT_FALSE(fileCopy(Path(u"folder"), Path(u"copy")));
    EXPECT_FALSE(fileExists(Path(u"copy")));
}

TEST_F(fileContract, MakesOneFolderAtATime)
{
    EXPECT_FALSE(fileMakeFolder(Path(u"a/b")));
    EXPECT_TRUE(fileMakeFolder(Path(u"a")));
    EXPECT_FALSE(fileMakeFolder(Path(u"a")));
    EXPECT_TRUE(fileMakeFolder(Path(u"a/b")));
    EXPECT_TRUE(fileExists(Path(u"a/b")));
    EXPECT_EQ(fileSizeOf(Path(u"a/b")), std::nullopt);
    Put(u"file", "");
    EXPECT_FALSE(fileMakeFolder(Path(u"file")));
}

TEST_F(fileContract, ReadsAndWritesPastTheCache)
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

TEST_F(fileContract, ReadsTheOddEndOfAFilePastTheCache)
{
    constexpr uint32_t Sector = 4096;
    Put(u"file", std::string(Sector + 100, 'x'));
    alignas(Sector) static char memory[4 * Sector];
    const fileHandle file = Open(u"file", {.Unbuffered = true});
    uint32_t done = 0;
    ASSERT_EQ(fileRead(file, 0, memory, sizeof(memory), done), fileStatus::Ok);
    EXPECT_EQ(done, Sector + 100);
}

TEST_F(fileContract, KnowsTheRootAndTheSeparatorsOfAPath)
{
    EXPECT_EQ(fileRootLength(u""), 0u);
    EXPECT_EQ(fileRootLength(u"name"), 0u);
    EXPECT_EQ(fileRootLength(u"folder/name"), 0u);
    const std::u16string folder = contractFolder();
    const size_t root = fileRootLength(folder);
    EXPECT_GT(root, 0u);
    EXPECT_LT(root, folder.size());
    EXPECT_TRUE(fileIsSeparator(folder[root - 1]));
    EXPECT_TRUE(fileIsSeparator(u'/'));
    for (const char16_t unit : {u'a', u'.', u' ', u'\0'})
        EXPECT_FALSE(fileIsSeparator(unit));
}

TEST_F(fileContract, ConfusesNoBrokenPathWithItsBeginning)
{
    Put(u"file", "content");
    const std::u16string broken[] = {Path(u"file") + char16_t{0xD800},
                                     Path(u"file") + char16_t{0xDC00} + u"x", Path(u"file") + u'\0' + u"x"};
    for (const std::u16string& path : broken) {
        fileHandle handle = fileNone;
        EXPECT_NE(fileOpen(path, Read, handle), fileStatus::Ok);
        EXPECT_FALSE(fileExists(path));
        EXPECT_EQ(fileSizeOf(path), std::nullopt);
        EXPECT_FALSE(fileRemove(path));
        EXPECT_FALSE(fileRename(path, Path(u"new")));
        EXPECT_FALSE(fileCopy(path, Path(u"new")));
    }
    EXPECT_EQ(Content(u"file"), "content");
}

}  // namespace
