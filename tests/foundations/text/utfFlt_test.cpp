#include "foundations/text/utfNumber.h"

#include "foundations/text/utfEdit.h"
#include "foundations/text/utfLocale.h"
#include "tests/fakes/fakes.h"
#include "tests/foundations/text/reference.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

constexpr utfFmt FieldFlags[] = {utfFmt::AltForm,   utfFmt::DotPoint,  utfFmt::PlusSign,
                                 utfFmt::LeftAlign, utfFmt::SpaceSign, utfFmt::ZeroFill};
constexpr char Conversions[] = {'f', 'F', 'e', 'E', 'g', 'G', '?'};
constexpr int Widths[] = {-1, 0, 1, 5, 12, 40};
constexpr int Digits[] = {-1, 0, 1, 2, 3, 6, 8, 15, 17, 25, 330};

utfFlags flagSet(unsigned bits)
{
    utfFlags flags;
    for (size_t index = 0; index < std::size(FieldFlags); ++index) {
        if ((bits >> index & 1) != 0)
            flags.Add(FieldFlags[index]);
    }
    return flags;
}

template <class... Arguments>
std::string format(Arguments... arguments)
{
    std::string text;
    text << utfFlt(arguments...);
    return text;
}

void setPoint(const std::string& point)
{
    fakeLocale(localeItem::DecimalPoint, 0, point);
    utfLocaleFill();
}

class utfFltTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        setPoint(",");
    }
    void TearDown() override
    {
        fakeReset();
        utfLocaleFill();
    }
};

utfFlt descriptor(char conversion, double value, unsigned flags, int width, int digits)
{
    utfFlt number(conversion, value, digits);
    number.Width = width;
    number.Flags = flagSet(flags);
    return number;
}

testing::AssertionResult agrees(const utfFlt& number)
{
    std::string text;
    text << number;
    const std::string expected = reference::floating(number, utfLocale.DecimalPoint);
    if (text == expected)
        return testing::AssertionSuccess();
    std::ostringstream value;
    value << std::hexfloat << number.Value;
    return testing::AssertionFailure()
           << value.str() << " with '" << number.Conv << "', flags " << number.Flags.Stored() << ", width "
           << number.Width << ", digits " << number.Digits << ": [" << text << "], by the rules [" << expected
           << "]";
}

}  // namespace

TEST_F(utfFltTest, TakesItsArgumentsByType)
{
    const utfFlt number(utfFmt::ZeroFill, utfFmt::PlusSign, 'f', 2.5, 12u, 3);
    EXPECT_EQ(number.Flags.Stored(), 0x804);
    EXPECT_EQ(number.Conv, 'f');
    EXPECT_EQ(number.Value, 2.5);
    EXPECT_EQ(number.Width, 12);
    EXPECT_EQ(number.Digits, 3);

    const utfFlt defaults('g', 1.0);
    EXPECT_EQ(defaults.Flags.Stored(), 0);
    EXPECT_EQ(defaults.Width, 0);
    EXPECT_EQ(defaults.Digits, 6);
}

TEST_F(utfFltTest, WritesNoNumberAndInfinityBare)
{
    for (const char conversion : Conversions) {
        EXPECT_EQ(format(utfFmt::PlusSign, conversion, NotANumber, 9u), "NaN");
        EXPECT_EQ(format(utfFmt::ZeroFill, conversion, -NotANumber, 9u), "NaN");
        EXPECT_EQ(format(utfFmt::PlusSign, conversion, Infinity, 9u), "\u221E");
        EXPECT_EQ(format(utfFmt::ZeroFill, conversion, -Infinity, 9u), "\u221E");
    }
}

TEST_F(utfFltTest, GivesMinusZeroNoSign)
{
    EXPECT_EQ(format('f', -0.0, 0u, 1), "0,0");
    EXPECT_EQ(format(utfFmt::PlusSign, 'f', -0.0, 0u, 0), "+0");
}

TEST_F(utfFltTest, KeepsTheSignOfWhatRoundsToZero)
{
    EXPECT_EQ(format('f', -0.001, 0u, 1), "-0,0");
}

TEST_F(utfFltTest, RoundsHalvesUp)
{
    EXPECT_EQ(format('f', 0.5, 0u, 0), "1");
    EXPECT_EQ(format('f', 1.5, 0u, 0), "2");
    EXPECT_EQ(format('f', 2.5, 0u, 0), "3");
    EXPECT_EQ(format('f', -2.5, 0u, 0), "-3");
    EXPECT_EQ(format('f', 0.25, 0u, 1), "0,3");
}

TEST_F(utfFltTest, ForcesThePointInTheAlternateForm)
{
    EXPECT_EQ(format(utfFmt::AltForm, 'f', 2.5, 0u, 0), "3,");
    EXPECT_EQ(format(utfFmt::AltForm, utfFmt::DotPoint, 'f', 2.5, 0u, 0), "3.");
    EXPECT_EQ(format(utfFmt::AltForm, utfFmt::DotPoint, 'e', 2.0, 0u, 0), "2.e+00");
}

TEST_F(utfFltTest, KeepsTheZerosOfTheGeneralFormInTheAlternateForm)
{
    EXPECT_EQ(format(utfFmt::AltForm, utfFmt::DotPoint, 'g', 100.0, 0u, 8), "100.00000");
    EXPECT_EQ(format(utfFmt::AltForm, utfFmt::DotPoint, 'g', 0.0, 0u, 3), "0.00");
}

TEST_F(utfFltTest, ChoosesTheGeneralFormByTheSize)
{
    struct {
        double Value;
        int Digits;
        const char* Text;
    } const rows[] = {
        {100.0, 8, "100"},  {0.0001, 8, "0.0001"},       {0.00001, 8, "1e-05"}, {0.0, 8, "0"},
        {1e8, 8, "1e+08"},  {12345678.5, 8, "12345678"}, {1e100, 8, "1e+100"},  {5.0, 0, "5"},
        {50.0, 0, "5e+01"}, {47.285233, 8, "47.285233"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(format(utfFmt::DotPoint, 'g', row.Value, 0u, row.Digits), row.Text);
    EXPECT_EQ(format('G', 1e-12, 0u, 12), "1E-12");
}

TEST_F(utfFltTest, CutsTheGeneralFormBehindItsDigits)
{
    EXPECT_EQ(format(utfFmt::DotPoint, 'g', 123.456789012, 0u, 8), "123.45678");
}

TEST_F(utfFltTest, RoundsTheGeneralFormToDecimalsFirst)
{
    EXPECT_EQ(format(utfFmt::DotPoint, 'g', 0.00004, 0u, 4), "0");
    EXPECT_EQ(format(utfFmt::DotPoint, 'e', 0.0004, 0u, 2), "0.00e+00");
    EXPECT_EQ(format(utfFmt::DotPoint, 'e', 0.06, 0u, 1), "1.0e-01");
}

TEST_F(utfFltTest, WritesExponentsOfTwoDigitsAtLeast)
{
    EXPECT_EQ(format(utfFmt::DotPoint, 'e', 0.0, 0u, 2), "0.00e+00");
    EXPECT_EQ(format(utfFmt::DotPoint, 'e', 123456.0, 0u, 2), "1.23e+05");
    EXPECT_EQ(format(utfFmt::DotPoint, 'E', 1e100, 0u, 0), "1E+100");
}

TEST_F(utfFltTest, CarriesNothingIntoEarlierDigits)
{
    // The nearest double to 9.995 lies below it.
    EXPECT_EQ(format(utfFmt::DotPoint, 'f', 9.995, 0u, 2), "9.99");
    EXPECT_EQ(format(utfFmt::DotPoint, 'f', 99.9999999, 0u, 2), "100.00");
    // The logarithm of what is this close to a thousand rounds up to 3.
    EXPECT_EQ(format(utfFmt::DotPoint, 'f', std::nextafter(1000.0, 0.0), 0u, 400).substr(0, 7), "0999.99");
}

TEST_F(utfFltTest, TakesItsPointFromTheLocale)
{
    EXPECT_EQ(format('f', 1.5, 0u, 1), "1,5");
    EXPECT_EQ(format(utfFmt::DotPoint, 'f', 1.5, 0u, 1), "1.5");
    setPoint("\u066B");
    EXPECT_EQ(format('f', 1.5, 0u, 1), "1\u066B"
                                       "5");
    EXPECT_EQ(format('g', 2.0, 0u, 5), "2");
    EXPECT_EQ(format('f', 1.5, 6u, 1), "  1\u066B"
                                       "5")
        << "the width counts bytes";
    setPoint("");
    EXPECT_EQ(format('f', 1.5, 0u, 1), "15");
    EXPECT_EQ(format('g', 100.0, 0u, 8), "100");
}

TEST_F(utfFltTest, FillsItsField)
{
    EXPECT_EQ(format(utfFmt::ZeroFill, utfFmt::PlusSign, 'f', 1.5, 8u, 2), "+0001,50");
    EXPECT_EQ(format('f', -1.5, 8u, 2), "   -1,50");
    EXPECT_EQ(format(utfFmt::LeftAlign, 'f', -1.5, 8u, 2), "-1,50   ");
    EXPECT_EQ(format(utfFmt::SpaceSign, 'f', 1.5, 0u, 1), " 1,5");
    EXPECT_EQ(format('f', 1.5, static_cast<unsigned>(-8), 1), "1,5");
}

TEST_F(utfFltTest, LeavesTheTextBeforeItAlone)
{
    std::string text = "1000";
    text << utfFlt('g', 0.0, 0u, 3) << utfFlt('g', 20.0, 4u, 3) << utfFlt(utfFmt::LeftAlign, 'f', 1.0, 3u, 0);
    EXPECT_EQ(text, "10000  201  ");
}

TEST_F(utfFltTest, KeepsValuesWhoseRoundingOverflows)
{
    // At this size there are no decimals to round.
    EXPECT_EQ(format(utfFmt::DotPoint, 'g', DBL_MAX, 0u, 6), "1.79769e+308");
    EXPECT_EQ(format(utfFmt::DotPoint, 'f', 1e308, 0u, 6).size(), 309u + 1 + 6);
    EXPECT_EQ(format(utfFmt::DotPoint, 'f', 1.5, 0u, 1000).substr(0, 5), "1.500");
    EXPECT_EQ(format(utfFmt::DotPoint, 'f', 0.0, 0u, 1000), "0." + std::string(1000, '0'));
}

TEST_F(utfFltTest, WritesTheSmallestNumbers)
{
    EXPECT_EQ(format(utfFmt::DotPoint, 'e', DBL_TRUE_MIN, 0u, 400).substr(0, 6), "4.9406");
    EXPECT_EQ(format(utfFmt::DotPoint, 'g', DBL_MIN, 0u, 320).substr(0, 6), "2.2250");
    EXPECT_EQ(format(utfFmt::DotPoint, 'g', DBL_TRUE_MIN, 0u, 8), "0");
}

TEST_F(utfFltTest, WritesAnyNumberOfDigits)
{
    constexpr int Million = 1000000;
    EXPECT_EQ(format(utfFmt::DotPoint, 'f', -2.5, 0u, Million), "-2.5" + std::string(Million - 1, '0'));
    EXPECT_EQ(format(utfFmt::DotPoint, 'g', -2.5, 0u, std::numeric_limits<int>::max()), "-2.5");
    EXPECT_EQ(format(utfFmt::DotPoint, 'g', 0.0001220703125, 0u, std::numeric_limits<int>::max()),
              "0.0001220703125");
    EXPECT_EQ(
        format(utfFmt::DotPoint, 'f', -2.5, static_cast<unsigned>(Million), std::numeric_limits<int>::min())
            .size(),
        size_t{Million});
}

TEST_F(utfFltTest, AgreesWithThePlainRules)
{
    const double values[] = {
        0.0,      -0.0,     1.0,        -1.0,       0.5,     2.5,          9.995, 99.9999999,
        1e-5,     1e-4,     123.456789, -47.285233, 1e15,    1e22,         1e23,  9.999999999999998e22,
        1e300,    1e308,    DBL_MAX,    -DBL_MAX,   DBL_MIN, DBL_TRUE_MIN, 1e-10, NotANumber,
        Infinity, -Infinity};
    for (const double value : values) {
        for (const char conversion : {'f', 'e', 'g'}) {
            for (const int digits : {-1, 0, 1, 2, 6, 8, 17}) {
                for (unsigned flags = 0; flags < 1u << std::size(FieldFlags); ++flags) {
                    for (const int width : Widths)
                        ASSERT_TRUE(agrees(descriptor(conversion, value, flags, width, digits)));
                }
            }
        }
    }
}

TEST_F(utfFltTest, AgreesWithThePlainRulesForRandomNumbers)
{
    std::mt19937_64 random(3);
    const auto pick = [&](const auto& choices) { return choices[random() % std::size(choices)]; };
    for (int index = 0; index < 60000; ++index) {
        const auto flags = static_cast<unsigned>(random() % (1u << std::size(FieldFlags)));
        const double anyBits = std::bit_cast<double>(random());
        const double everyday = static_cast<double>(static_cast<int64_t>(random())) *
                                std::pow(0.1, static_cast<int>(random() % 24));
        ASSERT_TRUE(agrees(descriptor(pick(Conversions), anyBits, flags, pick(Widths), pick(Digits))));
        ASSERT_TRUE(agrees(descriptor(pick(Conversions), everyday, flags, pick(Widths), pick(Digits))));
    }
}

TEST_F(utfFltTest, AgreesWithThePlainRulesAroundPowersOfTen)
{
    for (int power = -30; power <= 40; ++power) {
        double value = std::pow(10.0, power);
        for (int step = 0; step < 30; ++step)
            value = std::nextafter(value, 0.0);
        for (int step = 0; step < 60; ++step, value = std::nextafter(value, Infinity)) {
            for (const char conversion : {'f', 'e', 'g'}) {
                for (const int digits : {0, 2, 8, 17, 330})
                    ASSERT_TRUE(agrees(descriptor(conversion, value, 2, 0, digits)));
            }
        }
    }
}

TEST_F(utfFltTest, WritesOnlyDigitsWhateverTheNumber)
{
    std::mt19937_64 random(4);
    for (int index = 0; index < 50000; ++index) {
        const double value = std::bit_cast<double>(random());
        if (!std::isfinite(value))
            continue;
        const std::string text = format(utfFmt::DotPoint, 'e', value, 0u, static_cast<int>(random() % 20));
        ASSERT_EQ(text.find_first_not_of("0123456789.e+-"), std::string::npos) << text;
    }
}
