#include "foundations/settings/settingsGroup.h"

#include "tests/fakes/fakes.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class settingsGroupTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    const std::u16string Path = u"/house/labels \u00E4.txt";
    settingsGroup Buttons{"buttons"};
    settingsItemText No{&Buttons, "No", "No"};
    settingsItemText Yes{&Buttons, "Yes", "Yes"};
    settingsGroup Other{"other"};
    settingsItemInt Count{&Other, "Count", 3};
};

}  // namespace

TEST_F(settingsGroupTest, FillsAllGroupsFromTheSectionsOfTheirNames)
{
    fakeFilePut(Path, "[other]\nCount=5\n[buttons]\nYes=Ja\nNo=Nein\n");
    settingsGroup::LoadFile(Path);
    EXPECT_EQ(Yes.Value, "Ja");
    EXPECT_EQ(No.Value, "Nein");
    EXPECT_EQ(Count.Value, 5);
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(settingsGroupTest, StandsAtItsDefaultsWhenTheFileIsMissing)
{
    EXPECT_EQ(Yes.Value, "");
    settingsGroup::LoadFile(Path);
    EXPECT_EQ(Yes.Value, "Yes");
    EXPECT_EQ(Count.Value, 3);
    EXPECT_FALSE(fakeFileHas(Path));
    settingsGroup::LoadFile(u"");
    EXPECT_EQ(Yes.Value, "Yes");
}

TEST_F(settingsGroupTest, StandsAtItsDefaultsWhereTheFileLacksASectionOrAKey)
{
    fakeFilePut(Path, "[buttons]\nYes=Ja\n");
    No.Value = "changed";
    Count.Value = 9;
    settingsGroup::LoadFile(Path);
    EXPECT_EQ(Yes.Value, "Ja");
    EXPECT_EQ(No.Value, "No");
    EXPECT_EQ(Count.Value, 3);
}

TEST_F(settingsGroupTest, IsForgottenWithItsObjectWhereverItStandsInTheList)
{
    for (const int gone : {0, 1, 2}) {
        SCOPED_TRACE(gone);
        std::unique_ptr<settingsGroup> groups[] = {std::make_unique<settingsGroup>("g0"),
                                                   std::make_unique<settingsGroup>("g1"),
                                                   std::make_unique<settingsGroup>("g2")};
        groups[gone].reset();
        fakeClearCalls();
        settingsGroup::LoadFile(Path);
        // Each group asks for the file once: these two and the fixture's two.
        EXPECT_EQ(fakeCallCount("fileExists"), 4u);
        // The name is free again.
        groups[gone] = std::make_unique<settingsGroup>(("g" + std::to_string(gone)).c_str());
    }
}

TEST_F(settingsGroupTest, BreaksOnASecondGroupOfOneName)
{
    EXPECT_THROW(settingsGroup("buttons"), fakeBreak);
    EXPECT_NE(fakeDebugText().find("settings groups"), std::string::npos);
    EXPECT_NO_THROW(settingsGroup("Buttons"));
    // The group that was refused is not in the list.
    fakeClearCalls();
    settingsGroup::LoadFile(Path);
    EXPECT_EQ(fakeCallCount("fileExists"), 2u);
}

TEST_F(settingsGroupTest, LeavesTheListWholeWhenADeveloperGoesOnAfterTheBreak)
{
    fakeBreakReturns(true);
    {
        const settingsGroup second("buttons");
        settingsGroup::LoadFile(Path);
    }
    fakeClearCalls();
    settingsGroup::LoadFile(Path);
    EXPECT_EQ(fakeCallCount("fileExists"), 2u);
}
