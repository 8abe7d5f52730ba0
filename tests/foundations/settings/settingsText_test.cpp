// The sections and rows of a store, as its file keeps them.
#include "tests/foundations/settings/settingsTextFixture.h"

namespace {

class settingsTextTest : public settingsTextFixture
{
};

}  // namespace

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

TEST_F(settingsTextTest, ReadsAFileWithAByteOrderMarkAndWritesItWithout)
{
    Put("\xEF\xBB\xBF[Main]\nKey=1\n");
    EXPECT_EQ(Text("Key"), "1");
    SetText("Key", "2");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=2\r\n");
}
