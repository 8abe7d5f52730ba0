#include "tests/platform/screen/windowTest.h"

// The keyboard, from the hand of a user to the receiver.

namespace {

class windowKeys : public windowTest
{
protected:
    void SetUp() override
    {
        windowTest::SetUp();
        Window = OpenAt({100, 100, 400, 300});
        ASSERT_TRUE(Listens(Window));
        Heard.clear();
    }

    void Press(uint32_t key)
    {
        screenKeyDown(key);
        screenKeyUp(key);
    }

    std::u16string Characters() const
    {
        std::u16string units;
        for (const windowMessage& each : Heard) {
            if (each.Number == msgChar)
                units += static_cast<char16_t>(each.First);
        }
        return units;
    }

    windowId Window = 0;
};

struct keyRow {
    uint32_t Key;
    uint32_t Character;  // 0 for none
};

TEST_F(windowKeys, HaveTheirNumbersAndTheirCharacters)
{
    constexpr keyRow Rows[] = {
        {'A', 'a'},   {'Z', 'z'},        {'0', '0'},       {'9', '9'},      {keySpace, ' '}, {keyEnter, 13},
        {keyTab, 9},  {keyBackspace, 8}, {keyEscape, 27},  {keyDelete, 0},  {keyInsert, 0},  {keyHome, 0},
        {keyEnd, 0},  {keyPageUp, 0},    {keyPageDown, 0}, {keyLeft, 0},    {keyRight, 0},   {keyUp, 0},
        {keyDown, 0}, {keyF1, 0},        {keyF1 + 1, 0},   {keyF1 + 11, 0}, {keyShift, 0},   {keyControl, 0},
    };
    for (const keyRow& row : Rows) {
        Heard.clear();
        Press(row.Key);
        ASSERT_TRUE(Until([&] { return Has(Window, msgKeyUp); })) << row.Key;
        EXPECT_EQ(Last(Window, msgKeyDown).First, uint64_t{row.Key});
        EXPECT_EQ(Last(Window, msgKeyUp).First, uint64_t{row.Key});
        const std::vector<uint32_t> silent{msgKeyDown, msgKeyUp};
        const std::vector<uint32_t> heard{msgKeyDown, msgChar, msgKeyUp};
        EXPECT_EQ(Order(Window, {msgKeyDown, msgChar, msgKeyUp}), row.Character != 0 ? heard : silent)
            << row.Key;
        if (row.Character != 0) {
            EXPECT_EQ(Last(Window, msgChar).First, uint64_t{row.Character});
        }
    }
}

TEST_F(windowKeys, MakeCapitalsWithShift)
{
    screenKeyDown(keyShift);
    Press('Q');
    screenKeyUp(keyShift);
    Press('Q');
    ASSERT_TRUE(Until([&] { return Characters().size() == 2; }));
    EXPECT_EQ(Characters(), u"Qq");
}

TEST_F(windowKeys, MakeControlCharactersWithControl)
{
    screenKeyDown(keyControl);
    for (const uint32_t key : {uint32_t{'A'}, uint32_t{'C'}, uint32_t{'V'}, uint32_t{'Z'}})
        Press(key);
    screenKeyUp(keyControl);
    ASSERT_TRUE(Until([&] { return Characters().size() == 4; }));
    EXPECT_EQ(Characters(), u"\x1\x3\x16\x1A");
}

TEST_F(windowKeys, MakeAnyCharacter)
{
    for (const char32_t character : {U'x', U'µ', U'é', U'°', U'Ω'})
        screenType(character);
    ASSERT_TRUE(Until([&] { return Characters().size() == 5; }));
    EXPECT_EQ(Characters(), u"xµé°Ω");
}

TEST_F(windowKeys, MakeTwoUnitsOfACharacterBeyondTheBasicPlane)
{
    screenType(U'\U0001F6F0');
    ASSERT_TRUE(Until([&] { return Characters().size() == 2; }));
    EXPECT_EQ(Characters(), u"\U0001F6F0");
}

TEST_F(windowKeys, RepeatWithoutARelease)
{
    screenKeyDown('K');
    screenKeyDown('K');
    screenKeyUp('K');
    ASSERT_TRUE(Until([&] { return Has(Window, msgKeyUp); }));
    EXPECT_EQ(Count(Window, msgKeyUp), 1u);
    EXPECT_GE(Count(Window, msgKeyDown), 1u);
}

TEST_F(windowKeys, GoToTheWindowThatHasTheFocus)
{
    const windowId other = OpenAt({450, 100, 700, 300});
    ASSERT_TRUE(Listens(other));
    Heard.clear();
    Press('M');
    ASSERT_TRUE(Until([&] { return Has(other, msgKeyUp); }));
    System->SetFocus(Window);
    ASSERT_TRUE(Until([&] { return System->Focus() == Window; }));
    EXPECT_EQ(Last(other, msgKeyDown).First, uint64_t{'M'});
    EXPECT_EQ(Count(other, msgKeyDown), 1u);
    ASSERT_TRUE(Listens(Window));
    Heard.clear();
    Press('N');
    ASSERT_TRUE(Until([&] { return Has(Window, msgKeyUp); }));
    EXPECT_EQ(Last(Window, msgKeyDown).First, uint64_t{'N'});
    EXPECT_EQ(Count(Window, msgKeyDown), 1u);
    EXPECT_EQ(Count(other, msgKeyDown), 0u);
}

}  // namespace
