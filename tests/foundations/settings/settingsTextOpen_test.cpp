// The file behind a store: opened, locked, written, and whatever goes wrong with it.
#include "tests/foundations/settings/settingsTextFixture.h"

#include <functional>
#include <utility>

namespace {

class settingsTextOpen : public settingsTextFixture
{
};

}  // namespace

TEST_F(settingsTextOpen, DoesNotOpenAMissingFileForReading)
{
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Store.OpenCount, 0u);
    EXPECT_FALSE(fakeFileHas(Path));
    EXPECT_EQ(fakeCallCount("fileOpen"), 0u);
    EXPECT_EQ(Text("Key"), "untouched");
}

TEST_F(settingsTextOpen, DoesNotOpenForReadingWithoutTheSection)
{
    Put("[Other]\r\nKey=1\r\n");
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Store.OpenCount, 0u);
    Put("");
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Bytes(), "");
}

TEST_F(settingsTextOpen, MakesTheFileWithItsFoldersForWriting)
{
    SetText("Key", "value");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=value\r\n");
    EXPECT_EQ(Text("Key"), "value");
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(settingsTextOpen, CountsNestedOpensAndWritesAtTheOutermostClose)
{
    EXPECT_TRUE(Store.Open(true));
    EXPECT_TRUE(Store.Open(false));
    EXPECT_TRUE(Store.Open(true));
    EXPECT_EQ(Store.OpenCount, 3u);
    SetText("Key", "1");
    Store.Close(true);
    Store.Close(true);
    EXPECT_EQ(Bytes(), "");
    EXPECT_EQ(fakeFileHandles(), 1u);
    Store.Close(true);
    EXPECT_EQ(Store.OpenCount, 0u);
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=1\r\n");
    EXPECT_EQ(fakeCallCount("fileWrite"), 1u);
    Store.Close(true);
    EXPECT_EQ(Store.OpenCount, 0u);
    EXPECT_EQ(fakeCallCount("fileWrite"), 1u);
}

TEST_F(settingsTextOpen, LosesWhatIsSetInsideAReadersOpen)
{
    Put("[Main]\r\nKey=old\r\n");
    ASSERT_TRUE(Store.Open(false));
    SetText("Key", "new");
    EXPECT_EQ(Text("Key"), "new");
    Store.Close(false);
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=old\r\n");
    EXPECT_EQ(Text("Key"), "old");
    EXPECT_EQ(fakeCallCount("fileWrite"), 0u);
}

TEST_F(settingsTextOpen, WritesAReadersMemoryIfItsCloseSaysSo)
{
    Put("[Main]\r\nKey=old\r\n");
    ASSERT_TRUE(Store.Open(false));
    SetText("Key", "new");
    Store.Close(true);
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=new\r\n");
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(settingsTextOpen, LosesAWritersChangesWhenClosedWithoutWriting)
{
    Put("[Main]\r\nKey=old\r\n");
    Store.Open(true);
    SetText("Key", "new");
    Store.Close(false);
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=old\r\n");
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(settingsTextOpen, LosesChangesWhenDestroyedWhileOpen)
{
    Put("[Main]\r\nKey=old\r\n");
    {
        settingsText store;
        store.Root = "/house/labels.txt";
        store.Open(true);
        const std::string value = "new";
        store.SetText("Key", &value, 1);
    }
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=old\r\n");
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(settingsTextOpen, HoldsTheFileLockedAsAWriterAndNotAsAReader)
{
    Put("[Main]\r\n");
    Store.Open(true);
    EXPECT_EQ(fakeFileHandles(), 1u);
    EXPECT_EQ(fakeFileLocks(Path).size(), 1u);
    Store.Close(true);
    EXPECT_EQ(fakeFileHandles(), 0u);
    Store.Open(false);
    EXPECT_EQ(fakeFileHandles(), 0u);
    Store.Close(false);
    EXPECT_EQ(fakeCallCount("fileOpen /house/labels.txt exclusive"), 1u);
}

TEST_F(settingsTextOpen, WaitsForAnotherWriter)
{
    Put("[Main]\r\nKey=old\r\n");
    settingsText other;
    other.Root = Store.Root;
    other.Open(true);
    const std::string value = "from the other";
    other.SetText("Key", &value, 1);
    fakeOnCall("threadSleep", 3, [&] { other.Close(true); });
    EXPECT_EQ(Text("Key"), "from the other");
    EXPECT_EQ(fakeCallCount("threadSleep 20"), 3u);
}

TEST_F(settingsTextOpen, GoesOnInMemoryWhenAWritersFileDoesNotOpen)
{
    Put("[Main]\r\nKey=old\r\n");
    fakeFail("fileOpen");
    ASSERT_TRUE(Store.Open(true));
    EXPECT_EQ(Text("Key"), "untouched");
    SetText("Key", "new");
    EXPECT_EQ(Text("Key"), "new");
    Store.Close(true);
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=old\r\n");
    EXPECT_EQ(fakeCallCount("fileWrite"), 0u);
    EXPECT_EQ(Text("Key"), "old");
}

TEST_F(settingsTextOpen, FailsWhenAReadersFileDoesNotOpen)
{
    Put("[Main]\r\nKey=old\r\n");
    fakeFail("fileOpen");
    EXPECT_FALSE(Store.Open(false));
    fakeFilePut(u"/folder/file", "");
    Store.Root = "/folder";
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Store.OpenCount, 0u);
}

TEST_F(settingsTextOpen, NeverReplacesWhatItCouldNotRead)
{
    const std::string old = "[Main]\r\nKey=old\r\nOther=1\r\n";
    const std::pair<const char*, std::function<void()>> Cases[] = {
        {"a short read", [] { fakeShort("fileRead", 8); }},
        {"a failing read", [] { fakeFail("fileRead"); }},
        {"no size", [] { fakeFail("fileSize"); }},
        {"no memory", [] { fakeFail("heapAllocate", {.Times = 99}), fakeFail("heapCreate", {.Times = 99}); }},
    };
    for (const auto& [name, script] : Cases) {
        SCOPED_TRACE(name);
        fakeReset();
        Put(old);
        script();
        ASSERT_TRUE(Store.Open(true));
        EXPECT_EQ(Text("Key"), "untouched");
        SetText("Key", "new");
        Store.Close(true);
        EXPECT_EQ(Bytes(), old);
        EXPECT_EQ(fakeCallCount("fileWrite"), 0u);
    }
}

TEST_F(settingsTextOpen, FailsToOpenForReadingWhatItCannotReadWhole)
{
    Put("[Main]\r\nKey=old\r\n");
    fakeShort("fileRead", 8);
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Text("Key"), "old");
}

TEST_F(settingsTextOpen, LeavesAFileAloneThatCannotBeCut)
{
    Put("[Main]\r\nKey=a long old value\r\n");
    fakeFail("fileSetSize");
    SetText("Key", "new");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=a long old value\r\n");
}

TEST_F(settingsTextOpen, DropsAWriteThatFails)
{
    Put("[Main]\r\nKey=old\r\n");
    fakeFail("fileWrite", {.Status = fileStatus::DiskFull});
    SetText("Key", "new");
    EXPECT_EQ(Bytes(), "");
    EXPECT_EQ(fakeFileHandles(), 0u);
    EXPECT_EQ(Store.OpenCount, 0u);
    fakeShort("fileWrite", 10);
    SetText("Key", "new");
    EXPECT_EQ(Bytes(), "[Main]\r\nKe");
}

TEST_F(settingsTextOpen, ParsesAndRewritesTheWholeFileForEachSetterOnAClosedStore)
{
    SetText("a", "1");
    SetText("b", "2");
    EXPECT_EQ(fakeCallCount("fileWrite"), 2u);
    EXPECT_EQ(Bytes(), "[Main]\r\na=1\r\nb=2\r\n");
}

TEST_F(settingsTextOpen, ReachesAFileWithAnyNameThatUtf8CanTell)
{
    Store.Root = "/house/\xC3\xA4\xF0\x9F\x9B\xB0.txt";
    SetText("Key", "1");
    EXPECT_EQ(fakeFileBytes(u"/house/\u00E4\U0001F6F0.txt"), "[Main]\r\nKey=1\r\n");
}

TEST_F(settingsTextOpen, DoesNothingWithoutAPath)
{
    Store.Root.clear();
    SetText("Key", "1");
    EXPECT_EQ(Text("Key"), "untouched");
    EXPECT_EQ(fakeFileHandles(), 0u);
}
