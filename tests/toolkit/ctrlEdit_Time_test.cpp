#include "tests/toolkit/editTest.h"

#include "toolkit/ctrlEdit_Time.h"

#include <cmath>
#include <limits>

namespace {

class ctrlEdit_TimeTest : public editTest
{
protected:
    // The text is right-aligned and ends at 97; characters are 5.5 pixels wide.
    ctrlEdit_Time* Field(double seconds, uint32_t flags = 0)
    {
        auto* field = new ctrlEdit_Time(Main, flags);
        field->Width(100);
        field->Value(seconds);
        return Placed(field);
    }
};

struct textRow {
    double Seconds;
    int32_t Decimals;
    uint32_t Flags;
    const char* AtRest;
    const char* Focused;
};

TEST_F(ctrlEdit_TimeTest, ATimeHasAllItsDigitsWhileItHasTheFocus)
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const textRow rows[] = {
        {0, 0, 0, "0:00:00", "00:00:00"},
        {5025, 0, 0, "1:23:45", "01:23:45"},
        {86399.6, 0, 0, "24:00:00", "24:00:00"},
        {infinite, 0, 0, "24:00:00", "24:00:00"},
        {-5, 0, 0, "0:00:00", "00:00:00"},
        {125, 0, ctrlEditMinutes, "2:05", "02:05"},
        {7325, 0, ctrlEditMinutes, "122:05", "122:05"},
        {5025.678, 2, 0, "1:23:45.68", "01:23:45.68"},
    };
    for (const textRow& row : rows) {
        ctrlEdit_Time* field = Field(0, row.Flags);
        field->Decimals(row.Decimals);
        field->Value(row.Seconds);
        field->Value(std::numeric_limits<double>::quiet_NaN());
        EXPECT_EQ(field->Name(), row.AtRest);
        field->Focus();
        EXPECT_EQ(field->Name(), row.Focused);
        EXPECT_EQ(field->SelectionEnd(), field->Name().size());
        Main->Focus();
        EXPECT_EQ(field->Name(), row.AtRest);
        EXPECT_EQ(Changes, 0);
    }
}

struct typeRow {
    double Before;
    uint32_t Flags;
    uint64_t Caret;
    const char* Typed;
    const char* After;
};

TEST_F(ctrlEdit_TimeTest, ADigitThatMakesNoTimeIsRefused)
{
    const typeRow rows[] = {
        {0, 0, 0, "3", "00:00:00"},
        {19 * 3600, 0, 0, "2", "20:00:00"},
        {20 * 3600, 0, 1, "4", "20:00:00"},
        {20 * 3600, 0, 1, "3", "23:00:00"},
        {10 * 3600, 0, 1, "9", "19:00:00"},
        {0, 0, 3, "6", "00:00:00"},
        {0, 0, 6, "6", "00:00:00"},
        {0, 0, 0, "123456", "12:34:56"},
        {0, ctrlEditMinutes, 0, "99", "99:00"},
        {0, ctrlEditMinutes, 3, "6", "00:00"},
        {0, ctrlEditMinutes, 3, "59", "00:59"},
    };
    for (const typeRow& row : rows) {
        ctrlEdit_Time* field = Field(row.Before, row.Flags);
        field->Focus();
        field->CaretMove(row.Caret);
        Type(row.Typed);
        EXPECT_EQ(field->Name(), row.After) << row.Typed;
        field->Destroy();
    }
}

TEST_F(ctrlEdit_TimeTest, WhatIsTypedIsTakenWithEnter)
{
    ctrlEdit_Time* field = Field(0);
    field->Decimals(2);
    field->Focus();
    Type("12345678");
    EXPECT_EQ(field->Value(), 0);
    Press(keyEnter, "\r");
    EXPECT_DOUBLE_EQ(field->Value(), 12 * 3600 + 34 * 60 + 56.78);
    EXPECT_EQ(Changes, 1);
    field->Range(10, 20);
    EXPECT_EQ(field->Value(), 20);
    field->Range(20, 10);
    field->Range(0, std::numeric_limits<double>::infinity());
    field->Value(5);
    EXPECT_EQ(field->Value(), 10);
}

TEST_F(ctrlEdit_TimeTest, TheCaretStandsOnDigitsOnly)
{
    ctrlEdit_Time* field = Field(5025, 0);
    field->Focus();
    EXPECT_EQ(field->Caret(), 7U);
    for (const uint64_t position : {6U, 4U, 3U, 1U, 0U, 0U}) {
        Press(keyBackspace, "\b");
        EXPECT_EQ(field->Caret(), position);
    }
    EXPECT_EQ(field->Name(), "01:23:45");
    auto* minutes = Field(125, ctrlEditMinutes);
    minutes->FirstDigits(3);
    minutes->Focus();
    EXPECT_EQ(minutes->Name(), "002:05");
    minutes->CaretMove(2);
    Press(keyRight);
    EXPECT_EQ(minutes->Caret(), 4U);
}

struct wheelRow {
    uint64_t Position;
    double Weight;
};

TEST_F(ctrlEdit_TimeTest, TheWheelStepsTheDigitUnderThePointer)
{
    const wheelRow rows[] = {{0, 36000}, {1, 3600}, {3, 600}, {4, 60}, {6, 10}, {7, 1}, {9, 0.1}, {10, 0.01}};
    constexpr double noon = 12 * 3600;
    for (const wheelRow& row : rows) {
        ctrlEdit_Time* field = Field(noon);
        field->Decimals(2);
        Toolkit().PumpPending();
        // Eleven characters are 61 wide.
        MoveTo(98 - 61 - 1 + static_cast<int32_t>(5.5 * static_cast<double>(row.Position)) + 1);
        Turn(120);
        EXPECT_NEAR(field->Value(), noon + row.Weight, 1e-9) << row.Position;
        field->Destroy();
        MoveTo(5, 60);
    }
}

TEST_F(ctrlEdit_TimeTest, TheArrowsStepTheDigitAtTheCaret)
{
    ctrlEdit_Time* field = Field(3600);
    field->EditStyleSet(styleSpinArrows);
    Toolkit().PumpPending();
    Click(90, 5);
    EXPECT_EQ(field->Value(), 3601);
    field->CaretMove(4);
    Click(90, 15);
    EXPECT_EQ(field->Value(), 3541);
    EXPECT_EQ(Changes, 2);
}

}  // namespace
