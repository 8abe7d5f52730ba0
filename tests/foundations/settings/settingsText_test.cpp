#include "foundations/settings/settingsText.h"

#include "tests/foundations/settings/settingsTextFixture.h"

#include <utility>

namespace {

class settingsTextTest : public settingsTextFixture
{
};

}  // namespace

TEST_F(settingsTextTest, DoesNotOpenAMissingFileForReading)
{
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Store.OpenCount, 0u);
    EXPECT_FALSE(fakeFileHas(Path));
    EXPECT_EQ(fakeCallCount("fileOpen"), 0u);
    EXPECT_EQ(Text("Key"), "untouched");
}

TEST_F(settingsTextTest, DoesNotOpenForReadingWithoutTheSection)
{
    Put("[Other]\r\nKey=1\r\n");
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Store.OpenCount, 0u);
    Put("");
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Bytes(), "");
}

TEST_F(settingsTextTest, AddsAMissingSectionAtTheEndOfTheFile)
{
    Put("[Other]\r\nKey=1\r\n");
    EXPECT_TRUE(Store.Open(true));
    EXPECT_EQ(Store.OpenCount, 1u);
    Store.Close(true);
    EXPECT_EQ(Bytes(), "[Other]\r\nKey=1\r\n[Main]\r\n");
    EXPECT_TRUE(Store.Open(false));
    Store.Close(false);
}

TEST_F(settingsTextTest, MakesTheFileWithItsFoldersForWriting)
{
    SetText("Key", "value");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=value\r\n");
    EXPECT_EQ(Text("Key"), "value");
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(settingsTextTest, NamesTheSectionByItsTwoLevels)
{
    const struct {
        const char* Section;
        const char* Subsection;
        const char* Name;
    } Cases[] = {{"", "", "Main"}, {"A", "", "A"}, {"A", "B", "A - B"}, {"", "B", "B"}};
    for (const auto& [section, subsection, name] : Cases) {
        SCOPED_TRACE(name);
        Put("");
        Store.settings::Section = section;
        Store.Subsection = subsection;
        SetText("Key", "1");
        EXPECT_EQ(Bytes(), "[" + std::string(name) + "]\r\nKey=1\r\n");
        EXPECT_EQ(Text("Key"), "1");
    }
}

TEST_F(settingsTextTest, FindsMainBesideRowsWithoutAHeader)
{
    Put("Key=nameless\n[Main]\nKey=main\n");
    EXPECT_EQ(Text("Key"), "main");
    SetText("Key", "new");
    EXPECT_EQ(Bytes(), "Key=nameless\r\n[Main]\r\nKey=new\r\n");
}

TEST_F(settingsTextTest, DoesNotFindRowsWithoutAHeader)
{
    Put("Key=nameless\n");
    EXPECT_EQ(Text("Key"), "untouched");
}

TEST_F(settingsTextTest, UsesTheFirstOfSeveralSectionsOfOneName)
{
    Put("[Main]\nKey=first\n[Main]\nKey=second\n");
    EXPECT_EQ(Text("Key"), "first");
    SetText("Other", "1");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=first\r\nOther=1\r\n[Main]\r\nKey=second\r\n");
}

TEST_F(settingsTextTest, TellsSectionsAndKeysApartByCase)
{
    Put("[main]\nKey=1\n[Main]\nkey=2\n");
    EXPECT_EQ(Text("Key"), "untouched");
    EXPECT_EQ(Text("key"), "2");
}

TEST_F(settingsTextTest, UsesTheFirstOfSeveralRowsOfOneKey)
{
    Put("[Main]\nKey=1\nKey=2\n");
    EXPECT_EQ(Text("Key"), "1");
    SetText("Key", "3");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=3\r\nKey=2\r\n");
}

TEST_F(settingsTextTest, KeepsRemarksBlankLinesAndOrder)
{
    Put("; top\n\n[Other]\nz=1\n\n[Main]  ; mine\n# remark\n b = 2\na=1\n\n[Last]\nx=1");
    Store.Open(true);
    SetText("b ", "two");
    SetText("new", "3");
    Store.Close(true);
    EXPECT_EQ(Bytes(), "; top\r\n\r\n[Other]\r\nz=1\r\n\r\n[Main]  ; mine\r\n# remark\r\n"
                       "b =two\r\na=1\r\n\r\nnew=3\r\n[Last]\r\nx=1\r\n");
}

TEST_F(settingsTextTest, GivesAFileWithoutALastLineEndOne)
{
    Put("[Main]\nKey=1");
    Store.Open(true);
    Store.Close(true);
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=1\r\n");
}

TEST_F(settingsTextTest, ShortensTheFileWithItsContent)
{
    Put("[Main]\r\nKey=" + std::string(1000, 'x') + "\r\n");
    SetText("Key", "1");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=1\r\n");
}

TEST_F(settingsTextTest, CountsNestedOpensAndWritesAtTheOutermostClose)
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

TEST_F(settingsTextTest, LosesWhatIsSetInsideAReadersOpen)
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

TEST_F(settingsTextTest, WritesAReadersMemoryIfItsCloseSaysSo)
{
    Put("[Main]\r\nKey=old\r\n");
    ASSERT_TRUE(Store.Open(false));
    SetText("Key", "new");
    Store.Close(true);
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=new\r\n");
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(settingsTextTest, LosesAWritersChangesWhenClosedWithoutWriting)
{
    Put("[Main]\r\nKey=old\r\n");
    Store.Open(true);
    SetText("Key", "new");
    Store.Close(false);
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=old\r\n");
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(settingsTextTest, LosesChangesWhenDestroyedWhileOpen)
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

TEST_F(settingsTextTest, HoldsTheFileLockedAsAWriterAndNotAsAReader)
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

TEST_F(settingsTextTest, WaitsForAnotherWriter)
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

TEST_F(settingsTextTest, GoesOnInMemoryWhenAWritersFileDoesNotOpen)
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

TEST_F(settingsTextTest, FailsWhenAReadersFileDoesNotOpen)
{
    Put("[Main]\r\nKey=old\r\n");
    fakeFail("fileOpen");
    EXPECT_FALSE(Store.Open(false));
    fakeFilePut(u"/folder/file", "");
    Store.Root = "/folder";
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Store.OpenCount, 0u);
}

TEST_F(settingsTextTest, NeverReplacesWhatItCouldNotRead)
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

TEST_F(settingsTextTest, FailsToOpenForReadingWhatItCannotReadWhole)
{
    Put("[Main]\r\nKey=old\r\n");
    fakeShort("fileRead", 8);
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Text("Key"), "old");
}

TEST_F(settingsTextTest, LeavesAFileAloneThatCannotBeCut)
{
    Put("[Main]\r\nKey=a long old value\r\n");
    fakeFail("fileSetSize");
    SetText("Key", "new");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=a long old value\r\n");
}

TEST_F(settingsTextTest, DropsAWriteThatFails)
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

TEST_F(settingsTextTest, ParsesAndRewritesTheWholeFileForEachSetterOnAClosedStore)
{
    SetText("a", "1");
    SetText("b", "2");
    EXPECT_EQ(fakeCallCount("fileWrite"), 2u);
    EXPECT_EQ(Bytes(), "[Main]\r\na=1\r\nb=2\r\n");
}

TEST_F(settingsTextTest, DeletesTheFirstRowOfAKey)
{
    Put("[Main]\na=1\nb=2\na=3\nc=4\n");
    Store.DeleteValue("a");
    EXPECT_EQ(Bytes(), "[Main]\r\nb=2\r\na=3\r\nc=4\r\n");
    Store.DeleteValue("missing");
    EXPECT_EQ(Bytes(), "[Main]\r\nb=2\r\na=3\r\nc=4\r\n");
}

TEST_F(settingsTextTest, AddsTheSectionWhenDeletingAValueFromAMissingOne)
{
    Put("[Other]\n");
    Store.DeleteValue("a");
    EXPECT_EQ(Bytes(), "[Other]\r\n[Main]\r\n");
}

TEST_F(settingsTextTest, StoresAKeyWithAnEqualsSignUnderAnUnderline)
{
    SetText("a=b\tc\rd\ne", "1");
    EXPECT_EQ(Bytes(), "[Main]\r\na_b_c_d_e=1\r\n");
    EXPECT_EQ(Text("a=b\tc\rd\ne"), "1");
    EXPECT_EQ(Text("a_b_c_d_e"), "1");
    Store.DeleteValue("a=b\tc\rd\ne");
    EXPECT_EQ(Text("a=b\tc\rd\ne"), "1");
    Store.DeleteValue("a_b_c_d_e");
    EXPECT_EQ(Bytes(), "[Main]\r\n");
}

TEST_F(settingsTextTest, DeletesASectionAndKeepsTheOthers)
{
    Put("[A]\na=1\n[Main]\nb=2\n[C]\nc=3\n");
    Store.DeleteAll();
    EXPECT_EQ(Bytes(), "[A]\r\na=1\r\n[C]\r\nc=3\r\n");
    EXPECT_FALSE(Store.Open(false));
}

TEST_F(settingsTextTest, StartsTheSectionAnewAfterItsDeletionInABatch)
{
    Put("[Main]\nb=2\n[C]\nb=3\n");
    Store.Open(true);
    Store.DeleteAll();
    EXPECT_EQ(Text("b"), "untouched");
    Store.DeleteValue("b");
    Store.DeleteAll();
    SetText("d", "4");
    EXPECT_EQ(Text("d"), "4");
    Store.Close(true);
    EXPECT_EQ(Bytes(), "[C]\r\nb=3\r\n[Main]\r\nd=4\r\n");
}

TEST_F(settingsTextTest, ReachesAFileWithAnyNameThatUtf8CanTell)
{
    Store.Root = "/house/\xC3\xA4\xF0\x9F\x9B\xB0.txt";
    SetText("Key", "1");
    EXPECT_EQ(fakeFileBytes(u"/house/\u00E4\U0001F6F0.txt"), "[Main]\r\nKey=1\r\n");
}

TEST_F(settingsTextTest, DoesNothingWithoutAPath)
{
    Store.Root.clear();
    SetText("Key", "1");
    EXPECT_EQ(Text("Key"), "untouched");
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(settingsTextTest, ReadsAFileWithAByteOrderMarkAndWritesItWithout)
{
    Put("\xEF\xBB\xBF[Main]\nKey=1\n");
    EXPECT_EQ(Text("Key"), "1");
    SetText("Key", "2");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=2\r\n");
}
