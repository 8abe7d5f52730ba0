// Who owns a message box, and what becomes of it when its owner goes.
#include "tests/forms/messageTest.h"

using testing::ElementsAre;

namespace {

class uiMessageOwnerTest : public messageTest
{
};

TEST_F(uiMessageOwnerTest, NeedsNoParent)
{
    WhileOpen([] {
        EXPECT_EQ(Box()->Parent(), nullptr);
        Click(Row().at(1));
    });
    EXPECT_EQ(uiMessage::Execute<ctrlForm>(nullptr, "Title", "Text", {Buttons::Yes, Buttons::No}),
              Buttons::No);
}

TEST_F(uiMessageOwnerTest, IsTheFirstWindowWhereThereIsNone)
{
    delete Main;
    AnswerWith(0);
    EXPECT_EQ(uiMessage::Execute<ctrlForm>(nullptr, "Title", "Text"), Buttons::OK);
    EXPECT_FALSE(Toolkit().HasWindows());
}

TEST_F(uiMessageOwnerTest, RestoresAnOwnerThatIsMinimised)
{
    fakeUserMinimises(Main->Handle());
    Toolkit().PumpPending();
    ASSERT_TRUE(fakeWindowOf(Main->Handle())->Minimised);
    Look("Text", {}, [this] { EXPECT_FALSE(fakeWindowOf(Main->Handle())->Minimised); });
}

TEST_F(uiMessageOwnerTest, ShowsAnOwnerThatIsHidden)
{
    Main->Hide();
    Look("Text", {}, [this] { EXPECT_TRUE(fakeWindowOf(Main->Handle())->Visible); });
    EXPECT_TRUE(Main->IsVisible()) << "and leaves it there";
}

TEST_F(uiMessageOwnerTest, ShowsTheTopmostOwnerAloneWhenAllAreHidden)
{
    auto* tool = new ctrlForm(Main, 0, 0, 50, 50, ctrlFloating);
    Main->Hide();
    WhileOpen([&] {
        EXPECT_TRUE(Main->IsVisible());
        EXPECT_FALSE(tool->IsVisible());
        Click(Row().at(0));
    });
    EXPECT_EQ(uiMessage::Execute(tool, "Title", "Text"), Buttons::OK);
}

TEST_F(uiMessageOwnerTest, LeavesAHiddenOwnerAloneWhenOneAboveItIsSeen)
{
    auto* tool = new ctrlForm(Main, 0, 0, 50, 50, ctrlFloating);
    WhileOpen([&] {
        EXPECT_FALSE(tool->IsVisible());
        Click(Row().at(0));
    });
    EXPECT_EQ(uiMessage::Execute(tool, "Title", "Text"), Buttons::OK);
}

TEST_F(uiMessageOwnerTest, GivesTheFocusBackToItsOwner)
{
    auto* field = new ctrlWindow(Main, 10, 10, 50, 20, 0);
    field->StyleSet(styleFocusable);
    field->Show();
    field->Focus();
    WhileOpen([&] {
        EXPECT_FALSE(field->HasFocus());
        Click(Row().at(0));
    });
    EXPECT_EQ(uiMessage::Execute(field, "Title", "Text"), Buttons::OK);
    Toolkit().PumpPending();
    EXPECT_TRUE(field->HasFocus());
}

TEST_F(uiMessageOwnerTest, AnOwnerThatIsDestroyedMeanwhileEndsItWithNone)
{
    const ctrlLife life(Main);
    WhileOpen([this] { Main->Destroy(); });
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text", {Buttons::Yes}), Buttons::None);
    Toolkit().PumpPending();
    EXPECT_FALSE(life);
    EXPECT_FALSE(Toolkit().HasWindows());
}

TEST_F(uiMessageOwnerTest, AnOwningControlThatIsDestroyedMeanwhileEndsItWithNone)
{
    auto* panel = new ctrlWindow(Main, 0, 0, 50, 50, 0);
    panel->Show();
    const ctrlLife life(panel);
    WhileOpen([panel] { panel->Destroy(); });
    EXPECT_EQ(uiMessage::Execute(panel, "Title", "Text", {Buttons::Yes}), Buttons::None);
    Toolkit().PumpPending();
    EXPECT_FALSE(life);
    EXPECT_TRUE(Toolkit().HasWindows());
}

TEST_F(uiMessageOwnerTest, AnOwnerThatIsClosingIsNeitherRestoredNorFocused)
{
    new ctrlForm(nullptr, 0);
    fakeUserMinimises(Main->Handle());
    Toolkit().PumpPending();
    const ctrlLife life(Main);
    Main->Destroy();
    WhileOpen([this, &life] {
        ASSERT_TRUE(life) << "it waits for the answer";
        EXPECT_TRUE(fakeWindowOf(Main->Handle())->Minimised);
        Click(Row().at(0));
    });
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text"), Buttons::OK);
    Toolkit().PumpPending();
    EXPECT_FALSE(life);
}

TEST_F(uiMessageOwnerTest, ABoxThatTheSystemRefusesGivesNone)
{
    fakeFail("windowCreate");
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text"), Buttons::None);
    EXPECT_EQ(Toolkit().WindowList().size(), 1U);
    EXPECT_TRUE(Main->IsEnabled());
}

TEST_F(uiMessageOwnerTest, TheEndOfTheProgramGivesNone)
{
    WhileOpen([] { fakeProgramEnds(); });
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text"), Buttons::None);
}

TEST_F(uiMessageOwnerTest, ABoxMayOpenAboveAnother)
{
    std::vector<Buttons> answers;
    const auto inner = [&] {
        const ctrlWindow* outer = Box();
        WhileOpen([outer] {
            EXPECT_FALSE(outer->IsEnabled());
            Click(Row().at(1));
        });
        answers.push_back(uiMessage::Execute(Main, "Inner", "Text", {Buttons::Yes, Buttons::No}));
        EXPECT_TRUE(outer->IsEnabled());
        EXPECT_FALSE(Main->IsEnabled());
        AnswerWith(0);
    };
    WhileOpen([&inner] { Toolkit().Post(inner, true); });
    answers.push_back(uiMessage::Execute(Main, "Outer", "Text", {Buttons::Retry}));
    EXPECT_THAT(answers, ElementsAre(Buttons::No, Buttons::Retry));
    Toolkit().PumpPending();
    EXPECT_TRUE(Main->IsEnabled());
}

TEST_F(uiMessageOwnerTest, AnOwnerOfSeveralThatIsDestroyedEndsThemAll)
{
    std::vector<Buttons> answers;
    const auto inner = [&] {
        WhileOpen([this] { Main->Destroy(); });
        answers.push_back(uiMessage::Execute(Main, "Inner", "Text"));
    };
    WhileOpen([&inner] { Toolkit().Post(inner, true); });
    answers.push_back(uiMessage::Execute(Main, "Outer", "Text"));
    EXPECT_THAT(answers, ElementsAre(Buttons::None, Buttons::None));
    Toolkit().PumpPending();
    EXPECT_FALSE(Toolkit().HasWindows());
}

}  // namespace
