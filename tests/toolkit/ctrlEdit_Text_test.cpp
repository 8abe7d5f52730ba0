#include "tests/toolkit/editTest.h"

#include "foundations/text/utfEdit.h"
#include "tests/await.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class ctrlEdit_TextTest : public editTest
{
protected:
    // Characters are 5.5 pixels wide; the text has the pixels from 2 to 97.
    ctrlEdit_Text* Field(const std::string& text)
    {
        auto* field = new ctrlEdit_Text(Main, 0, 0, 100, 20, 0);
        field->EditText(text);
        return Placed(field);
    }
    static void ExpectMarks(const ctrlEdit_Base& edit, uint64_t start, uint64_t end, uint64_t caret)
    {
        EXPECT_EQ(edit.SelectionStart(), start);
        EXPECT_EQ(edit.SelectionEnd(), end);
        EXPECT_EQ(edit.Caret(), caret);
    }
};

TEST_F(ctrlEdit_TextTest, TheFirstClickSelectsAllAndTheSecondPlacesTheCaret)
{
    ctrlEdit_Text* field = Field("abcdef");
    Click(20);
    EXPECT_TRUE(field->HasFocus());
    ExpectMarks(*field, 0, 6, 6);
    Click(20);
    ExpectMarks(*field, 3, 3, 3);
}

struct clickRow {
    int32_t X;
    uint64_t Caret;
};

// The ends of the characters are at 2, 8, 13, 19, 24, 30 and 35.
TEST_F(ctrlEdit_TextTest, AClickPlacesTheCaretAtTheNearerEndOfACharacter)
{
    ctrlEdit_Text* field = Field("abcdef");
    Click(50);
    const clickRow rows[] = {{2, 0}, {4, 0}, {5, 1}, {8, 1}, {10, 1}, {11, 2}, {27, 5}, {26, 4}, {90, 6}};
    for (const clickRow& row : rows) {
        field->SelectTo(0);
        Click(row.X);
        EXPECT_EQ(field->Caret(), row.Caret) << row.X;
    }
}

TEST_F(ctrlEdit_TextTest, ADoubleClickSelectsAll)
{
    ctrlEdit_Text* field = Field("abcdef");
    Click(20);
    Click(20);
    fakeMouseDouble();
    fakeMouseRelease();
    Toolkit().PumpPending();
    ExpectMarks(*field, 0, 6, 6);
}

TEST_F(ctrlEdit_TextTest, ADragSelectsFromWhereItWasPressed)
{
    for (const bool paintsBetween : {true, false}) {
        ctrlEdit_Text* field = Field("abcdef");
        Click(50);
        MoveTo(13);
        fakeMousePress();
        if (paintsBetween)
            Toolkit().PumpPending();
        MoveTo(30);
        ExpectMarks(*field, 2, 5, 5);
        MoveTo(-50);
        ExpectMarks(*field, 0, 2, 0);
        fakeMouseRelease();
        Toolkit().PumpPending();
        field->Destroy();
    }
}

TEST_F(ctrlEdit_TextTest, TypingReplacesAFullSelection)
{
    ctrlEdit_Text* field = Field("abcdef");
    field->Focus();
    Type("x\xC3\xA4");
    EXPECT_EQ(field->Name(), "x\xC3\xA4");
    ExpectMarks(*field, 0, 0, 2);
}

TEST_F(ctrlEdit_TextTest, TypingAtTheLongestLengthOnlyTakesTheSelectionAway)
{
    ctrlEdit_Text* field = Field("abcdef");
    field->MaxLength(4);
    EXPECT_EQ(field->Name(), "abcd");
    field->Focus();
    Press(keyEnd);
    Type("x");
    EXPECT_EQ(field->Name(), "abcd");
    With(keyShift, keyLeft);
    field->MaxLength(3);
    EXPECT_EQ(field->Name(), "abc");
    Press(keyHome);
    With(keyShift, keyRight);
    field->MaxLength(2);
    Type("xyz");
    EXPECT_EQ(field->Name(), "xb");
}

TEST_F(ctrlEdit_TextTest, ShiftWithHomeAndEndSelectsFromWhereTheSelectionBegan)
{
    ctrlEdit_Text* field = Field("abcdef");
    field->Focus();
    field->CaretMove(3);
    With(keyShift, keyHome);
    ExpectMarks(*field, 0, 3, 0);
    With(keyShift, keyEnd);
    ExpectMarks(*field, 3, 6, 6);
    With(keyShift, keyLeft);
    ExpectMarks(*field, 3, 5, 5);
    With(keyShift, keyHome);
    ExpectMarks(*field, 0, 3, 0);
    With(keyShift, keyRight);
    ExpectMarks(*field, 1, 3, 1);
    Press(keyRight);
    ExpectMarks(*field, 2, 2, 2);
}

TEST_F(ctrlEdit_TextTest, BackspaceAndDeleteTakeACharacterOrTheSelection)
{
    ctrlEdit_Text* field = Field("a\xC3\xA4"
                                 "cdef");
    field->Focus();
    field->CaretMove(2);
    Press(keyBackspace, "\b");
    EXPECT_EQ(field->Name(), "acdef");
    EXPECT_EQ(field->Caret(), 1U);
    Press(keyDelete);
    EXPECT_EQ(field->Name(), "adef");
    With(keyShift, keyEnd);
    Press(keyBackspace, "\b");
    EXPECT_EQ(field->Name(), "a");
    Press(keyDelete);
    Press(keyHome);
    Press(keyBackspace, "\b");
    EXPECT_EQ(field->Name(), "a");
}

TEST_F(ctrlEdit_TextTest, EnterCommitsAndThenTellsOfItself)
{
    ctrlEdit_Text* field = Field("abc");
    std::string order;
    field->OnChange = [&order] { order += "change "; };
    field->OnEnter = [&order] { order += "enter "; };
    field->Focus();
    Type("x");
    Press(keyEnter, "\r");
    EXPECT_EQ(order, "change enter ");
    EXPECT_FALSE(field->HasFocus());
    field->Focus();
    Press(keyEnter, "\r");
    EXPECT_EQ(order, "change enter enter ");
}

TEST_F(ctrlEdit_TextTest, EscapeGivesTheTextBack)
{
    ctrlEdit_Text* field = Field("abc");
    field->Focus();
    Type("x");
    Press(keyEscape, "\x1B");
    EXPECT_EQ(field->Name(), "abc");
    EXPECT_EQ(Changes, 0);
    EXPECT_FALSE(field->HasFocus());
}

TEST_F(ctrlEdit_TextTest, TheClipboardTakesAndGivesTheSelection)
{
    ctrlEdit_Text* field = Field("abcdef");
    field->Focus();
    field->CaretMove(1);
    field->SelectTo(3);
    With(keyControl, 'C', "\x03");
    EXPECT_EQ(fakeClipboardText(), "bc");
    With(keyControl, 'X', "\x18");
    EXPECT_EQ(field->Name(), "adef");
    With(keyControl, 'V', "\x16");
    EXPECT_EQ(field->Name(), "abcdef");
    EXPECT_EQ(field->Caret(), 3U);
    With(keyShift, keyInsert);
    EXPECT_EQ(field->Name(), "abcbcdef");
    field->CaretMove(0);
    field->SelectTo(1);
    With(keyControl, keyInsert);
    EXPECT_EQ(fakeClipboardText(), "a");
    field->SelectTo(2);
    With(keyShift, keyDelete);
    EXPECT_EQ(fakeClipboardText(), "ab");
    EXPECT_EQ(field->Name(), "cbcdef");
}

struct pasteRow {
    std::optional<std::string> Clipboard;
    std::string Text;
    uint64_t Caret;
};

TEST_F(ctrlEdit_TextTest, APasteLeavesOutWhatIsNoText)
{
    const pasteRow rows[] = {
        {"1\n2\r\n3\t", "a123b", 4},
        {"\x7F\xC2\x85.", "a.b", 2},
        {"\xC3\xA4",
         "a\xC3\xA4"
         "b",
         2},
        {"x\xFFy", "axb", 2},
        {"\xC3", "ab", 1},
        {"", "ab", 1},
        {std::nullopt, "ab", 1},
        {"1234567890", "a1234567", 8},
    };
    for (const pasteRow& row : rows) {
        ctrlEdit_Text* field = Field("ab");
        field->MaxLength(8);
        field->Focus();
        field->CaretMove(1);
        fakeClipboard(row.Clipboard);
        With(keyControl, 'V', "\x16");
        EXPECT_EQ(field->Name(), row.Text);
        EXPECT_EQ(field->Caret(), row.Caret);
        field->Destroy();
    }
}

TEST_F(ctrlEdit_TextTest, WithoutTheStyleNothingIsCopiedOrPasted)
{
    ctrlEdit_Text* field = Field("abc");
    fakeClipboard("other");
    field->EditStyleClear(styleEditCopy | styleEditPaste);
    field->Focus();
    With(keyControl, 'C', "\x03");
    With(keyControl, 'V', "\x16");
    EXPECT_EQ(fakeClipboardText(), "other");
    EXPECT_EQ(field->Name(), "abc");
}

TEST_F(ctrlEdit_TextTest, APasswordShowsStarsAndIsNeverCopied)
{
    ctrlEdit_Text* field = Field("a\xC3\xA4"
                                 "c");
    fakeClipboard("other");
    field->EditStyleSet(styleEditPassword);
    EXPECT_THAT(Drawn({"text"}), ElementsAre(HasSubstr("\"***\"")));
    field->TextFlags |= textTrim;
    field->Invalidate(true);
    EXPECT_THAT(Drawn({"text"}), ElementsAre(HasSubstr("\"***\"")));
    field->Focus();
    for (const bool isPainted : {true, false}) {
        field->EditStyleSet(styleEditCopy | styleEditPaste);
        if (isPainted)
            Toolkit().PumpPending();
        field->Copy();
        field->Paste();
        EXPECT_EQ(fakeClipboardText(), "other");
        EXPECT_EQ(utfLength(field->Name().c_str(), field->Name().size()), 3U);
    }
}

// --- On the screen

TEST_F(ctrlEdit_TextTest, ARightAlignedTextKeepsItsEdgeWithTheCaret)
{
    ctrlEdit_Text* field = Field("abcdef");
    field->TextFlags = textRight;
    field->Focus();
    Press(keyEnd);
    field->Invalidate(true);
    std::vector<std::string> drawn = Drawn({"text", "fill"});
    EXPECT_THAT(drawn, testing::Contains(HasSubstr("97,2,98,18 FFFFFF")).Times(0));
    EXPECT_EQ(drawn.back().find("FFFFFF") == std::string::npos, false);
    EXPECT_THAT(drawn.back(), HasSubstr(" 97,1,98,19 "));
    EXPECT_EQ(field->Scroll(), 0);
    Click(66);
    EXPECT_EQ(field->Caret(), 0U);
    Click(93);
    EXPECT_EQ(field->Caret(), 5U);
}

TEST_F(ctrlEdit_TextTest, ALongTextIsScrolledToTheCaretUntilTheFocusGoes)
{
    ctrlEdit_Text* field = Field(std::string(40, 'm'));
    field->Focus();
    Toolkit().PumpPending();
    EXPECT_EQ(field->Scroll(), 2 + 220 - 98 + 1);
    Press(keyHome);
    EXPECT_EQ(field->Scroll(), 0);
    Press(keyEnd);
    Press(keyLeft);
    EXPECT_EQ(field->Scroll(), 2 + 220 - 98 + 1) << "the caret is inside yet";
    Main->Focus();
    EXPECT_EQ(field->Scroll(), 0);
}

TEST_F(ctrlEdit_TextTest, TheSelectionIsDrawnOverTheText)
{
    ctrlEdit_Text* field = Field("abcdef");
    field->Focus();
    field->CaretMove(1);
    field->SelectTo(3);
    const std::vector<std::string> drawn = Drawn({"text", "fill"});
    ASSERT_GE(drawn.size(), 4U);
    EXPECT_THAT(std::vector<std::string>(drawn.end() - 4, drawn.end()),
                ElementsAre(HasSubstr("\"abcdef\" at 2,1 in 96x18 left"), HasSubstr(" 8,1,19,19 604800/1"),
                            HasSubstr("\"bc\" at 8,1"), HasSubstr(" 19,1,20,19 FFFFFF/1")));
}

TEST_F(ctrlEdit_TextTest, WithoutTheFocusATextMayBeTrimmed)
{
    ctrlEdit_Text* field = Field("abcdef");
    field->TextFlags = textRight | textTrim;
    field->Invalidate(true);
    EXPECT_THAT(Drawn({"text"}), ElementsAre(testing::AllOf(HasSubstr("right"), HasSubstr("trim"))));
    field->Focus();
    EXPECT_THAT(Drawn({"text"}), testing::Each(testing::Not(HasSubstr("trim"))));
}

// --- The caret's blinking

TEST_F(ctrlEdit_TextTest, TheCaretBlinksWhileItHasTheFocus)
{
    ctrlEdit_Text* field = Field("abc");
    field->Focus();
    EXPECT_TRUE(field->HasState(stateEditCaret));
    EXPECT_EQ(Toolkit().Timer.Period, 500U);
    for (const bool isOn : {false, true}) {
        Toolkit().Timer.Signal();
        EXPECT_TRUE(await([field, isOn] {
            Toolkit().PumpPending();
            return field->HasState(stateEditCaret) == isOn;
        }));
    }
    Main->Focus();
    EXPECT_FALSE(field->HasState(stateEditCaret));
}

TEST_F(ctrlEdit_TextTest, WhoLosesTheTimerKeepsTheCaretAndLeavesTheTimerToTheOther)
{
    ctrlEdit_Text* field = Field("abc");
    field->Focus();
    Toolkit().Timer.Signal();
    EXPECT_TRUE(await([field] {
        Toolkit().PumpPending();
        return !field->HasState(stateEditCaret);
    }));
    bool isLost = false;
    Toolkit().TimerTake(
        1000, [] {}, [&isLost] { isLost = true; });
    EXPECT_TRUE(field->HasState(stateEditCaret));
    Main->Focus();
    EXPECT_FALSE(isLost);
    Toolkit().TimerStop();
}

// --- Ends

TEST_F(ctrlEdit_TextTest, AnEditMayGoInItsOwnHandlers)
{
    for (const uint32_t flags : {0U, uint32_t{ctrlEditInner}}) {
        for (const auto handler : {&ctrlEdit_Text::OnChange, &ctrlEdit_Text::OnEnter}) {
            auto* field = Placed(new ctrlEdit_Text(Main, 0, 0, 100, 20, flags));
            const ctrlLife life(field);
            field->*handler = [field] { field->Destroy(); };
            field->Focus();
            Type("x");
            Press(keyEnter, "\r");
            EXPECT_FALSE(life);
        }
    }
}

TEST_F(ctrlEdit_TextTest, AnEditMayGoByTheFocusThatItPassesOn)
{
    class taker : public ctrlWindow
    {
    public:
        using ctrlWindow::ctrlWindow;
        void Focused(bool on) override
        {
            ctrlWindow::Focused(on);
            if (on && FirstChild())
                FirstChild()->Destroy();
        }
    };
    for (const uint32_t key : {uint32_t{keyEnter}, uint32_t{keyEscape}}) {
        auto* parent = new taker(Main, 0, 0, 300, 100, 0);
        parent->StyleSet(styleFocusable);
        parent->Show();
        auto* field = new ctrlEdit_Text(parent, 10, 10, 100, 20, 0);
        field->Show();
        const ctrlLife life(field);
        field->Focus();
        Press(key);
        EXPECT_FALSE(life);
        parent->Destroy();
    }
}

TEST_F(ctrlEdit_TextTest, AnInnerEditGoesWithTheFocusAndKeepsEnterToItself)
{
    auto* field = Placed(new ctrlEdit_Text(Main, 0, 0, 100, 20, ctrlEditInner));
    const ctrlLife life(field);
    bool isEntered = false;
    field->OnEnter = [&isEntered] { isEntered = true; };
    field->Focus();
    Type("x");
    fakeKeyPress(keyEnter, "\r");
    EXPECT_TRUE(life);
    Toolkit().PumpPending();
    EXPECT_FALSE(life);
    EXPECT_FALSE(isEntered);
    EXPECT_EQ(Changes, 1);
}

TEST_F(ctrlEdit_TextTest, AnEditThatGoesWithTheFocusCommits)
{
    ctrlEdit_Text* field = Field("abc");
    field->Focus();
    Type("x");
    field->OnChange = [this, field] {
        ++Changes;
        field->Destroy();
    };
    field->Destroy();
    EXPECT_EQ(Changes, 1);
    EXPECT_EQ(Toolkit().Focused, nullptr);
}

TEST_F(ctrlEdit_TextTest, AnEditThatHasNotTheFocusIsHiddenWithoutACommit)
{
    ctrlEdit_Text* field = Field("abc");
    field->EditText("other");
    field->Hide();
    EXPECT_EQ(Changes, 0);
}

TEST_F(ctrlEdit_TextTest, ADisplayTakesNoFocusAndNoMouse)
{
    ctrlEdit_Text* field = Field("abc");
    field->StyleClear(styleFocusable);
    Click(20);
    Type("x");
    EXPECT_FALSE(field->HasFocus());
    EXPECT_FALSE(field->CaptureHeld());
    EXPECT_EQ(field->Name(), "abc");
    field->Focus();
    EXPECT_FALSE(field->HasFocus());
}

TEST_F(ctrlEdit_TextTest, AKeyThatIsLetGoElsewhereIsNotHeldOn)
{
    ctrlEdit_Text* field = Field("abcdef");
    field->Focus();
    fakeKeyDown(keyShift);
    Toolkit().PumpPending();
    Main->Focus();
    fakeKeyUp(keyShift);
    Toolkit().PumpPending();
    field->Focus();
    Press(keyHome);
    ExpectMarks(*field, 0, 0, 0);
}

TEST_F(ctrlEdit_TextTest, ATextThatIsBrokenIsTakenAsFarAsItIsWhole)
{
    ctrlEdit_Text* field = Field("abc\xF0\x9F");
    EXPECT_EQ(field->Name(), "abc");
    field->EditText(std::string("a\0b", 3));
    EXPECT_EQ(field->Name(), "a");
    field->Caption("\xBF\xBF\xFF");
    field->Focus();
    for (const uint32_t key : {keyEnd, keyBackspace, keyHome, keyDelete, keyRight})
        Press(key);
    Type("x");
    Click(5);
    Click(5);
}

TEST_F(ctrlEdit_TextTest, ABorderTellsOfFocusAndPointer)
{
    ctrlEdit_Text* field = Field("abc");
    EXPECT_EQ(field->BorderColour(), ColourMix(0, theme::ListBorder, 3, 2));
    MoveTo(20);
    EXPECT_TRUE(field->CaptureHeld());
    EXPECT_EQ(Toolkit().CursorId, cursorText);
    EXPECT_EQ(field->BorderColour(), theme::ListBorder);
    field->Focus();
    EXPECT_EQ(field->BorderColour(), ColourMix(0, theme::ListBorder, 3, 4));
    MoveTo(20, 60);
    EXPECT_FALSE(field->CaptureHeld());
    EXPECT_EQ(Toolkit().CursorId, cursorArrow);
    field->SetBackColour(colourParent);
    EXPECT_EQ(field->BackColour(), Main->ChildBackColour());
}

}  // namespace
