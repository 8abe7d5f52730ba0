#include "foundations/file/fileLocked.h"

#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using testing::ElementsAre;

const std::u16string Path = u"/a.txt";

class fileLockedOpen : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    // The calls of these functions alone.
    static std::vector<std::string> Calls(const std::string& beginning)
    {
        std::vector<std::string> kept;
        for (const std::string& call : fakeCalls()) {
            if (call.starts_with(beginning))
                kept.push_back(call);
        }
        return kept;
    }
};

TEST_F(fileLockedOpen, KeepsTheModeAndWhatItFoundInItsState)
{
    struct row {
        const char* What;
        uint32_t Mode;
        bool Exists;
        uint32_t State;
    };
    constexpr row Rows[] = {
        {"plain", 0x000, true, 0x204},
        {"missing", 0x000, false, 0x000},
        {"created", 0x008, false, 0x00C},
        {"found instead of created", 0x008, true, 0x20C},
        {"unbuffered", 0x010, true, 0x214},
        {"exclusive", 0x080, true, 0x284},
        {"exclusive and waiting", 0x180, true, 0x384},
        {"waiting is nothing without exclusive", 0x100, true, 0x204},
        {"append", 0x400, true, 0x604},
        {"read only", 0x800, true, 0xA04},
        {"read only is not created", 0x808, false, 0x800},
        {"read only loses create also when found", 0x808, true, 0xA04},
        {"the settings' read", fileLocked::ModeRead, true, 0xB84},
        {"the settings' read of nothing", fileLocked::ModeRead, false, 0x980},
        {"the settings' write", fileLocked::ModeWrite, true, 0x38C},
        {"the settings' first write", fileLocked::ModeWrite, false, 0x18C},
        {"background", 0x1000, true, 0x1206},
        {"a claim to be open", 0x204, false, 0x000},
        {"other bits of the state", 0x060, true, 0x264},
    };
    for (const row& each : Rows) {
        SCOPED_TRACE(each.What);
        fakeReset();
        if (each.Exists)
            fakeFilePut(Path, "text");
        const fileLocked file(Path, each.Mode);
        EXPECT_EQ(file.State, each.State);
    }
}

TEST_F(fileLockedOpen, NumbersItsModesAsCallersKnowThem)
{
    EXPECT_EQ(fileLocked::ModeRead, 0x980u);
    EXPECT_EQ(fileLocked::ModeWrite, 0x188u);
}

TEST_F(fileLockedOpen, AsksForTheAccessOfItsMode)
{
    struct row {
        uint32_t Mode;
        const char* Call;
    };
    constexpr row Rows[] = {
        {0x000, "fileOpen /a.txt write"},
        {0x800, "fileOpen /a.txt"},
        {0x080, "fileOpen /a.txt write exclusive"},
        {0x880, "fileOpen /a.txt exclusive"},
        {0x010, "fileOpen /a.txt write unbuffered"},
        {0x890, "fileOpen /a.txt exclusive unbuffered"},
        {0x980, "fileOpen /a.txt exclusive"},
        {0x188, "fileOpen /a.txt write exclusive"},
    };
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Mode);
        fakeReset();
        fakeFilePut(Path, "text");
        const fileLocked file(Path, each.Mode);
        EXPECT_EQ(fakeCalls().front(), each.Call);
    }
}

TEST_F(fileLockedOpen, AsksForTheSameAccessWhenItMakesTheFile)
{
    const fileLocked file(Path, 0x098);
    EXPECT_THAT(Calls("fileCreate"), ElementsAre("fileCreate /a.txt write exclusive unbuffered"));
}

TEST_F(fileLockedOpen, LocksTheFirstHundredBytesUntilItGoes)
{
    for (const std::string content : {"", "a few bytes"}) {
        SCOPED_TRACE(content);
        fakeReset();
        fakeFilePut(Path, content);
        {
            const fileLocked file(Path, fileLocked::ModeWrite);
            ASSERT_EQ(fakeFileLocks(Path).size(), 1u);
            EXPECT_EQ(fakeFileLocks(Path)[0].Offset, 0u);
            EXPECT_EQ(fakeFileLocks(Path)[0].Length, 100u);
        }
        EXPECT_TRUE(fakeFileLocks(Path).empty());
        EXPECT_EQ(fakeFileHandles(), 0u);
        EXPECT_THAT(fakeCalls(),
                    ElementsAre("fileOpen /a.txt write exclusive", "fileLockRange /a.txt 0 100 wait",
                                "fileSize /a.txt", "fileUnlockRange /a.txt 0 100", "fileClose /a.txt"));
    }
}

TEST_F(fileLockedOpen, LocksTheFileThatItHasMade)
{
    const fileLocked file(Path, fileLocked::ModeWrite);
    EXPECT_EQ(fakeFileLocks(Path).size(), 1u);
    EXPECT_EQ(file.Size, 0u);
}

TEST_F(fileLockedOpen, DoesNotWaitForTheLockUnlessAsked)
{
    fakeFilePut(Path, "text");
    const fileLocked file(Path, fileLocked::Exclusive);
    EXPECT_THAT(Calls("fileLockRange"), ElementsAre("fileLockRange /a.txt 0 100"));
}

TEST_F(fileLockedOpen, LocksNothingWithoutExclusive)
{
    fakeFilePut(Path, "text");
    {
        const fileLocked file(Path, fileLocked::Wait);
    }
    EXPECT_THAT(fakeCalls(), ElementsAre("fileOpen /a.txt write", "fileSize /a.txt", "fileClose /a.txt"));
}

TEST_F(fileLockedOpen, StaysOpenWithoutTheLock)
{
    fakeFilePut(Path, "text");
    fakeFail("fileLockRange");
    const fileLocked file(Path, fileLocked::ModeWrite);
    EXPECT_TRUE(file.State & fileLocked::IsOpen);
    EXPECT_EQ(file.Size, 4u);
}

TEST_F(fileLockedOpen, TriesAgainEveryTwentyMillisecondsWhileAnotherHasTheFile)
{
    for (const uint32_t mode : {fileLocked::ModeWrite, fileLocked::ModeRead}) {
        SCOPED_TRACE(mode);
        fakeReset();
        fakeFilePut(Path, "text");
        fileHandle other = fileNone;
        ASSERT_EQ(fileOpen(Path, {.Exclusive = true}, other), fileStatus::Ok);
        fakeOnCall("threadSleep", 50, [&] { fileClose(other); });
        fakeClearCalls();

        const fileLocked file(Path, mode);
        EXPECT_TRUE(file.State & fileLocked::IsOpen);
        EXPECT_TRUE(file.State & fileLocked::Existed);
        EXPECT_EQ(Calls("threadSleep"), std::vector<std::string>(50, "threadSleep 20"));
        EXPECT_EQ(fakeCallCount("fileOpen"), 51u);
        EXPECT_EQ(clockSteadyNs(), 2'000'000'000);
    }
}

TEST_F(fileLockedOpen, WaitsForNothingButTheOtherSide)
{
    struct row {
        uint32_t Mode;
        fileStatus Status;
    };
    constexpr row Rows[] = {
        {0x080, fileStatus::Sharing}, {0x100, fileStatus::Sharing},  {0x000, fileStatus::Sharing},
        {0x180, fileStatus::Failed},  {0x180, fileStatus::NoMemory}, {0x180, fileStatus::Missing},
    };
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Mode);
        fakeReset();
        fakeFilePut(Path, "text");
        fakeFail("fileOpen", {.Status = each.Status});
        const fileLocked file(Path, each.Mode);
        EXPECT_FALSE(file.State & fileLocked::IsOpen);
        EXPECT_EQ(fakeCalls().size(), 1u);
    }
}

TEST_F(fileLockedOpen, MakesMissingFoldersOneLevelAtATimeBelowTheRoot)
{
    const fileLocked file(u"/x/y/z/a.txt", fileLocked::ModeWrite);
    EXPECT_TRUE(file.State & fileLocked::IsOpen);
    EXPECT_FALSE(file.State & fileLocked::Existed);
    EXPECT_TRUE(fakeFileHas(u"/x/y/z/a.txt"));
    EXPECT_THAT(Calls("fileMakeFolder"),
                ElementsAre("fileMakeFolder /x", "fileMakeFolder /x/y", "fileMakeFolder /x/y/z"));
}

TEST_F(fileLockedOpen, SkipsEveryKindOfRoot)
{
    struct row {
        std::u16string Path;
        std::vector<std::string> Calls;
    };
    const row Rows[] = {
        {u"/a.txt", {}},
        {u"a.txt", {}},
        {u"C:\\a.txt", {}},
        {u"x\\a.txt", {"fileMakeFolder x"}},
        {u"C:\\x\\y\\a.txt", {"fileMakeFolder C:\\x", "fileMakeFolder C:\\x\\y"}},
        {u"\\\\server\\share\\x\\a.txt", {"fileMakeFolder \\\\server\\share\\x"}},
    };
    for (const row& each : Rows) {
        fakeReset();
        const fileLocked file(each.Path, fileLocked::Create);
        EXPECT_EQ(Calls("fileMakeFolder"), each.Calls);
    }
}

TEST_F(fileLockedOpen, GoesOnWhenAFolderCannotBeMade)
{
    fakeFilePut(u"/x/other.txt", "text");
    fakeFail("fileMakeFolder");
    const fileLocked file(u"/x/y/a.txt", fileLocked::Create);
    EXPECT_TRUE(file.State & fileLocked::IsOpen);
}

TEST_F(fileLockedOpen, MakesNoFolderWithoutCreate)
{
    const fileLocked file(u"/x/a.txt", fileLocked::ModeRead | fileLocked::Create);
    EXPECT_THAT(fakeCalls(), ElementsAre("fileOpen /x/a.txt exclusive"));
    EXPECT_FALSE(fakeFileHas(u"/x"));
}

TEST_F(fileLockedOpen, IsNotOpenWhenTheFileCannotBeMade)
{
    fakeFail("fileCreate");
    {
        const fileLocked file(Path, fileLocked::ModeWrite);
        EXPECT_EQ(file.State, fileLocked::ModeWrite);
    }
    EXPECT_THAT(fakeCalls(),
                ElementsAre("fileOpen /a.txt write exclusive", "fileCreate /a.txt write exclusive"));
}

TEST_F(fileLockedOpen, DoesNotReplaceTheFileThatAnotherHas)
{
    fakeFilePut(Path, "text");
    fileHandle other = fileNone;
    ASSERT_EQ(fileOpen(Path, {}, other), fileStatus::Ok);
    const fileLocked file(Path, fileLocked::Create | fileLocked::Exclusive);
    EXPECT_FALSE(file.State & fileLocked::IsOpen);
    EXPECT_EQ(fakeFileBytes(Path), "text");
    EXPECT_EQ(fakeCallCount("fileOpen"), 2u);
    fileClose(other);
}

TEST_F(fileLockedOpen, WaitsForTheFileThatAnotherMadeInTheMeantime)
{
    fileHandle other = fileNone;
    fakeOnCall("fileCreate", 1, [&] {
        ASSERT_EQ(fileCreate(Path, {.Write = true, .Exclusive = true}, other), fileStatus::Ok);
    });
    fakeOnCall("threadSleep", 2, [&] { fileClose(other); });
    const fileLocked file(Path, fileLocked::ModeWrite);
    EXPECT_TRUE(file.State & fileLocked::IsOpen);
    EXPECT_TRUE(file.State & fileLocked::Existed);
    EXPECT_EQ(fakeCallCount("threadSleep"), 2u);
}

TEST_F(fileLockedOpen, GivesUpOnANameThatIsNeitherThereNorFree)
{
    fakeFail("fileOpen", {.Times = 10, .Status = fileStatus::Missing});
    fakeFail("fileCreate", {.Times = 10, .Status = fileStatus::Exists});
    const fileLocked file(Path, fileLocked::ModeWrite);
    EXPECT_FALSE(file.State & fileLocked::IsOpen);
}

TEST_F(fileLockedOpen, KnowsTheSizeAndStartsAtTheBeginning)
{
    fakeFilePut(Path, "0123456789");
    const fileLocked file(Path, 0);
    EXPECT_EQ(file.Size, 10u);
    EXPECT_EQ(file.ReadPos, 0u);
    EXPECT_EQ(file.WritePos, 0u);
}

TEST_F(fileLockedOpen, TakesAnUnknownSizeForZero)
{
    fakeFilePut(Path, "0123456789");
    fakeFail("fileSize");
    const fileLocked file(Path, fileLocked::Append);
    EXPECT_EQ(file.Size, 0u);
    EXPECT_EQ(file.WritePos, 0u);
}

TEST_F(fileLockedOpen, AppendsAtTheEnd)
{
    fakeFilePut(Path, "01234");
    {
        fileLocked file(Path, fileLocked::Append);
        EXPECT_EQ(file.WritePos, 5u);
        EXPECT_EQ(file.ReadPos, 0u);
        file.WriteString("56789");
    }
    EXPECT_EQ(fakeFileBytes(Path), "0123456789");
}

}  // namespace
