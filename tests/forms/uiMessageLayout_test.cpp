// Where the parts of a message box are. Texts of the fake platform are 5.5 wide for each letter and 16.5
// high, times the scale.
#include "tests/forms/messageTest.h"

using testing::HasSubstr;

namespace {

class uiMessageLayoutTest : public messageTest
{
protected:
    // All that is drawn as the text of the box.
    static std::string Shown()
    {
        Box()->Invalidate(true);
        const std::vector<std::string> drawn = Drawn({"text"});
        return drawn.empty() ? std::string() : drawn.front();
    }
};

TEST_F(uiMessageLayoutTest, FollowsTheTextTheButtonsAndTheScale)
{
    struct row {
        uint32_t DPI;
        size_t Letters;
        size_t Buttons;
        uint32_t ButtonWidth;
        uint32_t ButtonHeight;
        int32_t FirstX;
        int32_t ButtonY;
        uint32_t Width;
        uint32_t Height;
    };
    constexpr row rows[] = {
        // A short text: as wide as the row of buttons plus 16.
        {96, 5, 1, 50, 18, 10, 33, 70, 59},
        {96, 5, 3, 50, 18, 10, 33, 178, 59},
        {96, 5, 7, 50, 18, 10, 33, 394, 59},
        {144, 5, 1, 71, 27, 10, 41, 91, 76},
        {192, 5, 1, 92, 36, 10, 49, 112, 93},
        // A long one sets the width.
        {96, 100, 1, 50, 18, 258, 33, 566, 59},
        {144, 100, 2, 71, 27, 347, 41, 841, 76},
        {192, 100, 3, 92, 36, 416, 49, 1116, 93},
        // None at all.
        {96, 0, 1, 50, 18, 10, 16, 70, 42},
    };
    const std::vector<Buttons> all = {Buttons::OK,    Buttons::Yes,   Buttons::No,    Buttons::Cancel,
                                      Buttons::Abort, Buttons::Retry, Buttons::Ignore};
    for (const row& each : rows) {
        SCOPED_TRACE(testing::Message() << each.DPI << " " << each.Letters << " " << each.Buttons);
        fakeScreenDPI(each.DPI);
        Look(std::string(each.Letters, 'x'), {all.begin(), all.begin() + static_cast<long>(each.Buttons)},
             [&] {
                 EXPECT_EQ(Box()->Width(), each.Width);
                 EXPECT_EQ(Box()->Height(), each.Height);
                 int32_t x = each.FirstX;
                 ASSERT_EQ(Row().size(), each.Buttons);
                 for (const ctrlWindow* button : Row()) {
                     EXPECT_EQ(button->X(), x);
                     EXPECT_EQ(button->Y(), each.ButtonY);
                     EXPECT_EQ(button->Width(), each.ButtonWidth);
                     EXPECT_EQ(button->Height(), each.ButtonHeight);
                     x += static_cast<int32_t>(each.ButtonWidth) + 4;
                 }
             });
    }
}

TEST_F(uiMessageLayoutTest, GrowsAroundTheCentreOfItsOwner)
{
    Look("Hello", {}, [] {
        // 10 by 10 at 295, 245 at first, then 70 by 59.
        EXPECT_EQ(Box()->X(), 265);
        EXPECT_EQ(Box()->Y(), 221);
    });
}

TEST_F(uiMessageLayoutTest, LinesOfTheTextStandBelowEachOther)
{
    Look("one\ntwo and more\n\nfour", {}, [] {
        EXPECT_EQ(Box()->Width(), 12 * 11 / 2 + 16U);
        EXPECT_EQ(Row().at(0)->Y(), 66 + 16);
        EXPECT_EQ(Box()->Height(), 66 + 24 + 18U);
        EXPECT_THAT(Shown(), HasSubstr("\"one\ntwo and more\n\nfour\" at 8,8 in 66x66"));
    });
}

TEST_F(uiMessageLayoutTest, AnEmptyTextDrawsNothing)
{
    Look("", {}, [] { EXPECT_EQ(Shown(), ""); });
}

// --- Within the work area

TEST_F(uiMessageLayoutTest, ALongLineIsBrokenAtBlanks)
{
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += "word" + std::to_string(i) + " ";
    Look(text, {}, [] {
        ExpectWithin(Work);
        // 345 letters have room.
        EXPECT_THAT(Shown(), HasSubstr("word48 word49\nword50 word51"));
    });
}

TEST_F(uiMessageLayoutTest, AWordWiderThanTheScreenIsBrokenWithin)
{
    Look(std::string(1000, 'w'), {Buttons::Yes, Buttons::No}, [] {
        ExpectWithin(Work);
        const std::string shown = Shown();
        EXPECT_THAT(shown, HasSubstr("w\nw"));
        EXPECT_EQ(std::count(shown.begin(), shown.end(), 'w'), 1000) << "and nothing is lost";
    });
}

TEST_F(uiMessageLayoutTest, OfTooManyLinesTheEndIsLeftOut)
{
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += "line " + std::to_string(i) + "\n";
    Look(text, {Buttons::Yes, Buttons::No, Buttons::Cancel}, [] {
        ExpectWithin(Work);
        EXPECT_THAT(Shown(), HasSubstr("line 54\n...\""));
    });
}

TEST_F(uiMessageLayoutTest, ATextWithoutEndComesToOne)
{
    for (const char letter : {'x', ' ', '\n', '\t', '\r', '\x80', '\xFF'}) {
        SCOPED_TRACE(static_cast<int>(letter));
        Look(std::string(10'000'000, letter), {}, [] { ExpectWithin(Work); });
    }
}

TEST_F(uiMessageLayoutTest, BrokenTextsDoNoHarm)
{
    for (const std::string& text :
         {std::string("a\xC3"), std::string("\xF0\x9F\x9B"), std::string("a\0b", 3),
          std::string("\xFF\xFE\n\x80"), std::string(1000, '\xC3'), std::string("\x01\x02\x7F")}) {
        WhileOpen([] {
            ExpectWithin(Work);
            Click(Row().at(0));
        });
        EXPECT_EQ(uiMessage::Execute(Main, text, text), Buttons::OK);
    }
}

TEST_F(uiMessageLayoutTest, StaysOnTheMonitorOfAnOwnerAtItsEdge)
{
    struct row {
        int32_t X, Y;
    };
    for (const row& each : {row{1850, 1000}, row{0, 0}, row{1850, 0}}) {
        Main->Move(each.X, each.Y, 60, 30);
        Look(std::string(100, 'x') + std::string(20, '\n'), {Buttons::Yes, Buttons::No},
             [] { ExpectWithin(Work); });
    }
}

TEST_F(uiMessageLayoutTest, StaysOnASmallScreen)
{
    const windowArea small{0, 0, 320, 200};
    fakeMonitors({small});
    Main->Move(20, 40, 100, 100);
    fakeScreenDPI(192);
    Look(std::string(400, 'x'), {Buttons::OK, Buttons::Yes, Buttons::No, Buttons::Cancel, Buttons::Abort},
         [&small] { ExpectWithin(small); });
}

TEST_F(uiMessageLayoutTest, MoreButtonsThanTheScreenHasRoomForShareIt)
{
    Look("Text", std::vector<Buttons>(60, Buttons::Cancel), [] {
        ExpectWithin(Work);
        EXPECT_EQ(Row().size(), 60U);
        EXPECT_EQ(Row().back()->Width(), Row().front()->Width());
    });
}

TEST_F(uiMessageLayoutTest, ALateScaleIsFollowed)
{
    Look("Hello", {}, [] {
        fakeWindowDPI(Box()->Handle(), 192);
        Toolkit().PumpPending();
        Box()->Invalidate(true);
        Toolkit().PumpPending();
        EXPECT_EQ(Box()->Width(), 112U);
        EXPECT_EQ(Box()->Height(), 93U);
        EXPECT_EQ(Row().at(0)->Height(), 36U);
    });
}

}  // namespace
