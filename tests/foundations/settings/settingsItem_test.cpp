#include "foundations/settings/settingsItem.h"

#include "foundations/settings/settingsReg.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

constexpr char Root[] = "Software\\House";

class settingsItemTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        Store.Root = Root;
    }

    settingsReg Store;
    settingsList List;
    settingsItemText Text{&List, "Text", "a default"};
    settingsItemInt Int{&List, "Int", 4003};
    settingsItemBool Bool{&List, "Bool", true};
};

}  // namespace

TEST_F(settingsItemTest, AppendsItselfToItsList)
{
    const settingsItemInt alone(nullptr, "Alone", 3);
    EXPECT_THAT(List.Items, ElementsAre(&Text, &Int, &Bool));
    EXPECT_STREQ(List.Items[1]->Key, "Int");
    EXPECT_STREQ(alone.Key, "Alone");
}

TEST_F(settingsItemTest, StandsAtNothingUntilTheFirstReset)
{
    EXPECT_EQ(Text.Value, "");
    EXPECT_EQ(Int.Value, 0);
    EXPECT_FALSE(Bool.Value);
    Text.Reset();
    Int.Reset();
    Bool.Reset();
    EXPECT_EQ(Text.Value, "a default");
    EXPECT_EQ(Int.Value, 4003);
    EXPECT_TRUE(Bool.Value);
}

TEST_F(settingsItemTest, HasPlainDefaultsUnlessToldOtherwise)
{
    settingsItemText text(nullptr, "Text");
    settingsItemInt number(nullptr, "Int");
    settingsItemBool flag(nullptr, "Bool");
    EXPECT_EQ(text.Default, "");
    EXPECT_EQ(number.Default, 0);
    EXPECT_FALSE(flag.Default);
}

TEST_F(settingsItemTest, StandsAtItsDefaultWhenTheStoreDoesNotOpen)
{
    Text.Value = "changed";
    Int.Value = 1;
    Store.LoadList(List);
    EXPECT_EQ(Text.Value, "a default");
    EXPECT_EQ(Int.Value, 4003);
    EXPECT_TRUE(Bool.Value);
    EXPECT_THAT(fakeCalls(), ElementsAre("registryOpen Software\\House"));
}

TEST_F(settingsItemTest, StandsAtItsDefaultWhenTheStoreLacksItsKey)
{
    fakeRegistryPut(Root, "Int", {registryType::Dword, {5, 0, 0, 0}});
    Text.Value = "changed";
    Store.LoadList(List);
    EXPECT_EQ(Text.Value, "a default");
    EXPECT_EQ(Int.Value, 5);
    EXPECT_TRUE(Bool.Value);
}

TEST_F(settingsItemTest, ComesBackAsItWasSaved)
{
    Text.Value = "saved";
    Int.Value = -7;
    Bool.Value = false;
    Store.SaveList(List);
    Text.Value = "other";
    Int.Value = 1;
    Bool.Value = true;
    Store.LoadList(List);
    EXPECT_EQ(Text.Value, "saved");
    EXPECT_EQ(Int.Value, -7);
    EXPECT_FALSE(Bool.Value);
    EXPECT_EQ(fakeRegistryHandles(), 0u);
}

TEST_F(settingsItemTest, IsSavedAndLoadedInTheOrderOfTheListWithinOneOpen)
{
    Store.SaveList(List);
    EXPECT_THAT(fakeCalls(),
                ElementsAre("registryCreate Software\\House", "registrySet Software\\House\\Text",
                            "registrySet Software\\House\\Int", "registrySet Software\\House\\Bool",
                            "registryClose Software\\House"));
    EXPECT_EQ(fakeCallCount("registryCreate"), 1u);
    fakeClearCalls();
    Store.LoadList(List);
    EXPECT_EQ(fakeCallCount("registryOpen"), 1u);
    EXPECT_EQ(fakeCallCount("registryClose"), 1u);
    EXPECT_EQ(fakeCalls().back(), "registryClose Software\\House");
    EXPECT_EQ(fakeCalls()[fakeCalls().size() - 2], "registryQuery Software\\House\\Bool");
}

TEST_F(settingsItemTest, OpensNothingToSaveAnEmptyList)
{
    Store.SaveList({});
    EXPECT_THAT(fakeCalls(), ElementsAre());
    Store.LoadList({});
    EXPECT_THAT(fakeCalls(), ElementsAre("registryOpen Software\\House"));
}

TEST_F(settingsItemTest, IsNotSavedWhenTheStoreDoesNotOpen)
{
    fakeFail("registryCreate");
    Store.SaveList(List);
    EXPECT_THAT(fakeCalls(), ElementsAre("registryCreate Software\\House"));
    EXPECT_EQ(Store.OpenCount, 0u);
}
