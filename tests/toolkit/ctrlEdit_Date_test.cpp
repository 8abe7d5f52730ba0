#include "tests/toolkit/editTest.h"

#include "toolkit/ctrlEdit_Date.h"
#include "toolkit/editDate.h"

namespace {

class ctrlEdit_DateTest : public editTest
{
protected:
    // The text is right-aligned: its ten characters end at 97, each 5.5 pixels wide, and it begins at 42.
    ctrlEdit_Date* Field(uint32_t year, uint32_t month, uint32_t day)
    {
        auto* field = new ctrlEdit_Date(Main, 0);
        field->Move(0, 0, 100, 20);
        field->Date(year, month, day);
        return Placed(field);
    }
    static void WheelAt(uint64_t position, int32_t turn)
    {
        MoveTo(42 + static_cast<int32_t>(5.5 * static_cast<double>(position)) + 1);
        Turn(turn);
    }
};

struct dayRow {
    editDate Date;
    uint32_t Day;
};

TEST_F(ctrlEdit_DateTest, DaysAndDatesAreEachOther)
{
    const dayRow rows[] = {
        {{2000, 1, 1}, 2451545}, {{1970, 1, 1}, 2440588},   {{2024, 2, 29}, 2460370},
        {{0, 1, 1}, 1721060},    {{9999, 12, 31}, 5373484},
    };
    for (const dayRow& row : rows) {
        EXPECT_EQ(editDayOf(row.Date), row.Day);
        EXPECT_EQ(editDateOf(row.Day).Year, row.Date.Year);
        EXPECT_EQ(editDateOf(row.Day).Month, row.Date.Month);
        EXPECT_EQ(editDateOf(row.Day).Day, row.Date.Day);
    }
    EXPECT_EQ(editDayOf({2023, 14, 30}), editDayOf({2024, 3, 1}));
    EXPECT_EQ(editDayOf({65535, 255, 255}), editLastDay);
    EXPECT_EQ(editDayOf({-5, 0, 0}), editDayOf({0, 1, 1}));
}

TEST_F(ctrlEdit_DateTest, ItStartsAtToday)
{
    fakeClockToday({2026, 3, 7});
    auto* field = new ctrlEdit_Date(Main, 0);
    EXPECT_EQ(field->Name(), "07/03/2026");
    EXPECT_EQ(field->Width(), 20U);
    EXPECT_EQ(field->Height(), 18U);
}

TEST_F(ctrlEdit_DateTest, AnyDayIsShown)
{
    ctrlEdit_Date* field = Field(2026, 3, 7);
    field->Value(~0U);
    EXPECT_EQ(field->Value(), editLastDay);
    EXPECT_EQ(field->Name(), "31/12/9999");
    field->Value(0);
    EXPECT_EQ(field->Name(), "24/11/0000");
    field->Focus();
    Press(keyEnter, "\r");
    EXPECT_EQ(field->Value(), 0U);
    field->Date(0, 0, 0);
    EXPECT_EQ(field->Name(), "01/01/0000");
}

TEST_F(ctrlEdit_DateTest, TheCaretStandsOnDigitsOnly)
{
    ctrlEdit_Date* field = Field(2026, 3, 7);
    field->Focus();
    EXPECT_EQ(field->Caret(), 9U);
    const std::vector<uint64_t> back{8, 7, 6, 4, 3, 1, 0, 0};
    for (const uint64_t position : back) {
        Press(keyLeft);
        EXPECT_EQ(field->Caret(), position);
    }
    const std::vector<uint64_t> on{1, 3, 4, 6, 7, 8, 9, 9};
    for (const uint64_t position : on) {
        Press(keyRight);
        EXPECT_EQ(field->Caret(), position);
    }
    Press(keyBackspace, "\b");
    Press(keyDelete);
    EXPECT_EQ(field->Caret(), 7U);
    EXPECT_EQ(field->Name(), "07/03/2026");
}

struct typeRow {
    const char* Before;
    uint64_t Caret;
    const char* Typed;
    const char* After;
};

TEST_F(ctrlEdit_DateTest, ADigitThatMakesNoDateIsRefused)
{
    const typeRow rows[] = {
        {"07/03/2026", 0, "4", "07/03/2026"},        {"07/03/2026", 0, "3", "30/03/2026"},
        {"01/03/2026", 0, "3", "31/03/2026"},        {"31/03/2026", 1, "2", "31/03/2026"},
        {"31/03/2026", 1, "0", "30/03/2026"},        {"07/03/2026", 1, "0", "07/03/2026"},
        {"07/03/2026", 3, "2", "07/03/2026"},        {"07/03/2026", 3, "1", "07/10/2026"},
        {"07/02/2026", 3, "1", "07/12/2026"},        {"07/12/2026", 4, "3", "07/12/2026"},
        {"07/02/2026", 4, "0", "07/02/2026"},        {"07/02/2026", 6, "1987", "07/02/1987"},
        {"07/02/2026", 0, "15111999", "15/11/1999"}, {"07/02/2026", 0, "x", "07/02/2026"},
    };
    for (const typeRow& row : rows) {
        const std::string before = row.Before;
        const auto number = [&before](size_t at, size_t count) {
            return static_cast<uint32_t>(std::stoul(before.substr(at, count)));
        };
        ctrlEdit_Date* field = Field(number(6, 4), number(3, 2), number(0, 2));
        field->Focus();
        field->CaretMove(row.Caret);
        Type(row.Typed);
        EXPECT_EQ(field->Name(), row.After) << row.Before << " " << row.Typed;
        field->Destroy();
    }
}

TEST_F(ctrlEdit_DateTest, ASelectionIsOverwrittenByZeros)
{
    ctrlEdit_Date* field = Field(2026, 3, 17);
    field->Focus();
    Type("4");
    EXPECT_EQ(field->Name(), "17/03/2026") << "refused";
    Type("2");
    EXPECT_EQ(field->Name(), "20/00/0000");
    EXPECT_EQ(field->Caret(), 1U);
    Type("5122031");
    EXPECT_EQ(field->Name(), "25/12/2031");
    field->SelectTo(3);
    field->SelectionDelete();
    EXPECT_EQ(field->Name(), "25/00/0001");
    Press(keyEnter, "\r");
    EXPECT_EQ(field->Name(), "25/01/0001");
    EXPECT_EQ(Changes, 1);
}

TEST_F(ctrlEdit_DateTest, ADayBeyondItsMonthCountsOn)
{
    ctrlEdit_Date* field = Field(2026, 2, 7);
    field->Focus();
    field->CaretMove(0);
    Type("31");
    Press(keyEnter, "\r");
    EXPECT_EQ(field->Name(), "03/03/2026");
    EXPECT_EQ(field->Value(), editDayOf({2026, 3, 3}));
    EXPECT_EQ(Changes, 1);
}

TEST_F(ctrlEdit_DateTest, EscapeGivesTheDateBack)
{
    ctrlEdit_Date* field = Field(2026, 2, 7);
    field->Focus();
    Type("1");
    Press(keyEscape, "\x1B");
    EXPECT_EQ(field->Name(), "07/02/2026");
    EXPECT_EQ(Changes, 0);
}

struct wheelRow {
    uint64_t Position;
    int32_t Steps;
    const char* After;
};

TEST_F(ctrlEdit_DateTest, TheWheelStepsTheDigitUnderThePointer)
{
    const wheelRow rows[] = {
        {0, 1, "25/03/2026"},  {1, 1, "16/03/2026"},  {1, -1, "14/03/2026"}, {1, 20, "04/04/2026"},
        {0, -2, "01/03/2026"}, {3, 1, "15/01/2027"},  {4, 1, "15/04/2026"},  {4, -9, "15/01/2026"},
        {6, 1, "15/03/3026"},  {7, 1, "15/03/2126"},  {8, 1, "15/03/2036"},  {9, 1, "15/03/2027"},
        {9, -1, "15/03/2025"}, {6, -9, "15/03/0001"}, {6, 9, "31/12/9999"},
    };
    for (const wheelRow& row : rows) {
        ctrlEdit_Date* field = Field(2026, 3, 15);
        WheelAt(row.Position, 120 * row.Steps);
        EXPECT_EQ(field->Name(), row.After) << row.Position << " " << row.Steps;
        EXPECT_EQ(Changes, 1);
        Changes = 0;
        field->Destroy();
        MoveTo(5, 60);
    }
}

TEST_F(ctrlEdit_DateTest, AnEditMayGoInItsChange)
{
    ctrlEdit_Date* field = Field(2026, 3, 15);
    const ctrlLife life(field);
    field->OnChange = [field] { field->Destroy(); };
    field->Focus();
    Type("1");
    Press(keyEnter, "\r");
    EXPECT_FALSE(life);
}

}  // namespace
