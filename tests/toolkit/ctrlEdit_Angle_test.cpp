#include "tests/toolkit/editTest.h"

#include "toolkit/ctrlEdit_Angle.h"

#include <cmath>
#include <limits>

using testing::EndsWith;

namespace {

class ctrlEdit_AngleTest : public editTest
{
protected:
    // The text is right-aligned and ends at 197; characters are 5.5 pixels wide.
    ctrlEdit_Angle* Field(double degrees, uint32_t flags = 0)
    {
        auto* field = new ctrlEdit_Angle(Main, flags);
        field->Width(200);
        field->Value(degrees);
        return Placed(field);
    }
    static void WheelAt(const ctrlEdit_Angle& field, uint64_t characters, uint64_t position, int32_t turn)
    {
        const auto width = static_cast<int32_t>(std::ceil(5.5 * static_cast<double>(characters)));
        MoveTo(198 - width - 1 + static_cast<int32_t>(5.5 * static_cast<double>(position)) + 1);
        ASSERT_TRUE(field.CaptureHeld());
        Turn(turn);
    }
};

struct textRow {
    double Degrees;
    int32_t Decimals;
    uint32_t Flags;
    const char* Text;
};

TEST_F(ctrlEdit_AngleTest, AnAngleIsShownInDegreesMinutesAndSeconds)
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const textRow rows[] = {
        {0, 0, ctrlEditLatitude, "0\u00BA00\u203200\u2033N"},
        {-12.582222222222, 0, ctrlEditLatitude, "12\u00BA34\u203256\u2033S"},
        {12.582222222222, 2, 0, "12\u00BA34\u203256.00\u2033E"},
        {-179.999999999, 2, 0, "180\u00BA00\u203200.00\u2033W"},
        {500, 0, 0, "180\u00BA00\u203200\u2033E"},
        {-infinite, 0, ctrlEditLatitude, "90\u00BA00\u203200\u2033S"},
        {1, 1000, 0, "1\u00BA00\u203200.000000000\u2033E"},
        {1, -1000, 0, "1\u00BA00\u203200\u2033E"},
    };
    for (const textRow& row : rows) {
        ctrlEdit_Angle* field = Field(0, row.Flags);
        field->Decimals(row.Decimals);
        field->Value(row.Degrees);
        field->Value(std::numeric_limits<double>::quiet_NaN());
        std::string shown = field->Name();
        std::replace(shown.begin(), shown.end(), ',', '.');
        EXPECT_EQ(shown, row.Text);
    }
}

TEST_F(ctrlEdit_AngleTest, ALongitudeBeyondItsLimitIsClamped)
{
    ctrlEdit_Angle* field = Field(5);
    field->Focus();
    Type("2000000");
    Press(keyEnter, "\r");
    EXPECT_EQ(field->Value(), 180);
    EXPECT_EQ(field->Name(), "180\u00BA00\u203200\u2033E");
    EXPECT_EQ(Changes, 1);
}

TEST_F(ctrlEdit_AngleTest, TypedDigitsOverwriteAndJumpOverTheMarks)
{
    ctrlEdit_Angle* field = Field(5, ctrlEditLatitude);
    field->Focus();
    EXPECT_EQ(field->Name(), "05\u00BA00\u203200\u2033N");
    Type("471530");
    EXPECT_EQ(field->Value(), 5) << "until the commit";
    Main->Focus();
    EXPECT_DOUBLE_EQ(field->Value(), 47 + (15 + 30 / 60.0) / 60);
}

TEST_F(ctrlEdit_AngleTest, ALetterChoosesTheHemisphere)
{
    ctrlEdit_Angle* field = Field(12.5, ctrlEditLatitude);
    field->Focus();
    Type("S");
    EXPECT_EQ(field->Value(), -12.5);
    EXPECT_THAT(field->Name(), EndsWith("S"));
    Type("n");
    EXPECT_EQ(field->Value(), 12.5);
    Type("w");
    EXPECT_EQ(field->Value(), 12.5);
    EXPECT_EQ(Changes, 2);
    ctrlEdit_Angle* longitude = Field(0);
    longitude->Focus();
    Type("w");
    EXPECT_THAT(longitude->Name(), EndsWith("W"));
    Type("0100000");
    Press(keyEnter, "\r");
    EXPECT_EQ(longitude->Value(), -10);
}

TEST_F(ctrlEdit_AngleTest, ADoubleClickOnTheLetterTurnsItOver)
{
    ctrlEdit_Angle* field = Field(12.5);
    MoveTo(194);
    fakeMouseDouble();
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_EQ(field->Value(), -12.5);
    MoveTo(180);
    fakeMouseDouble();
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_EQ(field->Value(), -12.5);
    EXPECT_EQ(field->SelectionEnd(), field->Caret() + 2) << "all but the letter";
}

TEST_F(ctrlEdit_AngleTest, AnAngleThatNobodyTypedIntoIsKeptExactly)
{
    const double exact = 12.3456789012345;
    ctrlEdit_Angle* field = Field(exact);
    field->Focus();
    Press(keyEnter, "\r");
    EXPECT_EQ(field->Value(), exact);
    EXPECT_EQ(Changes, 0);
}

struct wheelRow {
    uint64_t Position;
    double Weight;
};

TEST_F(ctrlEdit_AngleTest, TheWheelStepsTheDigitUnderThePointer)
{
    // 123o34'56.78"E in bytes, by which the fake measures: the marks have 2, 3 and 3.
    const wheelRow rows[] = {
        {1, 10},           {2, 1},           {5, 10 / 60.0},     {6, 1 / 60.0},
        {10, 10 / 3600.0}, {11, 1 / 3600.0}, {13, 0.1 / 3600.0}, {14, 0.01 / 3600.0},
    };
    const double degrees = 123 + (34 + 56.78 / 60) / 60;
    for (const wheelRow& row : rows) {
        ctrlEdit_Angle* field = Field(degrees);
        field->Decimals(2);
        Toolkit().PumpPending();
        WheelAt(*field, 19, row.Position, 120);
        EXPECT_NEAR(field->Value(), degrees + row.Weight, 1e-9) << row.Position;
        field->Destroy();
        MoveTo(5, 60);
    }
}

}  // namespace
