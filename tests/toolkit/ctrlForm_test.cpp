#include "toolkit/ctrlForm.h"

#include "tests/toolkit/controlTest.h"

namespace {

class ctrlFormTest : public controlTest
{
};

TEST_F(ctrlFormTest, StartsWithAllBoxesAndAFixedSize)
{
    auto* form = new ctrlForm(nullptr, 0);
    EXPECT_EQ(form->Width(), 100U);
    EXPECT_EQ(form->Frame(), 31);
    EXPECT_TRUE(form->HasFlag(ctrlFramed));
}

TEST_F(ctrlFormTest, WhatWasDisabledTwiceIsEnabledByTheSecondCall)
{
    auto* form = new ctrlForm(nullptr, 10, 10, 50, 50, 0);
    form->Show();
    form->Enable(false);
    form->Enable(false);
    form->Enable(true);
    EXPECT_FALSE(form->IsEnabled());
    form->Enable(true);
    EXPECT_TRUE(form->IsEnabled());
    form->Enable(true);
    EXPECT_TRUE(form->IsEnabled());
    form->Enable(false);
    EXPECT_FALSE(form->IsEnabled()) << "what was enabled too often counts as enabled once";
}

TEST_F(ctrlFormTest, IsCentredWhenItCouldNotBeSeen)
{
    auto* far = new ctrlForm(nullptr, 5000, 5000, 200, 100, 0);
    far->Show();
    Toolkit().PumpPending();
    EXPECT_GT(far->X(), 700);
    EXPECT_LT(far->X(), 1000);
    auto* near = new ctrlForm(nullptr, 40, 50, 200, 100, 0);
    near->Show();
    Toolkit().PumpPending();
    EXPECT_EQ(near->X(), 40);
    auto* child = new ctrlForm(Main, 1000, 10, 100, 100, 0);
    child->Show();
    EXPECT_EQ(child->X(), 150);
    EXPECT_EQ(child->Y(), 100);
}

TEST_F(ctrlFormTest, GivesItsIconToTheSystemOnce)
{
    auto* form = new ctrlForm(nullptr, 0);
    windowSystem& system = Toolkit().Windows();
    const iconId icon = system.MakeIcon({2, 2, {1, 2, 3, 4}});
    fakeClearCalls();
    form->Icon(icon);
    form->Icon(icon);
    EXPECT_EQ(fakeCallCount("windowSetIcon"), 1U);
    EXPECT_EQ(form->WindowProc(msgGetIcon, 1, 0), static_cast<int64_t>(icon));
    delete form;
    EXPECT_EQ(fakeCallCount("windowSetIcon"), 2U) << "taken away at its end";
    system.DestroyIcon(icon);
}

}  // namespace
