#include "foundations/text/utfNumber.h"

#include "foundations/text/utfEdit.h"
#include "tests/foundations/text/reference.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr int64_t Smallest = std::numeric_limits<int64_t>::min();
constexpr uint64_t Largest = std::numeric_limits<uint64_t>::max();

constexpr utfFmt AllFlags[] = {utfFmt::AltForm, utfFmt::DotPoint, utfFmt::PlusSign,  utfFmt::LeftAlign,
                               utfFmt::Flag4,   utfFmt::Flag5,    utfFmt::SpaceSign, utfFmt::Flag7,
                               utfFmt::Flag8,   utfFmt::Flag9,    utfFmt::Flag10,    utfFmt::ZeroFill};

constexpr utfFmt FieldFlags[] = {utfFmt::AltForm, utfFmt::PlusSign, utfFmt::LeftAlign, utfFmt::SpaceSign,
                                 utfFmt::ZeroFill};

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
    text << utfInt(arguments...);
    return text;
}

}  // namespace

TEST(utfFlags, StandInTheirStoredOrder)
{
    const uint16_t stored[] = {0x001, 0x002, 0x004, 0x010, 0x020, 0x040,
                               0x008, 0x080, 0x100, 0x200, 0x400, 0x800};
    utfFlags all;
    for (size_t index = 0; index < std::size(AllFlags); ++index) {
        utfFlags one;
        one.Add(AllFlags[index]);
        EXPECT_EQ(one.Stored(), stored[index]) << index;
        EXPECT_FALSE(all.Has(AllFlags[index])) << index;
        all.Add(AllFlags[index]);
        EXPECT_TRUE(all.Has(AllFlags[index])) << index;
    }
    EXPECT_EQ(all.Stored(), 0x0FFF);
}

TEST(utfInt, TakesItsArgumentsByType)
{
    const utfInt number(utfFmt::ZeroFill, utfFmt::AltForm, 'x', uint64_t{7}, 12u, 3);
    EXPECT_EQ(number.Flags.Stored(), 0x801);
    EXPECT_EQ(number.Conv, 'x');
    EXPECT_EQ(number.Value, 7u);
    EXPECT_EQ(number.Width, 12);
    EXPECT_EQ(number.Digits, 3);

    const utfInt defaults('d', int64_t{-1});
    EXPECT_EQ(defaults.Flags.Stored(), 0);
    EXPECT_EQ(defaults.Value, Largest);
    EXPECT_EQ(defaults.Width, 0);
    EXPECT_EQ(defaults.Digits, 1);
}

TEST(utfInt, WritesZeroWithoutDigitsAsBlanks)
{
    EXPECT_EQ(format('d', int64_t{0}, 5u, 0), "     ");
    EXPECT_EQ(format(utfFmt::ZeroFill, 'd', int64_t{0}, 5u, 0), "     ");
    EXPECT_EQ(format(utfFmt::PlusSign, utfFmt::AltForm, 'x', int64_t{0}, 5u, 0), "     ");
    EXPECT_EQ(format('d', int64_t{0}, 0u, 0), "");
    EXPECT_EQ(format('d', int64_t{0}, static_cast<unsigned>(-3), 0), "");
}

TEST(utfInt, WritesOneDigitAtLeast)
{
    EXPECT_EQ(format('d', int64_t{0}), "0");
    EXPECT_EQ(format('u', uint64_t{0}, 0u, -4), "0");
    EXPECT_EQ(format('d', int64_t{7}, 0u, 0), "7");
}

TEST(utfInt, WritesTheFewestDigitsBehindThePrefix)
{
    EXPECT_EQ(format('X', uint64_t{0x1234}, 0u, 16), "0000000000001234");
    EXPECT_EQ(format(utfFmt::AltForm, 'X', uint64_t{0x1234}, 0u, 16), "0X0000000000001234");
    EXPECT_EQ(format(utfFmt::AltForm, 'x', uint64_t{0xABC}, 0u, 4), "0x0abc");
    EXPECT_EQ(format(utfFmt::AltForm, utfFmt::ZeroFill, 'x', uint64_t{0xABC}, 8u), "0000xabc");
}

TEST(utfInt, WritesEveryConversion)
{
    struct {
        char Conv;
        uint64_t Value;
        const char* Text;
    } const rows[] = {
        {'d', 42, "42"},       {'d', Largest, "-1"},
        {'i', Largest, "-1"},  {'u', Largest, "18446744073709551615"},
        {'x', 0xBEEF, "beef"}, {'X', 0xBEEF, "BEEF"},
        {'o', 8, "10"},        {'o', Largest, "1777777777777777777777"},
        {'b', 10, "1010"},     {'z', Largest, "18446744073709551615"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(format(row.Conv, row.Value), row.Text) << row.Conv;
    EXPECT_EQ(format('b', Largest), std::string(64, '1'));
}

TEST(utfInt, WritesTheMostNegativeValue)
{
    EXPECT_EQ(format('d', Smallest), "-9223372036854775808");
    EXPECT_EQ(format('i', Smallest), "-9223372036854775808");
    EXPECT_EQ(format('u', Smallest), "9223372036854775808");
}

TEST(utfInt, FillsItsField)
{
    EXPECT_EQ(format(utfFmt::ZeroFill, 'd', int64_t{-5}, 4u), "-005");
    EXPECT_EQ(format(utfFmt::ZeroFill, utfFmt::PlusSign, 'd', int64_t{5}, 4u), "+005");
    EXPECT_EQ(format(utfFmt::ZeroFill, utfFmt::SpaceSign, 'd', int64_t{5}, 4u), " 005");
    EXPECT_EQ(format(utfFmt::ZeroFill, 'd', int64_t{5}, 4u), "0005");
    EXPECT_EQ(format('d', int64_t{-5}, 4u), "  -5");
    EXPECT_EQ(format(utfFmt::LeftAlign, 'd', int64_t{-5}, 4u), "-5  ");
    EXPECT_EQ(format(utfFmt::LeftAlign, utfFmt::ZeroFill, 'd', int64_t{-5}, 4u), "-5  ");
    EXPECT_EQ(format('d', int64_t{-5}, 2u), "-5");
    EXPECT_EQ(format('d', int64_t{-5}, 1u), "-5");
}

TEST(utfInt, SignsUnsignedConversionsToo)
{
    EXPECT_EQ(format(utfFmt::PlusSign, 'u', uint64_t{7}), "+7");
    EXPECT_EQ(format(utfFmt::PlusSign, utfFmt::SpaceSign, 'x', uint64_t{7}), "+7");
    EXPECT_EQ(format(utfFmt::SpaceSign, 'o', uint64_t{7}), " 7");
}

TEST(utfInt, LeavesTheTextBeforeItAlone)
{
    std::string text = "0 ";
    text << utfInt(utfFmt::ZeroFill, 'd', int64_t{-5}, 4u) << ' ' << utfInt('u', uint64_t{7}, 3u) << '.';
    EXPECT_EQ(text, "0 -005   7.");
}

TEST(utfInt, IgnoresTheFlagsWithoutEffect)
{
    const utfFmt inert[] = {utfFmt::Flag4, utfFmt::Flag5,  utfFmt::Flag7,   utfFmt::Flag8,
                            utfFmt::Flag9, utfFmt::Flag10, utfFmt::DotPoint};
    for (const utfFmt flag : inert)
        EXPECT_EQ(format(flag, 'd', int64_t{5}, 3u), "  5");
}

TEST(utfInt, AgreesWithThePlainRules)
{
    std::vector<uint64_t> values = {0,
                                    1,
                                    9,
                                    10,
                                    255,
                                    0x1234,
                                    1u << 31,
                                    uint64_t{1} << 32,
                                    Largest,
                                    Largest - 4,
                                    static_cast<uint64_t>(Smallest),
                                    static_cast<uint64_t>(Smallest) - 1};
    std::mt19937_64 random(1);
    for (int index = 0; index < 12; ++index)
        values.push_back(random() >> random() % 64);

    for (const uint64_t value : values) {
        for (const char conversion : {'d', 'i', 'u', 'x', 'X', 'o', 'b', '?'}) {
            for (unsigned bits = 0; bits < 1u << std::size(FieldFlags); ++bits) {
                for (const int width : {-1, 0, 1, 5, 12, 40}) {
                    for (const int digits : {-1, 0, 1, 8, 70}) {
                        utfInt number(conversion, value, digits);
                        number.Width = width;
                        number.Flags = flagSet(bits);
                        std::string text;
                        text << number;
                        ASSERT_EQ(text, reference::integer(number))
                            << conversion << value << " flags " << bits << " width " << width << " digits "
                            << digits;
                    }
                }
            }
        }
    }
}

TEST(utfInt, IsReadBackByTheStandardLibrary)
{
    struct {
        char Conv;
        int Base;
    } const rows[] = {{'u', 10}, {'x', 16}, {'X', 16}, {'o', 8}, {'b', 2}};
    std::mt19937_64 random(2);
    for (int index = 0; index < 20000; ++index) {
        const uint64_t value = random() >> random() % 64;
        for (const auto& row : rows)
            ASSERT_EQ(std::strtoull(format(row.Conv, value).c_str(), nullptr, row.Base), value);
        ASSERT_EQ(std::strtoll(format('d', value).c_str(), nullptr, 10), static_cast<int64_t>(value));
    }
}

TEST(utfInt, WritesFieldsOfAnyWidth)
{
    constexpr size_t Million = 1000000;
    const std::string wide = format('d', int64_t{-5}, static_cast<unsigned>(Million));
    EXPECT_EQ(wide.size(), Million);
    EXPECT_EQ(wide.substr(Million - 3), " -5");
    const std::string many = format('d', int64_t{-5}, 0u, static_cast<int>(Million));
    EXPECT_EQ(many.size(), Million + 1);
    EXPECT_EQ(many.substr(0, 3), "-00");
}
