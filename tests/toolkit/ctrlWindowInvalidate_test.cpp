#include "tests/toolkit/toolkitTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A window, and two children of which the older lies on top. Targets: 1 the window, 2 the lower child, 3 the
// upper one.
class ctrlWindowInvalidateTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
        Upper = new ctrlWindow(Window, 0, 0, 50, 50, 0);
        Lower = new ctrlWindow(Window, 25, 0, 50, 50, 0);
        Upper->Show();
        Lower->Show();
        Window->Show();
        Drawn();
    }

    // What was filled, that is painted anew, and what was composed.
    static std::vector<std::string> Painted() { return Drawn({"fill", "bitmap"}); }

    static std::string Fill(unsigned target, const char* area)
    {
        return "fill " + std::to_string(target) + " " + area + " 404060/1";
    }
    static std::string Whole() { return Fill(1, "0,0,200,100"); }
    static std::string Compose(unsigned target, const char* area, const char* opacity = "1")
    {
        return "bitmap 1 of " + std::to_string(target) + " at " + area + " from 0,0,50,50 opacity " + opacity;
    }

    ctrlWindow* Window = nullptr;
    ctrlWindow* Upper = nullptr;
    ctrlWindow* Lower = nullptr;
};

TEST_F(ctrlWindowInvalidateTest, NothingIsPaintedWithoutNeed)
{
    EXPECT_THAT(Drawn(), IsEmpty());
    EXPECT_EQ(fakeCallCount("windowAskPaint"), 1U);
}

TEST_F(ctrlWindowInvalidateTest, TheUpperChildCostsItselfAlone)
{
    Upper->Invalidate(true);
    EXPECT_THAT(Painted(), ElementsAre(Fill(3, "0,0,50,50"), Compose(3, "0,0,50,50")));
}

TEST_F(ctrlWindowInvalidateTest, WhatLiesOverARepaintedChildIsComposedAgain)
{
    Lower->Invalidate(true);
    EXPECT_THAT(Painted(),
                ElementsAre(Fill(2, "0,0,50,50"), Compose(2, "25,0,75,50"), Compose(3, "0,0,50,50")));
}

TEST_F(ctrlWindowInvalidateTest, AChildBesideARepaintedOneIsLeftAlone)
{
    Lower->Move(60, 0, 50, 50);
    Drawn();
    Lower->Invalidate(true);
    EXPECT_THAT(Painted(), ElementsAre(Fill(2, "0,0,50,50"), Compose(2, "60,0,110,50")));
}

TEST_F(ctrlWindowInvalidateTest, TheWindowComposesAllItsChildrenButPaintsNone)
{
    Window->Invalidate(true);
    EXPECT_THAT(Painted(), ElementsAre(Whole(), Compose(2, "25,0,75,50"), Compose(3, "0,0,50,50")));
}

TEST_F(ctrlWindowInvalidateTest, ATreeIsPaintedWhole)
{
    Window->InvalidateTree(true);
    EXPECT_THAT(Painted(), ElementsAre(Whole(), Fill(2, "0,0,50,50"), Compose(2, "25,0,75,50"),
                                       Fill(3, "0,0,50,50"), Compose(3, "0,0,50,50")));
}

TEST_F(ctrlWindowInvalidateTest, AGrandchildIsComposedThroughItsParent)
{
    auto* inner = new ctrlWindow(Upper, 5, 5, 10, 10, 0);
    inner->Show();
    Drawn();
    inner->Invalidate(true);
    EXPECT_THAT(Painted(),
                ElementsAre("fill 4 0,0,10,10 404060/1",
                            "bitmap 3 of 4 at 5,5,15,15 from 0,0,10,10 opacity 1", Compose(3, "0,0,50,50")));
}

TEST_F(ctrlWindowInvalidateTest, ManyRequestsMakeOnePaint)
{
    fakeClearCalls();
    for (int i = 0; i < 10; ++i) {
        Upper->Invalidate(true);
        Lower->Invalidate(true);
        Window->Invalidate(true);
    }
    EXPECT_EQ(fakeCallCount("windowAskPaint"), 1U);
    Drawn();
    EXPECT_EQ(fakeCallCount("windowPaintDone"), 1U);
}

TEST_F(ctrlWindowInvalidateTest, WithoutItselfAControlAsksOnlyForItsPlace)
{
    Upper->Invalidate(false);
    EXPECT_FALSE(Upper->HasState(stateDirty));
    EXPECT_TRUE(Window->HasState(stateDirtyBelow));
    EXPECT_THAT(Painted(), IsEmpty());
}

// --- What is not seen

TEST_F(ctrlWindowInvalidateTest, AHiddenChildIsNotPaintedUntilItIsShown)
{
    Upper->Hide();
    Drawn();
    Upper->Invalidate(true);
    EXPECT_THAT(Painted(), IsEmpty());
    EXPECT_TRUE(Upper->HasState(stateDirty));
    Upper->Show();
    EXPECT_THAT(Drawn({"fill", "compatible"}),
                ElementsAre(Whole(), "compatible 4 of 1 50x50", Fill(4, "0,0,50,50")));
}

TEST_F(ctrlWindowInvalidateTest, AHiddenWindowAsksForNoPaintUntilItIsShown)
{
    Window->Hide();
    Drawn();
    fakeClearCalls();
    Upper->Invalidate(true);
    Window->Invalidate(true);
    EXPECT_EQ(fakeCallCount("windowAskPaint"), 0U);
    EXPECT_THAT(Drawn(), IsEmpty());
    EXPECT_TRUE(Upper->HasState(stateDirty));
    Window->Show();
    EXPECT_EQ(fakeCallCount("windowAskPaint"), 1U);
    EXPECT_THAT(Drawn({"fill"}),
                ElementsAre(Fill(4, "0,0,200,100"), Fill(5, "0,0,50,50"), Fill(6, "0,0,50,50")));
}

TEST_F(ctrlWindowInvalidateTest, HidingReleasesWhatTheDeviceHolds)
{
    Upper->Hide();
    EXPECT_EQ(fakeDrawObjects(), 2U);
    Window->Hide();
    EXPECT_EQ(fakeDrawObjects(), 0U);
}

TEST_F(ctrlWindowInvalidateTest, AClosingControlMarksNothing)
{
    Window->Destroy();
    fakeClearCalls();
    Window->Invalidate(true);
    Upper->Invalidate(true);
    EXPECT_FALSE(Window->HasState(stateDirty));
    EXPECT_FALSE(Window->HasState(stateDirtyBelow));
    EXPECT_EQ(fakeCallCount("windowAskPaint"), 0U);
}

TEST_F(ctrlWindowInvalidateTest, AChildOutsideOfItsParentKeepsItsMarks)
{
    auto* outside = new ctrlWindow(Window, 200, 0, 50, 50, 0);
    outside->Show();
    EXPECT_THAT(Drawn({"compatible"}), IsEmpty());
    EXPECT_TRUE(outside->HasState(stateDirty));
    outside->Invalidate(true);
    Drawn();
    EXPECT_TRUE(outside->HasState(stateDirty));

    outside->Move(199, 0, 50, 50);
    EXPECT_THAT(Drawn({"fill 4", "bitmap 1 of 4"}),
                ElementsAre(Fill(4, "0,0,50,50"), Compose(4, "199,0,249,50")));
    EXPECT_FALSE(outside->HasState(stateDirty));
}

TEST_F(ctrlWindowInvalidateTest, AChildLargerThanItsParentIsComposedWhole)
{
    auto* large = new ctrlWindow(Window, -10, -10, 300, 200, 0);
    large->Show();
    EXPECT_THAT(Drawn({"bitmap 1 of 4"}),
                ElementsAre("bitmap 1 of 4 at -10,-10,290,190 from 0,0,300,200 opacity 1"));
}

// --- What changes

TEST_F(ctrlWindowInvalidateTest, AMovedChildIsPaintedAnewOnARepaintedParent)
{
    Upper->Move(100, 30, 50, 50);
    EXPECT_THAT(Painted(), ElementsAre(Whole(), Compose(2, "25,0,75,50"), Fill(3, "0,0,50,50"),
                                       Compose(3, "100,30,150,80")));
}

TEST_F(ctrlWindowInvalidateTest, AResizedChildGetsANewTarget)
{
    Upper->Move(0, 0, 60, 40);
    EXPECT_THAT(Drawn({"compatible"}), ElementsAre("compatible 4 of 1 60x40"));
    EXPECT_EQ(fakeDrawObjects(), 3U);
}

TEST_F(ctrlWindowInvalidateTest, ADeletedChildUncoversItsParent)
{
    Upper->Destroy();
    EXPECT_THAT(Painted(), ElementsAre(Whole(), Compose(2, "25,0,75,50")));
}

TEST_F(ctrlWindowInvalidateTest, TheOrderOfChildrenIsTheOrderOfComposition)
{
    Window->ChildOrder(Lower, 1);
    EXPECT_EQ(Window->FirstChild(), Upper);
    EXPECT_EQ(Upper->NextSibling(), Lower);
    EXPECT_THAT(Painted(), ElementsAre(Whole(), Compose(3, "0,0,50,50"), Compose(2, "25,0,75,50")));

    Window->ChildOrder(Lower, 0);
    EXPECT_EQ(Window->FirstChild(), Lower);
    Window->ChildOrder(Lower, 99);
    EXPECT_EQ(Upper->NextSibling(), Lower);
    EXPECT_EQ(Lower->NextSibling(), nullptr);

    Upper->ChildOrder(Lower, 0);
    EXPECT_EQ(Upper->FirstChild(), nullptr) << "it is no child of that one";
}

// --- What shines through

TEST_F(ctrlWindowInvalidateTest, ATranslucentChildIsComposedOverWhatLiesBeneath)
{
    Upper->Transparency(0.75F);
    Drawn();
    Upper->Invalidate(true);
    EXPECT_THAT(Painted(),
                ElementsAre(Compose(2, "25,0,75,50"), Fill(3, "0,0,50,50"), Compose(3, "0,0,50,50", "0.25")));
}

TEST_F(ctrlWindowInvalidateTest, ATranslucentChildOnAnOpaqueOneThatCoversItHasTheParentPaint)
{
    Upper->Transparency(0.5F);
    Upper->Move(25, 0, 50, 50);
    Drawn();
    Upper->Invalidate(true);
    EXPECT_TRUE(Window->HasState(stateDirty));
    EXPECT_TRUE(Lower->HasState(stateDirtyBelow));
    EXPECT_THAT(Painted(), ElementsAre(Whole(), Compose(2, "25,0,75,50"), Fill(3, "0,0,50,50"),
                                       Compose(3, "25,0,75,50", "0.5")));
}

TEST_F(ctrlWindowInvalidateTest, UnderATranslucentChildAllThatItShowsIsDrawnAgain)
{
    auto* lowest = new ctrlWindow(Window, 10, 10, 50, 50, 0);
    lowest->Show();
    Upper->Transparency(0.5F);
    Drawn();
    Lower->Invalidate(true);
    EXPECT_TRUE(lowest->HasState(stateDirtyBelow));
    EXPECT_FALSE(Window->HasState(stateDirty));
    EXPECT_THAT(Painted(), ElementsAre(Compose(4, "10,10,60,60"), Fill(2, "0,0,50,50"),
                                       Compose(2, "25,0,75,50"), Compose(3, "0,0,50,50", "0.5")));
}

TEST_F(ctrlWindowInvalidateTest, InATranslucentParentAChildHasAllBehindItDrawnAgain)
{
    auto* inner = new ctrlWindow(Upper, 5, 5, 10, 10, 0);
    inner->Show();
    Upper->Transparency(0.5F);
    Drawn();
    inner->Invalidate(true);
    EXPECT_TRUE(Window->HasState(stateDirty));
    EXPECT_THAT(Drawn({"fill"}), ElementsAre(Whole(), "fill 4 0,0,10,10 404060/1"));
}

TEST_F(ctrlWindowInvalidateTest, AChildOfATranslucentWindowIsPaintedInThat)
{
    auto* floating = new ctrlWindow(Window, 300, 300, 40, 40, ctrlFloating);
    auto* inner = new ctrlWindow(floating, 5, 5, 10, 10, 0);
    inner->Show();
    floating->Transparency(0.5F);
    floating->Show();
    Drawn();
    inner->Invalidate(true);
    EXPECT_THAT(Drawn({"fill"}), ElementsAre("fill 5 0,0,10,10 404060/1"));
}

// --- Colours

TEST_F(ctrlWindowInvalidateTest, AFadeDimsTheControlAndAllInIt)
{
    auto* inner = new ctrlWindow(Upper, 5, 5, 10, 10, 0);
    inner->SetBackColour(0x0000C8);
    inner->Show();
    Upper->SetBackColour(0x0000C8);
    Drawn();
    Upper->Fade(50);
    inner->Fade(20);
    EXPECT_THAT(Drawn({"fill"}), ElementsAre("fill 3 0,0,50,50 640000/1", "fill 4 0,0,10,10 500000/1"))
        << "half of 200, and 40 percent of it";
    Upper->Fade(0);
    EXPECT_THAT(Drawn({"fill 4"}), ElementsAre("fill 4 0,0,10,10 A00000/1"));
}

TEST_F(ctrlWindowInvalidateTest, AFadeEndsAtAFloatingWindow)
{
    auto* floating = new ctrlWindow(Window, 300, 300, 40, 40, ctrlFloating);
    floating->SetBackColour(0x0000C8);
    floating->Show();
    Window->Fade(50);
    EXPECT_THAT(Drawn({"fill 4"}), ElementsAre("fill 4 0,0,40,40 C80000/1"));
}

TEST_F(ctrlWindowInvalidateTest, ABackgroundIsOnesOwnTheParentsOrOfALists)
{
    Window->SetBackColour(0x010203);
    const std::pair<colour, const char*> rows[] = {
        {colourParent, "030201"}, {colourParentToo, "030201"}, {colourList, "000000"},
        {0x0000FF, "FF0000"},     {colourDefault, "404060"},
    };
    Drawn();
    for (const auto& [given, shown] : rows) {
        Upper->SetBackColour(given);
        EXPECT_THAT(Drawn({"fill"}), ElementsAre(std::string("fill 3 0,0,50,50 ") + shown + "/1"));
    }
}

}  // namespace
