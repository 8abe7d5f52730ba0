#include "toolkit/ctrlSlider.h"

#include "tests/toolkit/controlTest.h"
#include "toolkit/ctrlButton.h"

#include <cmath>
#include <limits>

using testing::Contains;
using testing::HasSubstr;

namespace {

class ctrlSliderTest : public controlTest
{
protected:
    // 102 pixels long: with its borders a track of 100, and a thumb of 10.
    ctrlSlider* Slider(uint32_t style)
    {
        const bool across = (style & styleSliderHorizontal) != 0;
        auto* slider = new ctrlSlider(Main, 0, 0, 10, 10, style);
        slider->OnChange = Count(Changes);
        return Placed(slider, 10, 10, across ? 102 : 20, across ? 20 : 102);
    }

    int Changes = 0;
};

TEST_F(ctrlSliderTest, TheRangeIsSorted)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    slider->SetRange(10, 0);
    EXPECT_EQ(slider->Minimum, 0);
    EXPECT_EQ(slider->Maximum, 10);
    EXPECT_EQ(slider->Value, 10) << "moved inside";
    slider->SetRange(std::nan(""), 5);
    slider->SetRange(0, std::numeric_limits<double>::infinity());
    EXPECT_EQ(slider->Maximum, 10);
    EXPECT_EQ(Changes, 0);
}

TEST_F(ctrlSliderTest, ADisabledOneIsDimmed)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    slider->Invalidate(true);
    const std::vector<std::string> enabled = Drawn({"fill"});
    slider->Enable(false);
    const std::vector<std::string> disabled = Drawn({"fill"});
    ASSERT_EQ(enabled.size(), disabled.size());
    // What is behind it, and its frames, are as before; groove and thumb are not.
    size_t changed = 0;
    for (size_t i = 0; i < enabled.size(); ++i)
        changed += size_t{enabled[i] != disabled[i]};
    EXPECT_EQ(changed, 2U);
}

TEST_F(ctrlSliderTest, AValueOutsideLandsOnTheNearestEnd)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    slider->SetValue(1000);
    EXPECT_EQ(slider->Value, 100);
    slider->SetValue(-1000);
    EXPECT_EQ(slider->Value, 0);
    slider->SetValue(std::nan(""));
    EXPECT_EQ(slider->Value, 0);
}

TEST_F(ctrlSliderTest, TheValueThatItHasChangesNothing)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    Toolkit().PumpPending();
    slider->SetValue(50);
    EXPECT_TRUE(Drawn().empty());
    EXPECT_EQ(Changes, 0);
    slider->SetValue(51);
    EXPECT_FALSE(Drawn().empty());
    EXPECT_EQ(Changes, 0) << "only what the user does is told";
}

TEST_F(ctrlSliderTest, TheThumbFollowsThePointer)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    slider->SetValue(0);
    Toolkit().PumpPending();
    MoveTo(slider, 3, 10);
    Press();
    MoveTo(slider, 48, 10);
    EXPECT_NEAR(slider->Value, 100.0 * 46 / 92, 1e-9);
    EXPECT_EQ(Changes, 1);
    MoveTo(slider, 500, 200);
    EXPECT_EQ(slider->Value, 100);
    MoveTo(slider, -500, 10);
    EXPECT_EQ(slider->Value, 0);
    Release();
    MoveTo(slider, 60, 10);
    EXPECT_EQ(slider->Value, 0);
    EXPECT_EQ(Changes, 3);
}

TEST_F(ctrlSliderTest, AVerticalOneHasItsMaximumAtTheTop)
{
    ctrlSlider* slider = Slider(0);
    slider->SetValue(0);
    Toolkit().PumpPending();
    MoveTo(slider, 10, 95);
    Press();
    MoveTo(slider, 10, -50);
    EXPECT_EQ(slider->Value, 100);
    Release();
    Click(slider, 10, 90);
    EXPECT_EQ(slider->Value, 99) << "below the thumb is down";
}

TEST_F(ctrlSliderTest, APressBesideTheThumbPagesUntilItIsThere)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    slider->Page = 40;
    slider->SetValue(0);
    Toolkit().PumpPending();
    MoveTo(slider, 60, 10);
    Press();
    EXPECT_EQ(slider->Value, 40);
    EXPECT_EQ(Toolkit().Timer.Period, 250U);
    EXPECT_TRUE(Tick([slider] { return slider->Value == 80; })) << "once more, and the thumb is behind it";
    EXPECT_TRUE(Tick([slider] { return slider->Value == 40; }));
    Release();
    const double before = slider->Value;
    Toolkit().Timer.Signal();
    letOthersRun();
    Toolkit().PumpPending();
    EXPECT_EQ(slider->Value, before);
    EXPECT_GE(Changes, 3);
}

TEST_F(ctrlSliderTest, DisablingItEndsThePaging)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    slider->SetValue(0);
    Toolkit().PumpPending();
    MoveTo(slider, 90, 10);
    Press();
    slider->Enable(false);
    const double before = slider->Value;
    EXPECT_TRUE(Tick([slider] { return !slider->HasState(stateSliderPaging); }));
    EXPECT_EQ(slider->Value, before);
}

TEST_F(ctrlSliderTest, WithoutArrowsItsEndsOnlyPage)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    EXPECT_EQ(slider->ButtonLow, nullptr);
    EXPECT_EQ(slider->ButtonHigh, nullptr);
    slider->Page = 7;
    Click(slider, 100, 10);
    EXPECT_EQ(slider->Value, 57);
}

TEST_F(ctrlSliderTest, ArrowsStepAndRepeat)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal | styleSliderArrows);
    slider->Step = 3;
    ASSERT_NE(slider->ButtonLow, nullptr);
    EXPECT_EQ(slider->ButtonLow->X(), 0);
    EXPECT_EQ(slider->ButtonHigh->X(), 82);
    EXPECT_EQ(slider->ButtonHigh->Width(), 20U);
    Click(slider, 90, 10);
    EXPECT_EQ(slider->Value, 53);
    EXPECT_EQ(slider->ButtonHigh->FirstDelay, 500U);
    EXPECT_EQ(slider->ButtonHigh->RepeatPeriod, 100U);
    MoveTo(slider, 5, 10);
    Press();
    EXPECT_TRUE(Tick([slider] { return slider->Value <= 44; }));
    Release();
    slider->SetValue(100);
    const int before = Changes;
    Click(slider, 90, 10);
    EXPECT_EQ(Changes, before) << "it stands at its end";
    ctrlSlider* tall = Slider(styleSliderArrows);
    EXPECT_EQ(tall->ButtonHigh->Y(), 0) << "upward is more";
    EXPECT_EQ(tall->ButtonLow->Y(), 82);
}

TEST_F(ctrlSliderTest, HalfANotchOfTheWheelIsRemembered)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    MoveTo(slider, 50, 10);
    Wheel(60);
    EXPECT_EQ(slider->Value, 50);
    Wheel(60);
    EXPECT_EQ(slider->Value, 51);
    Wheel(-300);
    EXPECT_EQ(slider->Value, 49);
    Wheel(-60);
    EXPECT_EQ(slider->Value, 48);
    EXPECT_EQ(Changes, 3);
}

TEST_F(ctrlSliderTest, WithoutARangeNothingMoves)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    slider->SetRange(5, 5);
    Toolkit().PumpPending();
    Click(slider, 90, 10);
    Wheel(120);
    EXPECT_EQ(slider->Value, 5);
    EXPECT_EQ(Changes, 0);
}

TEST_F(ctrlSliderTest, TheGrooveFitsAcross)
{
    ctrlSlider* slider = Slider(styleSliderHorizontal);
    slider->SetTrackWidth(100);
    EXPECT_EQ(slider->TrackWidth, 17U);
    slider->SetTrackWidth(0);
    EXPECT_EQ(slider->TrackWidth, 0U);
}

TEST_F(ctrlSliderTest, StaysWholeAtAnySizeAndRatio)
{
    for (const uint32_t size : {1U, 2U, 3U, 9U, 300U}) {
        for (const float ratio : {0.0F, 1.0F, 5.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}) {
            for (const uint32_t style : {0U, 0x100U, 0x200U, 0x300U}) {
                auto* slider = new ctrlSlider(Main, 0, 0, 10, 10, style);
                slider->Ratio = ratio;
                slider->SetRange(-1e308, 1e308);
                Placed(slider, 0, 0, size, size / 2 + 1);
                MoveTo(slider, 0, 0);
                Press();
                MoveTo(slider, 100, 100);
                Release();
                EXPECT_GE(slider->Value, -1e308);
                slider->Destroy();
            }
        }
    }
}

TEST_F(ctrlSliderTest, TheHandlerMayDestroyTheSlider)
{
    for (const bool drag : {false, true}) {
        ctrlSlider* slider = Slider(styleSliderHorizontal);
        const ctrlLife life(slider);
        slider->OnChange = [slider] { slider->Destroy(); };
        slider->SetValue(0);
        Toolkit().PumpPending();
        MoveTo(slider, drag ? 5 : 90, 10);
        Press();
        MoveTo(Main, 70, 20);
        Release();
        EXPECT_FALSE(life);
    }
}

}  // namespace
