#include "tests/toolkit/toolkitTest.h"

#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class ctrlWindowPaintTest : public toolkitTest
{
};

// Draws one text, its name.
class sign : public ctrlWindow
{
public:
    using ctrlWindow::ctrlWindow;
    void Paint() override
    {
        ctrlWindow::Paint();
        Colour(0xFFFFFF);
        Text(PaintRect, Name().c_str(), textLeft | textTop);
    }
};

TEST_F(ctrlWindowPaintTest, DrawsTheWindowAndComposesItsChildren)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, ctrlFramed);
    auto* child = new sign(window, 10, 20, 50, 30, 0);
    child->SetBackColour(0x0000FF);
    child->Caption("A");
    child->Show();
    window->Show();

    EXPECT_THAT(Drawn(),
                ElementsAre("window 1 on 1 200x100 hardware", "begin 1", "fill 1 0,0,200,100 404060/1",
                            "compatible 2 of 1 50x30", "begin 2", "fill 2 0,0,50,30 FF0000/1",
                            "clip 2 0,0,50,30", "text 2 \"A\" at 0,0 in 50x30 left top FFFFFF/1 size 11",
                            "unclip 2", "end 2", "bitmap 1 of 2 at 10,20,60,50 from 0,0,50,30 opacity 1",
                            "end 1"));
    EXPECT_THAT(Drawn(), ElementsAre());
}

TEST_F(ctrlWindowPaintTest, AChangedLabelCostsItsOwnDrawingAndItsCompositionOnly)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, ctrlFramed);
    auto* child = new sign(window, 10, 20, 50, 30, 0);
    auto* other = new sign(window, 10, 60, 50, 30, 0);
    child->Show();
    other->Show();
    window->Show();
    Drawn();

    child->Caption("B");
    EXPECT_THAT(Drawn(),
                ElementsAre("begin 1", "begin 3", "fill 3 0,0,50,30 404060/1", "clip 3 0,0,50,30",
                            "text 3 \"B\" at 0,0 in 50x30 left top FFFFFF/1 size 11", "unclip 3", "end 3",
                            "bitmap 1 of 3 at 10,20,60,50 from 0,0,50,30 opacity 1", "end 1"));
}

// --- Targets

class arranger : public sign
{
public:
    using sign::sign;
    void Layout() override
    {
        ++Layouts;
        if (OnLayout)
            OnLayout();
    }
    unsigned Layouts = 0;
    std::function<void()> OnLayout;
};

TEST_F(ctrlWindowPaintTest, WithoutTheCardTheWindowIsDrawnByOtherMeans)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    fakeFail("drawMakeWindowTarget");
    window->Show();
    EXPECT_THAT(Drawn(),
                ElementsAre("window 1 on 1 200x100", "begin 1", "fill 1 0,0,200,100 404060/1", "end 1"));
    EXPECT_THAT(fakeAlerts(), IsEmpty());
}

TEST_F(ctrlWindowPaintTest, AWindowWithoutATargetSaysSoAndTriesAgainLater)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    window->Caption("The name");
    fakeFail("drawMakeWindowTarget", {.Times = 2});
    window->Show();
    EXPECT_THAT(Drawn(), IsEmpty());
    EXPECT_THAT(fakeAlerts(), ElementsAre(Pair("ctrlWindow Fatal Error",
                                               "Can't create compatible render target bitmap for painting!\n"
                                               "Image size: 200x100 (with handle)\nControl name: The name\n"
                                               "Error code: 0x88990001")));
    fakeClockMove(49'999'999);
    EXPECT_THAT(Drawn(), IsEmpty());
    fakeClockMove(1);
    EXPECT_THAT(Drawn({"fill"}), ElementsAre("fill 1 0,0,200,100 404060/1"));
    EXPECT_EQ(fakeAlerts().size(), 1U);
}

TEST_F(ctrlWindowPaintTest, AChildWithoutATargetIsTriedAgainLaterToo)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    auto* child = new sign(window, 10, 20, 50, 30, 0);
    auto* inner = new sign(child, 1, 1, 5, 5, 0);
    inner->Show();
    child->Show();
    window->Show();
    fakeFail("drawMakeCompatible", {.Skip = 1});
    EXPECT_THAT(Drawn({"compatible"}), ElementsAre("compatible 2 of 1 50x30"));
    EXPECT_EQ(fakeAlerts().size(), 1U);
    fakeClockMove(50'000'000);
    EXPECT_THAT(Drawn({"compatible", "fill"}),
                ElementsAre("compatible 3 of 2 5x5", "fill 3 0,0,5,5 404060/1"));
}

TEST_F(ctrlWindowPaintTest, ALostWindowTargetIsBuiltAnewWithAllInIt)
{
    auto* window = new arranger(nullptr, 100, 100, 200, 100, 0);
    auto* child = new sign(window, 10, 20, 50, 30, 0);
    child->Show();
    window->Show();
    window->OnLayout = [window] {
        if (window->Layouts == 1)
            fakeEndGives(drawTargetLost);
    };
    EXPECT_THAT(Drawn({"window", "compatible", "fill", "end"}),
                ElementsAre("window 1 on 1 200x100 hardware", "fill 1 0,0,200,100 404060/1",
                            "compatible 2 of 1 50x30", "fill 2 0,0,50,30 404060/1", "end 2", "end 1",
                            "window 3 on 1 200x100 hardware", "fill 3 0,0,200,100 404060/1",
                            "compatible 4 of 3 50x30", "fill 4 0,0,50,30 404060/1", "end 4", "end 3"));
    EXPECT_EQ(fakeDrawObjects(), 2U);
    EXPECT_THAT(Drawn(), IsEmpty());
}

TEST_F(ctrlWindowPaintTest, AChildsLostTargetIsNotComposedButBuiltAnew)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    auto* child = new sign(window, 10, 20, 50, 30, 0);
    bool lost = false;
    child->OnNotify = [&lost](unsigned code) {
        if (code == notifyPainted && !std::exchange(lost, true))
            fakeEndGives(drawTargetLost);
        return false;
    };
    child->Show();
    window->Show();
    EXPECT_THAT(Drawn({"compatible", "bitmap", "end"}),
                ElementsAre("compatible 2 of 1 50x30", "end 2", "end 1", "compatible 3 of 1 50x30", "end 3",
                            "bitmap 1 of 3 at 10,20,60,50 from 0,0,50,30 opacity 1", "end 1"));
}

TEST_F(ctrlWindowPaintTest, AWindowResizedWhileItPaintsIsPaintedAgain)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    auto* child = new sign(window, 10, 20, 50, 30, 0);
    bool grown = false;
    child->OnNotify = [&grown, window](unsigned code) {
        if (code == notifyPainted && !std::exchange(grown, true))
            window->Width(300);
        return false;
    };
    child->Show();
    window->Show();
    const auto draws = Drawn({"window", "bitmap"});
    EXPECT_THAT(draws, ElementsAre("window 1 on 1 200x100 hardware", "window 3 on 1 300x100 hardware",
                                   "bitmap 3 of 4 at 10,20,60,50 from 0,0,50,30 opacity 1"));
}

TEST_F(ctrlWindowPaintTest, APumpWithinAPaintDrawsNotOnTheSameSurface)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    unsigned paints = 0;
    window->OnNotify = [&paints, window](unsigned code) {
        if (code == notifyPainted && ++paints == 1) {
            window->Invalidate(true);
            Toolkit().PumpPending();
        }
        return false;
    };
    window->Show();
    Drawn();
    EXPECT_EQ(paints, 1U);
    fakeClockMove(50'000'000);
    Drawn();
    EXPECT_EQ(paints, 2U);
}

class clipped : public ctrlWindow
{
public:
    using ctrlWindow::ctrlWindow;
    void Paint() override
    {
        ClipPush({1, 1, 5, 5});
        ctrlWindow::Paint();
    }
};

TEST_F(ctrlWindowPaintTest, ClipsThatAPaintLeftAreGoneBeforeTheChildrenAreComposed)
{
    auto* window = new clipped(nullptr, 100, 100, 200, 100, 0);
    auto* child = new ctrlWindow(window, 10, 20, 50, 30, 0);
    child->Show();
    window->Show();
    EXPECT_THAT(
        Drawn({"clip", "unclip", "bitmap"}),
        ElementsAre("clip 1 1,1,5,5", "unclip 1", "bitmap 1 of 2 at 10,20,60,50 from 0,0,50,30 opacity 1"));
}

// --- Layout

class measured : public ctrlWindow
{
public:
    using ctrlWindow::ctrlWindow;
    void Paint() override
    {
        ctrlWindow::Paint();
        const textSize size = TextSize(Name().c_str());
        PreferredWidth_ = size.Width;
        PreferredHeight_ = size.Height;
    }
};

TEST_F(ctrlWindowPaintTest, ChildrenAreArrangedWhenTheyHaveMeasuredThemselves)
{
    auto* window = new arranger(nullptr, 100, 100, 200, 100, 0);
    auto* child = new measured(window, 0, 0, 10, 10, ctrlMeasure);
    child->Caption("ABCD");
    child->Show();
    window->OnLayout = [child] { child->Move(5, 5, child->PreferredWidth(), child->PreferredHeight()); };
    window->Show();
    Drawn();
    EXPECT_EQ(child->Width(), 22U);
    EXPECT_EQ(child->Height(), 17U);
    EXPECT_EQ(window->Layouts, 2U) << "once more for the child that moved, and then no more";

    Drawn();
    window->Invalidate(true);
    Drawn();
    EXPECT_EQ(window->Layouts, 2U) << "a paint alone arranges nothing";
    child->Hide();
    Drawn();
    EXPECT_EQ(window->Layouts, 3U);
}

TEST_F(ctrlWindowPaintTest, ALayoutIsAskedForUpToAWindowThatFollowsItsMonitor)
{
    auto* window = new arranger(nullptr, 100, 100, 200, 100, ctrlPerMonitor);
    auto* panel = new arranger(window, 0, 0, 100, 100, 0);
    auto* child = new sign(panel, 0, 0, 10, 10, 0);
    for (ctrlWindow* one :
         {static_cast<ctrlWindow*>(child), static_cast<ctrlWindow*>(panel), static_cast<ctrlWindow*>(window)})
        one->Show();
    Drawn();
    window->Layouts = panel->Layouts = 0;
    child->Move(1, 1, 12, 12);
    Drawn();
    EXPECT_EQ(panel->Layouts, 1U);
    EXPECT_EQ(window->Layouts, 1U);
}

// --- Sharing

TEST_F(ctrlWindowPaintTest, ControlsOfOneColourShareABrush)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    for (int32_t i = 0; i < 10; ++i)
        (new ctrlWindow(window, 10 * i, 0, 10, 10, 0))->Show();
    window->Show();
    Drawn();
    EXPECT_EQ(fakeBrushesMade(), 1U);

    window->InvalidateTree(true);
    window->FirstChild()->SetBackColour(0x123456);
    Drawn();
    EXPECT_EQ(fakeBrushesMade(), 3U);
}

TEST_F(ctrlWindowPaintTest, ControlsOfOneFontShareAFormat)
{
    auto* window = new sign(nullptr, 100, 100, 200, 100, 0);
    auto* first = new sign(window, 0, 0, 10, 10, 0);
    auto* second = new sign(window, 20, 0, 10, 10, 0);
    auto* floating = new sign(window, 400, 400, 10, 10, ctrlFloating);
    first->Show();
    second->Show();
    window->Show();
    Drawn();
    EXPECT_EQ(fakeFormatsMade(), 1U);
    floating->Show();
    Drawn();
    EXPECT_EQ(fakeFormatsMade(), 2U) << "of a window that is not painting";

    second->FontSize(20);
    window->InvalidateTree(true);
    EXPECT_THAT(Drawn({"text 2"}),
                ElementsAre("text 2 \"Untitled\" at 0,0 in 10x10 left top FFFFFF/1 size 20"));
    EXPECT_EQ(fakeFormatsMade(), 4U);
}

TEST_F(ctrlWindowPaintTest, NoFormatIsSharedAcrossAFloatingWindow)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    auto* floating = new ctrlWindow(window, 400, 400, 50, 50, ctrlFloating);
    auto* child = new sign(floating, 0, 0, 10, 10, 0);
    child->Show();
    floating->Show();
    window->TextSize("A");
    EXPECT_EQ(fakeFormatsMade(), 1U);
    Drawn();
    EXPECT_EQ(fakeFormatsMade(), 2U);
}

TEST_F(ctrlWindowPaintTest, AFontsNameIsTheNearestAncestors)
{
    auto* window = new sign(nullptr, 100, 100, 200, 100, 0);
    auto* panel = new sign(window, 0, 0, 10, 10, 0);
    auto* child = new sign(panel, 0, 0, 10, 10, 0);
    EXPECT_EQ(child->FontName(), "Segoe UI");
    window->SetFontName("Mono");
    EXPECT_EQ(child->FontName(), "Mono");
    panel->SetFontName("Serif");
    EXPECT_EQ(child->FontName(), "Serif");
}

TEST_F(ctrlWindowPaintTest, TextsGrowWithTheMonitorOfAWindowThatFollowsIt)
{
    fakeScreenDPI(144);
    auto* window = new sign(nullptr, 100, 100, 200, 100, ctrlPerMonitor);
    window->Caption("A");
    auto* other = new sign(nullptr, 100, 300, 200, 100, 0);
    other->Caption("B");
    window->Show();
    other->Show();
    EXPECT_THAT(Drawn({"text"}), ElementsAre("text 1 \"A\" at 0,0 in 200x100 left top FFFFFF/1 size 16.5",
                                             "text 2 \"B\" at 0,0 in 200x100 left top FFFFFF/1 size 11"));
    EXPECT_EQ(window->FontSize(), 11.0F);

    fakeWindowDPI(window->Handle(), 192);
    EXPECT_THAT(Drawn({"text"}), ElementsAre("text 1 \"A\" at 0,0 in 200x100 left top FFFFFF/1 size 22"));
    EXPECT_EQ(window->Width(), 200U) << "its size in pixels stays";
}

}  // namespace
