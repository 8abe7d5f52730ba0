#include "foundations/text/utfParse.h"

#include "foundations/text/utfLocale.h"
#include "foundations/text/utfNumber.h"
#include "tests/fakes/fakes.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

struct parsed {
    double Value;
    std::string Rest;

    bool operator==(const parsed&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const parsed& result)
{
    return stream << result.Value << " and \"" << result.Rest << '"';
}

parsed parse(const std::string& text, bool dotOnly = false)
{
    const char* end = nullptr;
    const double value = utfParseFlt(text.c_str(), &end, dotOnly);
    return {value, end};
}

std::string repeat(const std::string& piece, size_t count)
{
    std::string text;
    for (size_t index = 0; index < count; ++index)
        text += piece;
    return text;
}

class utfParseFltTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        fakeLocale(localeItem::DecimalPoint, 0, ",");
        utfLocaleFill();
    }
    void TearDown() override
    {
        fakeReset();
        utfLocaleFill();
    }
};

}  // namespace

TEST_F(utfParseFltTest, ReadsNumbersAndTellsWhereTheyStop)
{
    struct {
        const char* Text;
        double Value;
        const char* Rest;
    } const rows[] = {
        {"0", 0, ""},           {"12", 12, ""},
        {" \t 12 3", 12, " 3"}, {"+7", 7, ""},
        {"-7", -7, ""},         {"1.5", 1.5, ""},
        {"1,5", 1.5, ""},       {"1,5,6", 1.5, ",6"},
        {"1.5.6", 1.5, ".6"},   {".5", 0.5, ""},
        {"5.", 5, ""},          {"-.5x", -0.5, "x"},
        {"007", 7, ""},         {"18446744073709551616", 18446744073709551616.0, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parse(row.Text), (parsed{row.Value, row.Rest})) << row.Text;
}

TEST_F(utfParseFltTest, StopsBehindBlanksAndSignWhenThereIsNoNumber)
{
    struct {
        const char* Text;
        const char* Rest;
    } const rows[] = {
        {"", ""},      {"abc", "abc"}, {"  abc", "abc"}, {" -abc", "abc"}, {"+ 5", " 5"},
        {"--5", "-5"}, {"\n5", "\n5"}, {"-", ""},        {"e5x", "x"},     {".", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parse(row.Text), (parsed{0, row.Rest})) << row.Text;
}

TEST_F(utfParseFltTest, NeedsNoEnd)
{
    EXPECT_EQ(utfParseFlt("2.5"), 2.5);
}

TEST_F(utfParseFltTest, ReadsExponents)
{
    struct {
        const char* Text;
        double Value;
        const char* Rest;
    } const rows[] = {
        {"1e", 1, "e"},
        {"1ex", 1, "ex"},
        {"1e.5", 1, "e.5"},
        {"1e 5", 1, "e 5"},
        {"1.5e+1", 15, ""},
        {"1E3", 1000, ""},
        {"1e-05", 1e-5, ""},
        {"1e+", 1, ""},
        {"25e-1z", 2.5, "z"},
        {"2e1e1", 2e10, ""},
        {"1e0.5", std::pow(10.0, 0.5), ""},
        {"1e0,5", std::pow(10.0, 0.5), ""},
        {"-1e2", -100, ""},
        {"1e308", 1e308, ""},
        {"1e-320", 1e-320, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parse(row.Text), (parsed{row.Value, row.Rest})) << row.Text;
}

TEST_F(utfParseFltTest, TakesThePointOfTheLocaleUnlessToldNotTo)
{
    EXPECT_EQ(parse("1,5", true), (parsed{1, ",5"}));
    EXPECT_EQ(parse("1.5", true), (parsed{1.5, ""}));
    EXPECT_EQ(parse("1e1,5", true), (parsed{10, ",5"})) << "the flag holds for the exponent too";
}

TEST_F(utfParseFltTest, KnowsALocalePointByItsFirstByte)
{
    fakeLocale(localeItem::DecimalPoint, 0, "\u066B");
    utfLocaleFill();
    EXPECT_EQ(parse("1\u066B"
                    "5"),
              (parsed{1, "\xAB"
                         "5"}));
}

TEST_F(utfParseFltTest, StaysWithinTheTextWhenTheLocaleHasNoPoint)
{
    fakeLocale(localeItem::DecimalPoint, 0, "");
    utfLocaleFill();
    EXPECT_EQ(parse(std::string("1\0"
                                "5",
                                3)),
              (parsed{1, ""}));
    EXPECT_EQ(parse("1.5"), (parsed{1.5, ""}));
}

TEST_F(utfParseFltTest, RoundsTheMantissaBeforeItIsScaled)
{
    // From 2^52 on the half that is added for rounding makes odd mantissas even.
    double unit = 1;
    for (int decimal = 0; decimal < 16; ++decimal)
        unit *= 0.1;
    EXPECT_EQ(parse("0.4503599627370497").Value, 4503599627370498.0 * unit);
}

TEST_F(utfParseFltTest, OverflowsToInfinityAndUnderflowsToZero)
{
    EXPECT_EQ(parse(std::string(400, '9')).Value, Infinity);
    EXPECT_EQ(parse("-" + std::string(400, '9')).Value, -Infinity);
    EXPECT_EQ(parse("1e400").Value, Infinity);
    EXPECT_EQ(parse("1e-400").Value, 0.0);
    EXPECT_EQ(parse("1e1e9").Value, Infinity);
    EXPECT_EQ(parse("1e-1e9").Value, 0.0);
}

TEST_F(utfParseFltTest, IgnoresDecimalsBeyondWhatANumberHolds)
{
    EXPECT_EQ(parse("0." + std::string(400, '0')), (parsed{0, ""}));
    EXPECT_NEAR(parse("0." + std::string(400, '3')).Value, 1 / 3.0, 1e-12);
    EXPECT_NEAR(parse("1." + std::string(400, '0') + "7").Value, 1, 1e-12);
    EXPECT_EQ(parse(std::string(400, '9') + "." + std::string(400, '9')), (parsed{Infinity, ""}));
    EXPECT_EQ(parse("0." + std::string(400, '0') + "1"), (parsed{0, ""}));
}

TEST_F(utfParseFltTest, KeepsZeroAndInfinityWhateverTheExponent)
{
    EXPECT_EQ(parse("0e400"), (parsed{0, ""}));
    EXPECT_EQ(parse(std::string(400, '9') + "e-400"), (parsed{Infinity, ""}));
}

TEST_F(utfParseFltTest, EndsTheNumberAtTheThirtyThirdExponent)
{
    EXPECT_EQ(parse("1" + repeat("e0", 32)).Rest, "");
    EXPECT_EQ(parse("1" + repeat("e0", 33)).Rest, "e0");
    EXPECT_EQ(parse("1" + repeat("e1", 1000000)).Rest.size(), 2 * (1000000u - 32));
}

TEST_F(utfParseFltTest, ReadsBackWhatTheExponentFormWrites)
{
    std::mt19937_64 random(5);
    for (int index = 0; index < 50000; ++index) {
        // From the size where eight decimals are left of the rounding up to the largest.
        const double value = std::ldexp(1.0 + std::ldexp(static_cast<double>(random() >> 12), -52),
                                        static_cast<int>(random() % 1020));
        for (const char conversion : {'e', 'g'}) {
            std::string text;
            text << utfFlt(conversion, value, 0u, 15);
            const parsed result = parse(text);
            ASSERT_EQ(result.Rest, "") << text;
            // The digits are cut behind the fifteenth, and the powers of 0.1 are off by 2 in the last place
            // or so.
            ASSERT_NEAR(result.Value / value, 1.0, 2e-13) << text;
        }
    }
}
