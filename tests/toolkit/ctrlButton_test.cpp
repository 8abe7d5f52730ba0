#include "toolkit/ctrlButton.h"

#include "tests/toolkit/controlTest.h"

using testing::AnyOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr colour lit = 0x898989;  // ten sevenths of 0x606060, each channel by itself

class ctrlButtonTest : public controlTest
{
protected:
    ctrlButton* Button(buttonKind kind = buttonKind::Push, int32_t x = 10)
    {
        auto* button = new ctrlButton(Main, "Go", 0);
        button->Kind(kind);
        button->SetBackColour(0x606060);
        button->OnClick = [this] { ++Clicks; };
        return Placed(button, x, 10, 60, 20);
    }

    // A ring in which each names the next.
    void Ring(const std::vector<ctrlButton*>& buttons)
    {
        for (size_t i = 0; i < buttons.size(); ++i)
            buttons[i]->NextInGroup = buttons[(i + 1) % buttons.size()];
    }

    int Clicks = 0;
};

TEST_F(ctrlButtonTest, PressingAndReleasingIsAClick)
{
    ctrlButton* button = Button();
    MoveTo(button, 5, 5);
    Press();
    EXPECT_EQ(Clicks, 0);
    EXPECT_EQ(button->BackColour(), lit);
    Release();
    EXPECT_EQ(Clicks, 1);
    EXPECT_EQ(button->BackColour(), 0x606060);
    fakeMouseDouble();
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_EQ(Clicks, 2) << "the second press of a double click is one too";
}

TEST_F(ctrlButtonTest, DraggingOffGivesNoClickAndDraggingBackDoes)
{
    ctrlButton* button = Button();
    MoveTo(button, 5, 5);
    Press();
    MoveTo(button, 5, 50);
    EXPECT_EQ(button->BackColour(), 0x606060);
    Release();
    EXPECT_EQ(Clicks, 0);
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);
    MoveTo(button, 5, 5);
    Press();
    MoveTo(button, 5, 50);
    MoveTo(button, 5, 5);
    Release();
    EXPECT_EQ(Clicks, 1);
}

TEST_F(ctrlButtonTest, TakesTheClickAlsoWhereThePointerJumpedToItFromAnother)
{
    ctrlButton* one = Button();
    ctrlButton* other = Button(buttonKind::Push, 100);
    MoveTo(one, 5, 5);
    MoveTo(other, 5, 5);
    Press();
    EXPECT_EQ(other->BackColour(), lit);
    Release();
    EXPECT_EQ(Clicks, 1);
}

TEST_F(ctrlButtonTest, TakesTheClickAlsoWhereItCameToLieUnderAPointerThatRests)
{
    ctrlButton* before = Button();
    MoveTo(before, 5, 5);
    delete before;
    Button();
    Press();
    Release();
    EXPECT_EQ(Clicks, 1);
}

TEST_F(ctrlButtonTest, LightsItsBorderUnderThePointer)
{
    ctrlButton* button = Button();
    EXPECT_EQ(button->BorderColour(), 0x606060);
    MoveTo(button, 5, 5);
    EXPECT_EQ(button->BorderColour(), lit);
    EXPECT_EQ(button->BackColour(), 0x606060);
    MoveTo(button, 5, 50);
    EXPECT_EQ(button->BorderColour(), 0x606060);
}

TEST_F(ctrlButtonTest, TheFaceIsTheThemesUnlessItWasGiven)
{
    ctrlButton* button = Button();
    button->SetBackColour(colourDefault);
    EXPECT_EQ(button->BackColour(), theme::Face);
    Main->SetBackColour(0x102030);
    button->SetBackColour(colourParent);
    EXPECT_EQ(button->BackColour(), 0x102030);
    button->Enable(false);
    EXPECT_EQ(button->BackColour(), ColourScale(0x102030, 6, 7));
}

TEST_F(ctrlButtonTest, ACheckedRadioIgnoresThePointer)
{
    ctrlButton* button = Button(buttonKind::Radio);
    Click(button, 5, 5);
    EXPECT_TRUE(button->Checked());
    EXPECT_EQ(Clicks, 1);
    MoveTo(button, 6, 5);
    EXPECT_EQ(button->BorderColour(), lit) << "checked, and not hot";
    Press();
    Release();
    EXPECT_EQ(Clicks, 1);
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);
}

TEST_F(ctrlButtonTest, CheckingOneOfARingUnchecksTheOthers)
{
    ctrlButton* radio = Button(buttonKind::Radio, 10);
    ctrlButton* other = Button(buttonKind::Radio, 80);
    ctrlButton* toggle = Button(buttonKind::Toggle, 150);
    Ring({radio, other, toggle});
    int others = 0;
    int toggles = 0;
    other->OnClick = Count(others);
    toggle->OnClick = Count(toggles);
    other->Checked(true);
    toggle->Checked(true);
    EXPECT_FALSE(other->Checked());
    EXPECT_EQ(others, 0) << "a radio button gets no click";
    Click(radio, 5, 5);
    EXPECT_TRUE(radio->Checked());
    EXPECT_FALSE(toggle->Checked());
    EXPECT_EQ(toggles, 1);
    EXPECT_EQ(Clicks, 1);
}

TEST_F(ctrlButtonTest, AButtonThatGoesLeavesItsRing)
{
    ctrlButton* first = Button(buttonKind::Radio, 10);
    ctrlButton* second = Button(buttonKind::Radio, 80);
    ctrlButton* third = Button(buttonKind::Radio, 150);
    Ring({first, second, third});
    second->Destroy();
    EXPECT_EQ(first->NextInGroup, third);
    EXPECT_EQ(third->NextInGroup, first);
    third->Destroy();
    EXPECT_EQ(first->NextInGroup, nullptr);
    first->Checked(true);
    EXPECT_TRUE(first->Checked());
}

TEST_F(ctrlButtonTest, AHandlerMayDestroyAnyButtonOfTheRing)
{
    ctrlButton* radio = Button(buttonKind::Radio, 10);
    ctrlButton* toggle = Button(buttonKind::Toggle, 80);
    Ring({radio, toggle});
    toggle->Checked(true);
    toggle->OnClick = [&] { radio->Destroy(); };
    const ctrlLife life(radio);
    Click(radio, 5, 5);
    EXPECT_FALSE(life);
    EXPECT_EQ(Clicks, 0);
    EXPECT_EQ(toggle->NextInGroup, nullptr);
}

TEST_F(ctrlButtonTest, AToggleFlipsAtEachClick)
{
    ctrlButton* button = Button(buttonKind::Toggle);
    Click(button, 5, 5);
    EXPECT_TRUE(button->Checked());
    Click(button, 6, 5);
    EXPECT_FALSE(button->Checked());
    EXPECT_EQ(Clicks, 2);
    MoveTo(button, 5, 5);
    Press();
    MoveTo(button, 5, 50);
    Release();
    EXPECT_FALSE(button->Checked());
    EXPECT_EQ(Clicks, 2);
}

TEST_F(ctrlButtonTest, ACheckedToggleThatIsHeldStaysSoWhenThePointerLeavesIt)
{
    for (const auto& [kind, released] :
         {std::pair{buttonKind::Toggle, true}, {buttonKind::ToggleHeld, false}}) {
        ctrlButton* button = Button(kind);
        button->Checked(true);
        MoveTo(button, 5, 5);
        Press();
        EXPECT_EQ(button->BackColour(), 0x606060) << "pressed and checked";
        MoveTo(button, 5, 50);
        MoveTo(button, 5, 5);
        Release();
        EXPECT_FALSE(button->Checked()) << "it was pressed again on the way back";
        EXPECT_EQ(Clicks, 1);
        Clicks = 0;
        button->Checked(true);
        MoveTo(button, 6, 5);
        Press();
        MoveTo(button, 5, 50);
        Release();
        MoveTo(button, 5, 5);
        EXPECT_EQ(button->BackColour(), released ? lit : 0x606060);
        button->Destroy();
        MoveTo(Main, 200, 200);
    }
}

TEST_F(ctrlButtonTest, APlainButtonCannotBeChecked)
{
    ctrlButton* button = Button(buttonKind::Push);
    button->Checked(true);
    EXPECT_FALSE(button->Checked());
    button->Kind(buttonKind::Repeat);
    button->Checked(true);
    EXPECT_FALSE(button->Checked());
}

TEST_F(ctrlButtonTest, ARepeatingButtonClicksUntilItIsReleased)
{
    ctrlButton* button = Button(buttonKind::Repeat);
    button->FirstDelay = 60'000;
    button->RepeatPeriod = 50'000;
    MoveTo(button, 5, 5);
    Press();
    EXPECT_EQ(Clicks, 1) << "at the press";
    EXPECT_EQ(Toolkit().Timer.Period, 60'000U);
    EXPECT_TRUE(Tick([this] { return Clicks >= 3; }));
    EXPECT_EQ(Toolkit().Timer.Period, 50'000U);
    Release();
    const int before = Clicks;
    Toolkit().Timer.Signal();
    letOthersRun();
    Toolkit().PumpPending();
    EXPECT_EQ(Clicks, before);
}

TEST_F(ctrlButtonTest, DisablingAHeldButtonStopsTheRepeatAtTheNextPaint)
{
    ctrlButton* button = Button(buttonKind::Repeat);
    button->FirstDelay = 60'000;
    MoveTo(button, 5, 5);
    Press();
    button->Enable(false);
    Toolkit().PumpPending();
    const int before = Clicks;
    Toolkit().Timer.Signal();
    letOthersRun();
    Toolkit().PumpPending();
    EXPECT_EQ(Clicks, before);
    EXPECT_EQ(button->BackColour(), ColourScale(0x606060, 6, 7));
}

TEST_F(ctrlButtonTest, HidingWhatAHeldButtonStandsOnStopsTheRepeat)
{
    auto* panel = Placed(new ctrlWindow(Main, 0), 0, 0, 100, 100);
    auto* button = new ctrlButton(panel, "Go", 0);
    button->Kind(buttonKind::Repeat);
    button->FirstDelay = 60'000;
    button->RepeatPeriod = 60'000;
    button->OnClick = [this] { ++Clicks; };
    Placed(button, 10, 10, 60, 20);
    MoveTo(button, 5, 5);
    Press();
    panel->Hide();
    const int before = Clicks;
    EXPECT_TRUE(Tick([button] { return !button->HasState(stateButtonPressed); }));
    EXPECT_EQ(Clicks, before);
    Release();
    panel->Show();
    Click(button, 5, 5);
    EXPECT_GT(Clicks, before) << "it can be pressed again";
}

TEST_F(ctrlButtonTest, ARepeatWithoutAHandlerStartsNoTimer)
{
    ctrlButton* button = Button(buttonKind::Repeat);
    int lost = 0;
    Toolkit().TimerTake(
        60'000, [] {}, Count(lost));
    button->OnClick = nullptr;
    Click(button, 5, 5);
    EXPECT_EQ(lost, 0);
    Toolkit().TimerStop();
    EXPECT_EQ(lost, 1);
}

TEST_F(ctrlButtonTest, TheHandlerMayDestroyTheButton)
{
    for (const auto kind : {buttonKind::Push, buttonKind::Repeat, buttonKind::Radio, buttonKind::Toggle}) {
        ctrlButton* button = Button(kind);
        const ctrlLife life(button);
        button->OnClick = [button] { button->Destroy(); };
        MoveTo(Main, 200, 200);
        Click(button, 5, 5);
        EXPECT_FALSE(life) << static_cast<int>(kind);
    }
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);
}

TEST_F(ctrlButtonTest, DestroyingAButtonThatIsHeldStopsItsTimer)
{
    ctrlButton* button = Button(buttonKind::Repeat);
    button->FirstDelay = 60'000;
    MoveTo(button, 5, 5);
    Press();
    button->Destroy();
    const int before = Clicks;
    Toolkit().Timer.Signal();
    letOthersRun();
    Toolkit().PumpPending();
    EXPECT_EQ(Clicks, before);
}

TEST_F(ctrlButtonTest, TheHandlerIsNotEnteredFromItself)
{
    ctrlButton* button = Button();
    int depth = 0;
    button->OnClick = [&] {
        ++depth;
        button->Click();
    };
    button->Click();
    EXPECT_EQ(depth, 1);
    button->Click();
    EXPECT_EQ(depth, 2);
}

TEST_F(ctrlButtonTest, MeasuresItsText)
{
    auto* button = new ctrlButton(Main, "Four", ctrlMeasure);
    Placed(button, 0, 0, 100, 30);
    EXPECT_EQ(button->PreferredWidth(), 22U + 2U);
    EXPECT_EQ(button->PreferredHeight(), 17U + 2U);
    button->Glyph(buttonGlyph::Up);
    Toolkit().PumpPending();
    EXPECT_EQ(button->PreferredWidth(), 0U);
}

TEST_F(ctrlButtonTest, AQuestionMarkFitsItsButtonAtEveryScale)
{
    fakeScreenDPI(192);
    auto* form = new ctrlWindow(nullptr, 0, 0, 100, 100, ctrlPerMonitor);
    auto* button = new ctrlButton(form, buttonGlyph::Question, 0);
    button->Move(0, 0, 40, 40);
    button->Show();
    form->Show();
    const std::vector<std::string> texts = Drawn({"text"});
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_THAT(texts[0], HasSubstr("size 30.4")) << "of 38";
}

TEST_F(ctrlButtonTest, DrawsEachGlyphInItsColour)
{
    const std::pair<buttonGlyph, std::vector<std::string>> rows[] = {
        {buttonGlyph::Up, {"line 2 5,15 10,5 0000FF/1 width 2", "line 2 10,5 15,15 0000FF/1 width 2"}},
        {buttonGlyph::Down, {"line 2 5,5 10,15 0000FF/1 width 2", "line 2 10,15 15,5 0000FF/1 width 2"}},
        {buttonGlyph::Left, {"line 2 15,5 5,10 0000FF/1 width 2", "line 2 5,10 15,15 0000FF/1 width 2"}},
        {buttonGlyph::Right, {"line 2 5,5 15,10 0000FF/1 width 2", "line 2 15,10 5,15 0000FF/1 width 2"}},
        {buttonGlyph::Cross, {"line 2 4,4 16,16 0000FF/1 width 2", "line 2 4,16 16,4 0000FF/1 width 2"}},
    };
    auto* button = new ctrlButton(Main, buttonGlyph::Up, 0);
    button->BorderStyle(ctrlBorder::None);
    button->GlyphColour(0xFF0000);
    Placed(button, 0, 0, 20, 20);
    for (const auto& [glyph, lines] : rows) {
        button->Glyph(glyph);
        button->Invalidate(true);
        EXPECT_EQ(Drawn({"line"}), lines) << static_cast<int>(glyph);
    }
    button->Glyph(buttonGlyph::Question);
    EXPECT_THAT(Drawn({"text"}),
                Contains(AllOf(HasSubstr("\"?\""), HasSubstr("size 16"), HasSubstr("bold"))));
    button->Enable(false);
    button->Glyph(buttonGlyph::Up);
    const auto disabled = Drawn({"line"});
    ASSERT_EQ(disabled.size(), 2U);
    EXPECT_THAT(disabled[0], Not(HasSubstr("0000FF")));
}

TEST_F(ctrlButtonTest, AnEmptyTextIsNotDrawn)
{
    auto* button = new ctrlButton(Main, "", ctrlMeasure);
    Placed(button, 0, 0, 40, 20);
    EXPECT_EQ(fakeDrawCount("text"), 0U);
    EXPECT_EQ(button->PreferredWidth(), 0U);
}

}  // namespace
