#include "tests/forms/messageTest.h"

using testing::ElementsAre;

namespace {

const std::vector<uiMessage::Buttons> All = {uiMessage::Buttons::OK,    uiMessage::Buttons::Yes,
                                             uiMessage::Buttons::No,    uiMessage::Buttons::Cancel,
                                             uiMessage::Buttons::Abort, uiMessage::Buttons::Retry,
                                             uiMessage::Buttons::Ignore};

class uiMessageTest : public messageTest
{
};

TEST_F(uiMessageTest, GivesTheButtonThatWasPressed)
{
    for (size_t index = 0; index < All.size(); ++index) {
        AnswerWith(index);
        EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text", All), All[index]) << index;
        EXPECT_EQ(Toolkit().WindowList().size(), 1U) << "the box is gone";
    }
}

TEST_F(uiMessageTest, GivesTheButtonByItsPlaceInTheList)
{
    AnswerWith(1);
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text", {Buttons::Retry, Buttons::No}), Buttons::No);
    AnswerWith(1);
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text", {Buttons::Yes, Buttons::Yes}), Buttons::Yes);
}

TEST_F(uiMessageTest, ABoxAskedForWithoutButtonsHasOK)
{
    Look("Text", {}, [] { EXPECT_THAT(Labels(), ElementsAre("OK")); });
    AnswerWith(0);
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text"), Buttons::OK);
}

TEST_F(uiMessageTest, WhatIsNoButtonIsLeftOut)
{
    const auto unknown = static_cast<Buttons>(200);
    WhileOpen([] {
        EXPECT_THAT(Labels(), ElementsAre("Yes"));
        Click(Row().at(0));
    });
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text", {Buttons::None, Buttons::Yes, unknown}),
              Buttons::Yes);
    Look("Text", {Buttons::None}, [] { EXPECT_THAT(Labels(), ElementsAre("OK")); });
}

TEST_F(uiMessageTest, ClosingTheFrameGivesNone)
{
    WhileOpen([] { fakeUserCloses(Box()->Handle()); });
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text", {Buttons::Yes, Buttons::No}), Buttons::None);
    EXPECT_EQ(Toolkit().WindowList().size(), 1U);
}

TEST_F(uiMessageTest, AReleaseBesideTheButtonIsNoAnswer)
{
    WhileOpen([] {
        const ctrlWindow* button = Row().at(0);
        fakeMouseMove(Box()->X() + button->X() + 5, Box()->Y() + button->Y() + 5);
        fakeMousePress();
        fakeMouseMove(Box()->X() + 1, Box()->Y() + 1);
        fakeMouseRelease();
        fakeUserCloses(Box()->Handle());
    });
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text"), Buttons::None);
}

TEST_F(uiMessageTest, KeysAreNoAnswer)
{
    WhileOpen([] {
        for (const uint32_t key : {keyTab, keyEscape, keyEnter})
            fakeKeyPress(key, std::string(1, static_cast<char>(key)));
        fakeType(" yn");
        fakeUserCloses(Box()->Handle());
    });
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text"), Buttons::None);
}

TEST_F(uiMessageTest, CannotBeMinimisedNorMaximised)
{
    Look("Text", {}, [] {
        const uint32_t style = fakeWindowOf(Box()->Handle())->Style;
        EXPECT_EQ(style & (styleMaximiseBox | styleMinimiseBox | styleResizable), 0U);
        EXPECT_NE(style & styleSystemMenu, 0U);
        EXPECT_EQ(fakeWindowOf(Box()->Handle())->Title, "Title");
    });
}

TEST_F(uiMessageTest, DrawsItsTextInTheColourOfLabels)
{
    Look("Some text", {}, [] {
        Box()->Invalidate(true);
        EXPECT_THAT(Drawn({"text"}),
                    ElementsAre(testing::AllOf(testing::HasSubstr(" \"Some text\" at 8,8 in "),
                                               testing::HasSubstr("x17 left top FFC000/1 size 11"))));
    });
}

TEST_F(uiMessageTest, DisablesTheOthersAsLongAsItIsOpen)
{
    Look("Text", {}, [this] { EXPECT_FALSE(Main->IsEnabled()); });
    Toolkit().PumpPending();
    EXPECT_TRUE(Main->IsEnabled());
    EXPECT_TRUE(fakeWindowOf(Main->Handle())->Enabled);
}

TEST_F(uiMessageTest, TakesTheIconOfAForm)
{
    windowSystem& system = Toolkit().Windows();
    const iconId icon = system.MakeIcon({2, 2, {1, 2, 3, 4}});
    Main->Icon(icon);
    Look("Text", {}, [icon] { EXPECT_EQ(Box()->WindowProc(msgGetIcon, 1, 0), static_cast<int64_t>(icon)); });
    WhileOpen([icon] {
        EXPECT_NE(Box()->WindowProc(msgGetIcon, 1, 0), static_cast<int64_t>(icon));
        Click(Row().at(0));
    });
    uiMessage::Execute(static_cast<ctrlWindow*>(Main), "Title", "Text");
    Main->Icon(0);
    system.DestroyIcon(icon);
}

}  // namespace
