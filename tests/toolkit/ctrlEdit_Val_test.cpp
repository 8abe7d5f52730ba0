#include "tests/toolkit/editTest.h"

#include "foundations/text/utfLocale.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/editMath.h"

#include <cmath>
#include <limits>
#include <utility>

using testing::Contains;
using testing::HasSubstr;

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr int64_t most = std::numeric_limits<int64_t>::max();
constexpr int64_t least = std::numeric_limits<int64_t>::min();

class ctrlEdit_ValTest : public editTest
{
protected:
    void SetUp() override
    {
        editTest::SetUp();
        Point = std::exchange(utfLocale.DecimalPoint, ".");
    }
    void TearDown() override
    {
        utfLocale.DecimalPoint = Point;
        editTest::TearDown();
    }

    // The text begins at 2; characters are 5.5 pixels wide.
    ctrlEdit_Val* Field(uint32_t flags = 0)
    {
        auto* field = new ctrlEdit_Val(Main, flags);
        field->Width(100);
        return Placed(field);
    }
    ctrlEdit_Val* Between(double minimum, double maximum)
    {
        ctrlEdit_Val* field = Field();
        field->Range(minimum, maximum);
        return field;
    }
    void Enter(ctrlEdit_Val* field, std::string_view text)
    {
        field->Focus();
        Type(text);
        Press(keyEnter, "\r");
    }

    std::string Point;
};

TEST_F(ctrlEdit_ValTest, ARangeWhoseEndsAreCrossedChangesNothing)
{
    ctrlEdit_Val* field = Field();
    field->Value(50);
    field->Range(5, 1);
    field->Range(noNumber, 1.0);
    EXPECT_EQ(field->ValueGetF(), 50);
    field->Value(99);
    EXPECT_EQ(field->ValueGetF(), 99);
    field->Range(1, 5);
    EXPECT_EQ(field->ValueGetF(), 5);
}

TEST_F(ctrlEdit_ValTest, AValueIsClampedUnlessTheStyleLetsItGo)
{
    ctrlEdit_Val* field = Field();
    field->Value(500);
    EXPECT_EQ(field->ValueGetI(), 100);
    field->Value(-infinite);
    EXPECT_EQ(field->ValueGetI(), 0);
    field->ValStyleSet(styleValAnyRange);
    field->Value(-500.5);
    EXPECT_EQ(field->ValueGetF(), -500.5);
    EXPECT_EQ(field->ValueGetI(), -500);
    EXPECT_EQ(Changes, 0) << "only the user's changes are told";
}

TEST_F(ctrlEdit_ValTest, WhatIsNoNumberIsIgnored)
{
    ctrlEdit_Val* field = Field();
    field->Value(7);
    field->Value(noNumber);
    field->Step(noNumber);
    EXPECT_EQ(field->ValueGetF(), 7);
    ctrlEdit_Val* integer = Field(ctrlEditInteger);
    integer->ValStyleSet(styleValAnyRange);
    integer->Value(7);
    for (const double one : {noNumber, infinite, 9.2e18, -9.2e18, 1e300})
        integer->Value(one);
    EXPECT_EQ(integer->ValueGetI(), 7);
    integer->Value(-9.1);
    EXPECT_EQ(integer->ValueGetI(), -9);
}

struct snapRow {
    double Step;
    double Value;
    double Result;
};

TEST_F(ctrlEdit_ValTest, AValueSnapsToTheNearestMultipleOfTheStep)
{
    const snapRow rows[] = {{0.5, 1.3, 1.5}, {0.5, 1.2, 1.0}, {5, 7.5, 10},
                            {5, -8, -10},    {5, -7, -5},     {0, 3.3, 3.3}};
    for (const snapRow& row : rows) {
        ctrlEdit_Val* field = Between(-1000, 1000);
        field->ValStyleSet(styleValSnap);
        field->Step(row.Step);
        field->Value(row.Value);
        EXPECT_DOUBLE_EQ(field->ValueGetF(), row.Result);
        if (std::floor(row.Value) != row.Value || row.Step != std::floor(row.Step))
            continue;
        ctrlEdit_Val* integer = Field(ctrlEditInteger);
        integer->Range(-1000, 1000);
        integer->ValStyleSet(styleValSnap);
        integer->Step(row.Step);
        integer->Value(row.Value);
        EXPECT_EQ(integer->ValueGetF(), row.Result);
    }
}

struct wrapRow {
    int64_t Value;
    int64_t Result;
};

TEST_F(ctrlEdit_ValTest, AWrappingValueGoesAround)
{
    const wrapRow rows[] = {{360, 0}, {361, 1}, {-1, 359}, {-360, 0}, {359, 359}, {7201, 1}};
    for (const uint32_t flags : {0U, uint32_t{ctrlEditInteger}}) {
        ctrlEdit_Val* field = Field(flags);
        field->Range(0, 360);
        field->ValStyleSet(styleValWrap);
        for (const wrapRow& row : rows) {
            field->Value(row.Value);
            EXPECT_EQ(field->ValueGetI(), row.Result) << row.Value;
        }
        field->Value(359);
        field->DoOnSpinSteps(3);
        EXPECT_EQ(field->ValueGetI(), 2);
        field->Value(infinite);
    }
}

TEST_F(ctrlEdit_ValTest, IntegersStopAtTheirLimits)
{
    EXPECT_EQ(editAdd(most, 1), most);
    EXPECT_EQ(editAdd(least, -1), least);
    EXPECT_EQ(editMultiply(most, -2), least);
    EXPECT_EQ(editMultiply(least, -1), most);
    EXPECT_EQ(editInteger(1e300), most);
    EXPECT_EQ(editInteger(-infinite), least);
    EXPECT_EQ(editInteger(noNumber), 0);
    EXPECT_EQ(editTenTo(18), 1'000'000'000'000'000'000);
    EXPECT_EQ(editTenTo(19), most);
    EXPECT_EQ(editSnap(least, 7) % 7 == 0 || editSnap(least, 7) == least, true);
    EXPECT_EQ(editWrap(most, least, most), least);
    EXPECT_EQ(editWrap(least, 0, most), most - 1);
    ctrlEdit_Val* field = Field(ctrlEditInteger);
    field->Range(least, most);
    Enter(field, "99999999999999999999999");
    EXPECT_EQ(field->ValueGetI(), most);
    field->DoOnSpinSteps(1);
    EXPECT_EQ(field->ValueGetI(), most);
    Enter(field, "-99999999999999999999999");
    EXPECT_EQ(field->ValueGetI(), least);
}

// --- The text

struct textRow {
    double Value;
    int32_t Decimals;
    int32_t Floor;
    uint32_t Style;
    const char* Text;
    const char* Prefix;
};

TEST_F(ctrlEdit_ValTest, ALargeValueIsShownWithAPrefix)
{
    const textRow rows[] = {
        {2500, 0, 0, 0, "2500", ""},
        {3000, 0, 0, 0, "3000", ""},
        {3500, 0, 0, 0, "3.500", "k"},
        {-3500, 1, 0, 0, "-3.5000", "k"},
        {3500, 2, 0, styleValGeneral, "3.5", "k"},
        {3500, 0, 1, 0, "3500", ""},
        {3500, 0, 0, styleValPlain, "3500", ""},
        {3.5e6, 0, 0, 0, "3.500000", "M"},
        {2.5e9, 4, 0, styleValGeneral, "2500", "M"},
        {2.5e9, 2, 0, styleValGeneral, "2.5e+03", "M"},
        {3.5e9, 3, 0, styleValGeneral, "3.5", "G"},
        {3.5e12, 3, 0, styleValGeneral, "3.5", "T"},
        {1234567, 0, 0, styleValPlain | styleValGrouped, "1 234 567", ""},
        {-123, 0, 0, styleValPlain | styleValGrouped, "-123", ""},
        {1234.5, 1, 0, styleValPlain | styleValGrouped, "1 234.5", ""},
        {0, 2, 0, 0, "0.00", ""},
        {infinite, 2, 0, 0, "\u221E", "T"},
    };
    for (const textRow& row : rows) {
        ctrlEdit_Val* field = Field();
        field->ValStyleSet(row.Style | styleValAnyRange);
        field->Decimals(row.Decimals);
        field->ExponentFloor(row.Floor);
        field->Value(row.Value);
        EXPECT_EQ(field->Name(), row.Text);
        EXPECT_EQ(field->Prefix(), row.Prefix) << row.Text;
        field->Destroy();
    }
}

TEST_F(ctrlEdit_ValTest, ASmallValueIsShownWithAPrefixInASmallRange)
{
    const textRow rows[] = {
        {4, 1, 0, 0, "4.0", ""},
        {3, 0, 0, 0, "3000", "m"},
        {0.002, 0, 0, 0, "2000", "\u03BC"},
        {2e-6, 0, 0, 0, "2000", "n"},
        {2e-9, 0, 0, 0, "2000", "p"},
        {0, 0, 0, 0, "0", "p"},
        {0.0025, 1, -6, 0, "2500.0", "\u03BC"},
        {0.5, 0, -6, 0, "500.000", "m"},
    };
    for (const textRow& row : rows) {
        ctrlEdit_Val* field = Between(-5, 5);
        field->Decimals(row.Decimals);
        field->ExponentFloor(row.Floor);
        field->Value(row.Value);
        EXPECT_EQ(field->Name(), row.Text);
        EXPECT_EQ(field->Prefix(), row.Prefix) << row.Value;
        field->Destroy();
    }
    EXPECT_EQ(Between(-5, 50)->ValueText(0.5).Prefix, "");
}

TEST_F(ctrlEdit_ValTest, ARangeThatBecomesSmallOrLargeChangesThePrefix)
{
    ctrlEdit_Val* field = Field();
    field->Value(0.5);
    field->Range(0.0, 5.0);
    EXPECT_EQ(field->Name() + field->Prefix(), "500m");
    field->Range(0.0, 50.0);
    EXPECT_EQ(field->Prefix(), "");
}

TEST_F(ctrlEdit_ValTest, AnIntegerHasAsManyDigitsAsDecimals)
{
    ctrlEdit_Val* field = Field(ctrlEditInteger);
    field->Decimals(4);
    field->Value(42);
    EXPECT_EQ(field->Name(), "0042");
    field->Decimals(std::numeric_limits<int32_t>::max());
    field->Decimals(-5);
    EXPECT_EQ(field->Name(), "42");
}

TEST_F(ctrlEdit_ValTest, ALocaleWithAnotherPointIsWrittenAndRead)
{
    for (const char* point : {",", "\u066B", ""}) {
        utfLocale.DecimalPoint = point;
        ctrlEdit_Val* field = Field();
        field->Decimals(2);
        field->Value(12.25);
        EXPECT_EQ(field->Name(), std::string("12") + (*point ? point : ".") + "25");
        field->Focus();
        Press(keyEnter, "\r");
        EXPECT_EQ(field->ValueGetF(), 12.25);
        EXPECT_EQ(Changes, 0) << "nobody typed";
        field->Focus();
        Press(keyEnd);
        Type("1");
        Press(keyEnter, "\r");
        EXPECT_NEAR(field->ValueGetF(), 12.251, 1e-9);
        Enter(field, "3.5");
        EXPECT_DOUBLE_EQ(field->ValueGetF(), 3.5);
        Changes = 0;
        field->Destroy();
    }
}

TEST_F(ctrlEdit_ValTest, TheUnitStandsBehindTheNumberWithRoomForAPrefix)
{
    ctrlEdit_Val* field = Field();
    field->Unit("Hz");
    field->Range(0.0, 1e6);
    field->Value(3500);
    // "MHz" is 17 wide.
    EXPECT_THAT(Drawn({"text"}), testing::ElementsAre(HasSubstr("\"kHz\" at 81,1 in 17x18 right"),
                                                      HasSubstr("\"3.500\" at 2,1 in 79x18 left")));
}

// --- Typing

struct typeRow {
    const char* Text;
    double Value;
};

TEST_F(ctrlEdit_ValTest, WhatIsTypedIsTakenWithEnter)
{
    const typeRow rows[] = {
        {"1k", 1000},   {"2M", 2e6},   {"1.5K", 1500}, {"3g", 3e9}, {"4T", 4e12}, {"-5", -5},
        {"5n", 5e-9},   {"6P", 6e-12}, {"7u", 7e-6},   {"8k ", 8},  {"9kv", 9},   {"1.2.3", 1.23},
        {"1x2-3", 123}, {"", 0},       {"-", 0},       {"007", 7},  {"k5", 5000}, {"12k3", 123000},
    };
    for (const typeRow& row : rows) {
        ctrlEdit_Val* field = Field();
        field->Unit("V");
        field->Range(-1e15, 1e15);
        Enter(field, row.Text);
        EXPECT_DOUBLE_EQ(field->ValueGetF(), row.Value) << row.Text;
        field->Destroy();
    }
}

TEST_F(ctrlEdit_ValTest, TheValueWaitsForTheCommit)
{
    ctrlEdit_Val* field = Between(0, 1e6);
    field->Focus();
    Type("1k");
    EXPECT_EQ(field->ValueGetF(), 0);
    EXPECT_EQ(field->Prefix(), "k");
    Press(keyEscape, "\x1B");
    EXPECT_EQ(field->ValueGetF(), 0);
    EXPECT_EQ(field->Name(), "0");
    EXPECT_EQ(field->Prefix(), "");
    EXPECT_EQ(Changes, 0);
    field->Focus();
    Type("1k");
    Main->Focus();
    EXPECT_EQ(field->ValueGetF(), 1000);
    EXPECT_EQ(field->Name(), "1000");
    EXPECT_EQ(Changes, 1);
}

TEST_F(ctrlEdit_ValTest, MMeansMilliInASmallRangeAndElseMega)
{
    ctrlEdit_Val* field = Between(0, 5);
    Enter(field, "2m");
    EXPECT_DOUBLE_EQ(field->ValueGetF(), 2e-3);
    field->Range(0, 100);
    field->ValStyleSet(styleValAnyRange);
    Enter(field, "2m");
    EXPECT_DOUBLE_EQ(field->ValueGetF(), 2e6);
    ctrlEdit_Val* integer = Field(ctrlEditInteger);
    integer->Range(0, 5);
    integer->ValStyleSet(styleValAnyRange);
    integer->ValStyleClear(styleValPlain);
    Enter(integer, "2m");
    EXPECT_EQ(integer->ValueGetI(), 2'000'000);
    Enter(integer, "3n");
    EXPECT_EQ(integer->ValueGetI(), 3);
}

TEST_F(ctrlEdit_ValTest, AMinusIsTypedWhereTheRangeHasOne)
{
    ctrlEdit_Val* field = Field();
    field->Focus();
    Type("-5");
    EXPECT_EQ(field->Name(), "5");
    field->ValStyleSet(styleValAnyRange);
    Press(keyHome);
    Type("--");
    EXPECT_EQ(field->Name(), "-5");
    Press(keyHome);
    Type("-");
    EXPECT_EQ(field->Name(), "-5");
    With(keyShift, keyEnd);
    Type("-7");
    EXPECT_EQ(field->Name(), "-7");
}

TEST_F(ctrlEdit_ValTest, APointIsTypedOnceAndNeverInAnInteger)
{
    ctrlEdit_Val* field = Field();
    field->Focus();
    Type("1.");
    With(keyShift, keyLeft);
    Type(".5");
    EXPECT_EQ(field->Name(), "1.5");
    field->ValStyleClear(styleValPoint);
    Press(keyEnd);
    field->SelectTo(0);
    Type("2.5");
    EXPECT_EQ(field->Name(), "25");
    ctrlEdit_Val* integer = Field(ctrlEditInteger);
    integer->Focus();
    Type("2.5");
    EXPECT_EQ(integer->Name(), "25");
}

TEST_F(ctrlEdit_ValTest, AClampedCommitShowsWhatItBecame)
{
    ctrlEdit_Val* field = Field();
    field->Value(100);
    Enter(field, "700");
    EXPECT_EQ(field->Name(), "100");
    EXPECT_EQ(Changes, 0);
}

TEST_F(ctrlEdit_ValTest, AnInfiniteValueStaysWhenNobodyTyped)
{
    ctrlEdit_Val* field = Field();
    field->ValStyleSet(styleValAnyRange);
    field->Value(infinite);
    field->Focus();
    Press(keyEnter, "\r");
    EXPECT_EQ(field->ValueGetF(), infinite);
    Enter(field, "1 ");
    EXPECT_EQ(field->ValueGetF(), 1);
}

TEST_F(ctrlEdit_ValTest, PasteIsOff)
{
    ctrlEdit_Val* field = Field();
    fakeClipboard("77");
    field->Focus();
    With(keyShift, keyInsert);
    EXPECT_EQ(field->Name(), "0");
}

// --- Wheel

TEST_F(ctrlEdit_ValTest, TwoHalvesOfAWheelStepAreOne)
{
    ctrlEdit_Val* field = Field(ctrlEditInteger);
    field->Value(50);
    MoveTo(13);
    Turn(60);
    EXPECT_EQ(field->ValueGetI(), 50);
    Turn(60);
    EXPECT_EQ(field->ValueGetI(), 51);
    EXPECT_EQ(Changes, 1);
    Turn(-240);
    EXPECT_EQ(field->ValueGetI(), 49);
    Turn(180);
    EXPECT_EQ(field->ValueGetI(), 50);
    Turn(60);
    EXPECT_EQ(field->ValueGetI(), 51) << "the half that was left";
}

struct wheelRow {
    const char* Text;  // of the value, with two decimals
    uint64_t Caret;
    double Change;
};

TEST_F(ctrlEdit_ValTest, TheWheelStepsTheDigitUnderThePointer)
{
    const wheelRow rows[] = {
        {"234.56", 3, 1},   {"234.56", 2, 10},   {"234.56", 1, 100}, {"234.56", 4, 1},
        {"234.56", 5, 0.1}, {"234.56", 6, 0.01}, {"-34.56", 1, 100}, {"-34.56", 2, 10},
    };
    for (const wheelRow& row : rows) {
        ctrlEdit_Val* field = Between(-1000, 1000);
        field->Decimals(2);
        const double before = std::stod(row.Text);
        field->Value(before);
        ASSERT_EQ(field->Name(), row.Text);
        MoveTo(2 + static_cast<int32_t>(std::ceil(5.5 * static_cast<double>(row.Caret))));
        Turn(120);
        EXPECT_NEAR(field->ValueGetF(), before + row.Change, 1e-9) << row.Caret;
        field->Destroy();
        MoveTo(13, 60);
    }
}

TEST_F(ctrlEdit_ValTest, ALeadingOneGivesWayToTheNextDigitOnTheWayDown)
{
    ctrlEdit_Val* field = Field(ctrlEditInteger);
    field->Range(0, 10000);
    field->Value(1000);
    MoveTo(8);
    Turn(-120);
    EXPECT_EQ(field->ValueGetI(), 900);
    Turn(-120);
    EXPECT_EQ(field->ValueGetI(), 800);
    field->Value(1000);
    Toolkit().PumpPending();
    Turn(120);
    EXPECT_EQ(field->ValueGetI(), 2000);
}

TEST_F(ctrlEdit_ValTest, TheWheelCommitsWhatWasTyped)
{
    ctrlEdit_Val* field = Field(ctrlEditInteger);
    Click(8);
    Type("42");
    MoveTo(13);
    Turn(120);
    EXPECT_FALSE(field->HasFocus());
    EXPECT_EQ(field->ValueGetI(), 43);
    EXPECT_EQ(Changes, 2);
}

TEST_F(ctrlEdit_ValTest, AStepOfTheWheelIsNoLessThanTheStepItSnapsTo)
{
    ctrlEdit_Val* field = Field();
    field->ValStyleSet(styleValSnap);
    field->Step(25);
    field->Value(50);
    MoveTo(13);
    Turn(120);
    EXPECT_EQ(field->ValueGetF(), 75);
}

TEST_F(ctrlEdit_ValTest, AWheelElsewhereOrOverADisplayDoesNothing)
{
    ctrlEdit_Val* field = Field(ctrlEditInteger);
    MoveTo(8, 60);
    Turn(120);
    field->StyleClear(styleFocusable);
    MoveTo(8);
    Turn(120);
    EXPECT_EQ(field->ValueGetI(), 0);
}

TEST_F(ctrlEdit_ValTest, AnEditMayGoInTheChangeOfItsWheel)
{
    ctrlEdit_Val* field = Field(ctrlEditInteger);
    const ctrlLife life(field);
    field->OnChange = [field] { field->Destroy(); };
    MoveTo(8);
    Turn(120);
    EXPECT_FALSE(life);
}

// --- Arrows and drag

TEST_F(ctrlEdit_ValTest, TheArrowsStepByTheStep)
{
    ctrlEdit_Val* field = Field();
    field->EditStyleSet(styleSpinArrows);
    field->Step(2.5);
    Toolkit().PumpPending();
    // The column has the pixels from 86 to 99.
    Click(90, 5);
    EXPECT_EQ(Toolkit().CursorId, cursorHand);
    EXPECT_TRUE(field->HasState(stateSpinUpper));
    EXPECT_EQ(field->ValueGetF(), 2.5);
    fakeMouseDouble();
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_EQ(field->ValueGetF(), 5);
    Click(90, 15);
    EXPECT_TRUE(field->HasState(stateSpinLower));
    EXPECT_FALSE(field->HasState(stateSpinUpper));
    EXPECT_EQ(field->ValueGetF(), 2.5);
    EXPECT_EQ(Changes, 3);
    MoveTo(50);
    EXPECT_FALSE(field->HasState(stateSpinLower));
    EXPECT_EQ(Toolkit().CursorId, cursorText);
    MoveTo(50, 60);
    EXPECT_FALSE(field->CaptureHeld());
}

TEST_F(ctrlEdit_ValTest, TheArrowsAreDrawnBesideEachOther)
{
    ctrlEdit_Val* field = Field();
    fakeClearDraws();
    field->EditStyleSet(styleSpinArrows | styleSpinDrop);
    EXPECT_EQ(Drawn({"figure"}).size(), 3U);
    const std::vector<drawPoint> lower = fakeFigure();
    ASSERT_EQ(lower.size(), 3U);
    // The square of the drop arrow has the pixels from 81 to 99, the column the 13 before it.
    EXPECT_FLOAT_EQ(lower[1].X, 74.5F);
    EXPECT_FLOAT_EQ(lower[1].Y, 16.0F);
    EXPECT_FLOAT_EQ(lower[0].X, 74.5F - 4.0F);
    EXPECT_FLOAT_EQ(lower[0].Y, 12.0F);
    MoveTo(70, 5);
    EXPECT_TRUE(field->HasState(stateSpinUpper));
    MoveTo(85, 5);
    EXPECT_TRUE(field->HasState(stateSpinDrop));
    field->Invalidate(true);
    EXPECT_THAT(Drawn({"figure"}), Contains(HasSubstr("width 2")));
}

TEST_F(ctrlEdit_ValTest, AnEditMayGoInTheChangeOfItsArrow)
{
    ctrlEdit_Val* field = Field();
    field->EditStyleSet(styleSpinArrows);
    Toolkit().PumpPending();
    const ctrlLife life(field);
    field->OnChange = [field] { field->Destroy(); };
    Click(90, 5);
    EXPECT_FALSE(life);
}

TEST_F(ctrlEdit_ValTest, ADragBeyondTheFieldStepsOnceAPixel)
{
    ctrlEdit_Val* field = Field();
    field->Value(50);
    MoveTo(50);
    fakeMousePress();
    MoveTo(50, 1);
    EXPECT_EQ(field->ValueGetF(), 50);
    EXPECT_FALSE(field->HasState(stateSpinDrag));
    for (int32_t y = 0; y >= -9; --y)
        MoveTo(50, y);
    EXPECT_TRUE(field->HasState(stateSpinDrag));
    EXPECT_FALSE(field->HasFocus());
    EXPECT_EQ(field->ValueGetF(), 60);
    MoveTo(50, -19);
    EXPECT_EQ(field->ValueGetF(), 70);
    MoveTo(50, -14);
    EXPECT_EQ(field->ValueGetF(), 65);
    MoveTo(50, 10);
    MoveTo(50, 24);
    EXPECT_EQ(field->ValueGetF(), 60);
    fakeMouseRelease();
    MoveTo(50, 60);
    EXPECT_FALSE(field->HasState(stateSpinDrag));
    MoveTo(50, 10);
    Turn(120);
    EXPECT_EQ(field->ValueGetF(), 61) << "the wheel is not held up by it";
}

TEST_F(ctrlEdit_ValTest, ADragMayTakeMorePixelsForMoreSteps)
{
    ctrlEdit_Val* field = Field();
    field->DragPixels = 4;
    field->DragFactor = 3;
    MoveTo(50);
    fakeMousePress();
    MoveTo(50, -8);
    EXPECT_EQ(field->ValueGetF(), 6);
    MoveTo(50, -10);
    EXPECT_EQ(field->ValueGetF(), 6);
    MoveTo(50, -11);
    EXPECT_EQ(field->ValueGetF(), 9) << "what is left of a drag is kept";
    field->DragPixels = 0;
    MoveTo(50, -12);
    EXPECT_EQ(field->ValueGetF(), 12);
    fakeMouseRelease();
}

TEST_F(ctrlEdit_ValTest, AFingerDragsToo)
{
    ctrlEdit_Val* field = Field();
    const auto pan = [](windowGestureKind kind, int32_t y, bool first) {
        fakeGesture({.Kind = kind, .First = first, .X = WindowAt + EditAt + 50, .Y = WindowAt + EditAt + y});
        Toolkit().PumpPending();
    };
    pan(windowGestureKind::Begin, 10, false);
    pan(windowGestureKind::Pan, 10, true);
    pan(windowGestureKind::Pan, 5, false);
    pan(windowGestureKind::Pan, -4, false);
    EXPECT_EQ(field->ValueGetF(), 5);
    pan(windowGestureKind::End, -4, false);
    EXPECT_FALSE(field->CaptureHeld());
}

TEST_F(ctrlEdit_ValTest, AnEditMayGoInTheChangeOfItsDrag)
{
    for (const char* typed : {"", "7"}) {
        ctrlEdit_Val* field = Field();
        const ctrlLife life(field);
        field->OnChange = [field] { field->Destroy(); };
        MoveTo(50);
        fakeMousePress();
        Toolkit().PumpPending();
        Type(typed);
        MoveTo(50, -9);
        EXPECT_FALSE(life);
        fakeMouseRelease();
        MoveTo(50, 60);
    }
}

}  // namespace
