#include "tests/toolkit/inputTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ctrlWindowFocusTest : public inputTest
{
};

// --- Focus

TEST_F(ctrlWindowFocusTest, APressMovesTheFocus)
{
    Upper->StyleSet(styleFocusable);
    fakeMouseClick(115, 116);
    EXPECT_THAT(Heard(), ElementsAre("upper move 5,6", "main blur", "upper focus", "upper left 5,6 keys 1",
                                     "upper leftup 5,6"));
    EXPECT_EQ(Toolkit().Focused, Upper);
    fakeMouseClick(116, 116, fakeButton::Right);
    EXPECT_THAT(Heard(), ElementsAre("upper move 6,6", "upper right 6,6 keys 2", "upper rightup 6,6"))
        << "it has it already";
    fakeMouseClick(160, 116, fakeButton::Middle);
    EXPECT_THAT(Heard(), ElementsAre("panel move 50,6", "upper blur", "main focus",
                                     "panel middle 50,6 keys 16", "panel middleup 50,6"))
        << "who cannot have it passes it to the window";
}

TEST_F(ctrlWindowFocusTest, APressInAnotherWindowBringsItUp)
{
    auto* other = new listener(Told, "other", nullptr, 400, 100, 100, 100);
    auto* field = new listener(Told, "field", other, 0, 0, 50, 50);
    field->StyleSet(styleFocusable);
    field->Show();
    other->Show();
    Upper->StyleSet(styleFocusable);
    Upper->Focus();
    Heard();
    ASSERT_EQ(Toolkit().Windows().Focus(), Main->Handle());
    field->Focus();
    EXPECT_EQ(Toolkit().Windows().Focus(), other->Handle());
    EXPECT_EQ(Toolkit().Focused, field);
    EXPECT_THAT(Heard(), ElementsAre("upper blur", "main inactive", "other active", "field focus"));
    EXPECT_EQ(fakeWindows().back(), other->Handle());
}

TEST_F(ctrlWindowFocusTest, FocusThatLeavesTheProgramAndComesBackGoesToTheWindow)
{
    Upper->StyleSet(styleFocusable);
    Upper->Focus();
    Heard();
    fakeUserLeaves();
    EXPECT_THAT(Heard(), ElementsAre("main inactive", "upper blur"));
    EXPECT_FALSE(Main->IsActive());
    EXPECT_EQ(Toolkit().Focused, nullptr);
    fakeUserActivates(Main->Handle());
    EXPECT_THAT(Heard(), ElementsAre("main active", "main focus"));
    EXPECT_TRUE(Main->IsActive());
}

TEST_F(ctrlWindowFocusTest, WhoCannotHaveTheFocusPassesItToItsRoot)
{
    Toolkit().Focused = nullptr;
    Panel->ctrlWindow::Focused(true);
    EXPECT_EQ(Toolkit().Focused, Main);
    auto* floating = new listener(Told, "floating", Panel, 400, 400, 50, 50, ctrlFloating);
    floating->ctrlWindow::Focused(true);
    EXPECT_EQ(Toolkit().Focused, floating);
}

TEST_F(ctrlWindowFocusTest, AControlThatIsDisabledHandsItsFocusUp)
{
    auto* field = new listener(Told, "field", Panel, 60, 60, 10, 10);
    field->StyleSet(styleFocusable);
    field->Show();
    for (ctrlWindow* disabled : {static_cast<ctrlWindow*>(field), static_cast<ctrlWindow*>(Panel)}) {
        field->Enable(true);
        field->Focus();
        ASSERT_EQ(Toolkit().Focused, field);
        disabled->Enable(false);
        EXPECT_EQ(Toolkit().Focused, Main);
        disabled->Enable(true);
    }
}

TEST_F(ctrlWindowFocusTest, HidingTakesTheFocusAway)
{
    Upper->StyleSet(styleFocusable);
    for (ctrlWindow* hidden : {Upper, Panel}) {
        Upper->Show();
        Upper->Focus();
        ASSERT_EQ(Toolkit().Focused, Upper);
        Heard();
        hidden->Hide();
        EXPECT_EQ(Toolkit().Focused, nullptr);
        fakeKeyDown('A');
        const std::vector<std::string> heard = Heard();
        EXPECT_EQ(heard.front(), "upper blur");
        EXPECT_EQ(heard.back(), "main down 65") << "keys go to the window";
    }
}

// --- Keys

TEST_F(ctrlWindowFocusTest, KeysGoToTheFocusedControlAndThenToTheWindow)
{
    Upper->StyleSet(styleFocusable);
    Upper->Focus();
    Heard();
    fakeKeyPress('A', "a");
    EXPECT_THAT(Heard(), ElementsAre("upper down 65", "main down 65", "upper char 97", "main char 97",
                                     "upper up 65", "main up 65"));
    EXPECT_EQ(fakeCallCount("windowDefault 1 256"), 1U);
    EXPECT_EQ(fakeCallCount("windowDefault 1 258"), 1U);
    Upper->Takes = true;
    fakeClearCalls();
    fakeKeyPress('A', "a");
    EXPECT_THAT(Heard(), ElementsAre("upper down 65", "upper char 97", "upper up 65"));
    EXPECT_EQ(fakeCallCount("windowDefault"), 0U);
}

TEST_F(ctrlWindowFocusTest, AWindowThatHasTheFocusItselfHearsAKeyOnce)
{
    fakeKeyDown('A');
    EXPECT_THAT(Heard(), ElementsAre("main down 65"));
}

TEST_F(ctrlWindowFocusTest, CharactersInTwoHalvesAreDropped)
{
    fakeType("\xF0\x9F\x98\x80"
             "b");
    std::vector<std::string> heard = Heard();
    std::erase_if(heard, [](const std::string& line) { return line.find("char") == std::string::npos; });
    EXPECT_THAT(heard, ElementsAre("main char 98"));
    EXPECT_EQ(Toolkit().HighSurrogate, 0xD83DU);
    fakeClearCalls();
    for (const uint32_t unit : {0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU})
        fakeChar(unit);
    EXPECT_THAT(Heard(), IsEmpty());
    EXPECT_EQ(Toolkit().HighSurrogate, 0xDBFFU);
    EXPECT_EQ(fakeCallCount("windowDefault 1 258"), 2U) << "the second halves are left to the system";
    fakeChar(0xD7FF);
    fakeChar(0xE000);
    EXPECT_THAT(Heard(), ElementsAre("main char 55295", "main char 57344"));
}

// --- Tab

struct tabRow {
    std::vector<uint32_t> Orders;  // of the siblings, in their list
    size_t From;
    size_t To;
};

TEST_F(ctrlWindowFocusTest, TabGoesToTheNextOrderAndAroundToTheSmallest)
{
    const tabRow rows[] = {
        {{1, 2, 3}, 0, 1}, {{1, 2, 3}, 2, 0}, {{3, 1, 7}, 0, 2}, {{3, 1, 7}, 2, 1}, {{5, 0, 5}, 0, 0},
        {{5, 0, 6}, 2, 0}, {{2, 2, 9}, 0, 2}, {{0, 4, 2}, 0, 2}, {{8, 0, 0}, 0, 0},
    };
    for (const tabRow& row : rows) {
        auto* box = new listener(Told, "box", Main, 0, 0, 10, 10);
        box->Show();
        std::vector<listener*> stops;
        for (const uint32_t order : row.Orders) {
            stops.push_back(new listener(Told, "stop", box, 0, 0, 5, 5));
            stops.back()->StyleSet(styleFocusable);
            stops.back()->TabOrder(order);
            stops.back()->Show();
        }
        stops[row.From]->Focus();
        fakeKeyPress(keyTab);
        Heard();
        EXPECT_EQ(Toolkit().Focused, stops[row.To]) << testing::PrintToString(row.Orders) << row.From;
        box->Destroy();
    }
}

TEST_F(ctrlWindowFocusTest, ANoticeThatIsTakenStopsTheTab)
{
    Upper->StyleSet(styleFocusable);
    Lower->StyleSet(styleFocusable);
    Upper->TabOrder(1);
    Lower->TabOrder(2);
    Upper->Focus();
    unsigned told = 99;
    Upper->OnNotify = [&told](unsigned code) {
        told = code;
        return true;
    };
    fakeKeyPress(keyTab);
    Heard();
    EXPECT_EQ(told, notifyTab);
    EXPECT_EQ(Toolkit().Focused, Upper);
    Upper->OnNotify = nullptr;
    fakeKeyPress(keyTab);
    Heard();
    EXPECT_EQ(Toolkit().Focused, Lower);
}

TEST_F(ctrlWindowFocusTest, AFloatingWindowHasNoTab)
{
    auto* floating = new listener(Told, "floating", Main, 400, 400, 50, 50, ctrlFloating);
    Panel->TabOrder(1);
    Panel->StyleSet(styleFocusable);
    floating->Show();
    floating->Focus();
    floating->TabNext();
    Main->TabNext();
    EXPECT_EQ(Toolkit().Focused, floating);
}

}  // namespace
