#include "tests/foundations/settings/settingsTextFixture.h"

#include "foundations/text/utfLocale.h"

#include <limits>
#include <random>
#include <vector>

using testing::ElementsAre;

namespace {

class settingsTextValues : public settingsTextFixture
{
protected:
    // What a getter makes of a value, with `prior` in all elements before.
    template <class T>
    std::vector<T> Read(void (settingsText::*getter)(const char*, T*, uint64_t), const std::string& value,
                        T prior, size_t count)
    {
        Put("[Main]\nKey=" + value + "\n");
        const std::unique_ptr<T[]> elements = std::make_unique<T[]>(count);
        std::fill_n(elements.get(), count, prior);
        (Store.*getter)("Key", elements.get(), count);
        return std::vector<T>(elements.get(), elements.get() + count);
    }

    std::vector<int32_t> Int32(const std::string& value, size_t count = 1)
    {
        return Read<int32_t>(&settingsText::GetInt32, value, 77, count);
    }

    std::vector<bool> Bool(const std::string& value, bool prior, size_t count = 1)
    {
        return Read<bool>(&settingsText::GetBool, value, prior, count);
    }
};

constexpr float Infinity = std::numeric_limits<float>::infinity();

}  // namespace

TEST_F(settingsTextValues, SeparatesElementsBySemicolonsAndSkipsBlanks)
{
    EXPECT_THAT(Int32("1; 2 ;3", 3), ElementsAre(1, 2, 3));
    EXPECT_THAT(Int32("1 2 3", 3), ElementsAre(1, 77, 77));
    EXPECT_THAT(Int32("1;2;3;4", 3), ElementsAre(1, 2, 3));
    EXPECT_THAT(Int32("1", 3), ElementsAre(1, 77, 77));
    EXPECT_THAT(Int32("1;", 3), ElementsAre(1, 77, 77));
    EXPECT_THAT(Int32("1; ", 3), ElementsAre(1, 77, 77));
    EXPECT_THAT(Int32("1;;3", 3), ElementsAre(1, 0, 3));
    EXPECT_THAT(Int32(";2", 3), ElementsAre(0, 2, 77));
    EXPECT_THAT(Int32("1,2", 2), ElementsAre(1, 77));
    EXPECT_THAT(Int32("", 2), ElementsAre(77, 77));
    EXPECT_THAT(Int32("\"  \"", 2), ElementsAre(77, 77));
    EXPECT_THAT(Int32("\"\\t 1 \\t;\\t 2\"", 2), ElementsAre(1, 2));
    EXPECT_THAT(Int32("word", 2), ElementsAre(0, 77));
    EXPECT_THAT(Int32("5x;6", 2), ElementsAre(5, 77));
    EXPECT_THAT(Int32("5", 0), ElementsAre());
}

TEST_F(settingsTextValues, HoldsInt32ToItsRange)
{
    EXPECT_THAT(Int32("2147483647;-2147483648", 2), ElementsAre(2147483647, INT32_MIN));
    EXPECT_THAT(Int32("2147483648;-2147483649", 2), ElementsAre(2147483647, INT32_MIN));
    EXPECT_THAT(Int32("99999999999999999999;-99999999999999999999", 2), ElementsAre(INT32_MAX, INT32_MIN));
    EXPECT_THAT(Int32("+7;0x10", 2), ElementsAre(7, 0));
    EXPECT_THAT(Int32("010", 1), ElementsAre(10));
}

TEST_F(settingsTextValues, HoldsInt16AndTheSmallUnsignedToTheirRanges)
{
    EXPECT_THAT(Read<int16_t>(&settingsText::GetInt16, "-32768;32767;-32769;32768;-9999999999;12", 7, 6),
                ElementsAre(-32768, 32767, -32768, 32767, -32768, 12));
    // A negative number is a large one, as an unsigned parse of 32 bits has it.
    EXPECT_THAT(Read<uint16_t>(&settingsText::GetUInt16, "65535;65536;-1;9999999999;12", 7, 5),
                ElementsAre(65535, 65535, 65535, 65535, 12));
    EXPECT_THAT(Read<uint8_t>(&settingsText::GetUInt8, "255;256;-1;12;-4294967290", 7, 5),
                ElementsAre(255, 255, 255, 12, 6));
    EXPECT_THAT(Read<uint8_t>(&settingsText::GetUInt8, "-4294967296;-4294967295", 7, 2), ElementsAre(255, 1));
}

TEST_F(settingsTextValues, ReadsTheFullRangeOf64Bits)
{
    EXPECT_THAT(Read<int64_t>(&settingsText::GetInt64,
                              "9223372036854775807;-9223372036854775808;9223372036854775808;-5", 7, 4),
                ElementsAre(INT64_MAX, INT64_MIN, INT64_MAX, -5));
    EXPECT_THAT(
        Read<uint64_t>(&settingsText::GetUInt64, "18446744073709551615;18446744073709551616;-1;5", 7, 4),
        ElementsAre(UINT64_MAX, UINT64_MAX, UINT64_MAX, 5u));
}

TEST_F(settingsTextValues, ReadsBoolsAsWordsAndAsNumbers)
{
    EXPECT_THAT(Bool("true;false;1;0", false, 4), ElementsAre(true, false, true, false));
    EXPECT_THAT(Bool("false;true;0;-1", true, 4), ElementsAre(false, true, false, true));
    EXPECT_THAT(Bool("truest", false), ElementsAre(true));
    EXPECT_THAT(Bool("truest;true", false, 2), ElementsAre(true, false));
    EXPECT_THAT(Bool("falsehood", true), ElementsAre(false));
    EXPECT_THAT(Bool("True", true), ElementsAre(false));
    EXPECT_THAT(Bool("yes", true), ElementsAre(false));
    EXPECT_THAT(Bool("4294967296", false), ElementsAre(true));
    EXPECT_THAT(Bool("", true), ElementsAre(true));
    EXPECT_THAT(Bool("true ; true", false, 2), ElementsAre(true, true));
}

TEST_F(settingsTextValues, ReadsFloatsWithADotOnly)
{
    const std::string former = utfLocale.DecimalPoint;
    utfLocale.DecimalPoint = ",";
    EXPECT_THAT(Read<double>(&settingsText::GetDouble, "1.5;-2.5e3; 0", 7, 3),
                ElementsAre(1.5, -2500.0, 0.0));
    EXPECT_THAT(Read<double>(&settingsText::GetDouble, "1,5;2", 7, 2), ElementsAre(1.0, 7.0));
    EXPECT_THAT(Read<float>(&settingsText::GetFloat, "1.5;1e300;-1e300", 7, 3),
                ElementsAre(1.5f, Infinity, -Infinity));
    utfLocale.DecimalPoint = former;
}

TEST_F(settingsTextValues, WritesEachKindInItsOwnForm)
{
    const double doubles[] = {0.5, -1024, 0.0625, 0};
    const float floats[] = {0.25f, 1e10f};
    const int64_t wide[] = {INT64_MIN, INT64_MAX, 0};
    const int32_t narrow[] = {INT32_MIN, INT32_MAX, -1};
    const bool bools[] = {true, false, true};
    Store.Open(true);
    Store.SetDouble("Double", doubles, 4);
    Store.SetFloat("Float", floats, 2);
    Store.SetInt64("Int64", wide, 3);
    Store.SetInt32("Int32", narrow, 3);
    Store.SetBool("Bool", bools, 3);
    Store.SetInt32("One", narrow + 2, 1);
    Store.SetInt32("None", narrow, 0);
    Store.Close(true);
    EXPECT_EQ(Bytes(), "[Main]\r\nDouble=0.5;-1024;0.0625;0\r\nFloat=0.25;1e+10\r\n"
                       "Int64=-9223372036854775808;9223372036854775807;0\r\n"
                       "Int32=-2147483648;2147483647;-1\r\nBool=true;false;true\r\nOne=-1\r\nNone=\r\n");
}

TEST_F(settingsTextValues, WritesFloatsWithADotWhateverTheLocale)
{
    const std::string former = utfLocale.DecimalPoint;
    utfLocale.DecimalPoint = ",";
    const float value = 1.5f;
    Store.SetFloat("Key", &value, 1);
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=1.5\r\n");
    float back = 0;
    Store.GetFloat("Key", &back, 1);
    EXPECT_EQ(back, 1.5f);
    utfLocale.DecimalPoint = former;
}

TEST_F(settingsTextValues, ReadsBackWhatEachSetterWrote)
{
    std::mt19937_64 random(7);
    for (int round = 0; round < 200; ++round) {
        const int64_t wide[] = {static_cast<int64_t>(random()), static_cast<int64_t>(random())};
        const int32_t narrow[] = {static_cast<int32_t>(random()), static_cast<int32_t>(random())};
        const bool bools[] = {random() % 2 == 0, random() % 2 == 0};
        Store.Open(true);
        Store.SetInt64("Wide", wide, 2);
        Store.SetInt32("Narrow", narrow, 2);
        Store.SetBool("Bools", bools, 2);
        Store.Close(true);
        int64_t wideBack[2] = {};
        int32_t narrowBack[2] = {};
        bool boolsBack[2] = {};
        uint64_t unsignedBack[2] = {};
        Store.GetInt64("Wide", wideBack, 2);
        Store.GetUInt64("Wide", unsignedBack, 2);
        Store.GetInt32("Narrow", narrowBack, 2);
        Store.GetBool("Bools", boolsBack, 2);
        EXPECT_THAT(wideBack, ElementsAre(wide[0], wide[1]));
        EXPECT_EQ(narrowBack[0], narrow[0]);
        EXPECT_EQ(narrowBack[1], narrow[1]);
        EXPECT_EQ(boolsBack[0], bools[0]);
        EXPECT_EQ(boolsBack[1], bools[1]);
        EXPECT_EQ(unsignedBack[0], static_cast<uint64_t>(wide[0]));
    }
}

TEST_F(settingsTextValues, ReadsBackAnyTextThroughTheFile)
{
    std::mt19937 random(11);
    std::uniform_int_distribution<int> anyLength(0, 20);
    std::uniform_int_distribution<int> anyByte(1, 255);
    for (int round = 0; round < 500; ++round) {
        std::string value;
        for (int i = anyLength(random); i > 0; --i)
            value += static_cast<char>(anyByte(random));
        // A pair of brackets would make the row a header.
        std::erase(value, '[');
        SetText("Key", value);
        ASSERT_EQ(Text("Key"), value) << testing::PrintToString(value);
    }
}

TEST_F(settingsTextValues, LosesAValueWithAPairOfBrackets)
{
    SetText("Key", "[7]");
    EXPECT_EQ(Bytes(), "[Main]\r\nKey=[7]\r\n");
    EXPECT_EQ(Text("Key"), "untouched");
}

TEST_F(settingsTextValues, LeavesTheOutputAloneWhenThereIsNoSuchValue)
{
    Put("[Main]\n");
    const auto untouched = [this](auto getter, auto value) {
        const auto prior = value;
        (Store.*getter)("Key", &value, 1);
        EXPECT_EQ(value, prior);
    };
    for (const bool withSection : {true, false}) {
        SCOPED_TRACE(withSection);
        Put(withSection ? "[Main]\n" : "");
        untouched(&settingsText::GetText, std::string("prior"));
        untouched(&settingsText::GetDouble, 1.5);
        untouched(&settingsText::GetFloat, 1.5f);
        untouched(&settingsText::GetUInt64, uint64_t{7});
        untouched(&settingsText::GetInt64, int64_t{7});
        untouched(&settingsText::GetInt32, int32_t{7});
        untouched(&settingsText::GetUInt16, uint16_t{7});
        untouched(&settingsText::GetInt16, int16_t{7});
        untouched(&settingsText::GetUInt8, uint8_t{7});
        untouched(&settingsText::GetBool, true);
        EXPECT_EQ(Store.OpenCount, 0u);
    }
}

TEST_F(settingsTextValues, GivesAnEmptyTextForAnEmptyValue)
{
    Put("[Main]\nKey=\n");
    EXPECT_EQ(Text("Key"), "");
}

TEST_F(settingsTextValues, BreaksWhenTextsAreCountedOtherThanOne)
{
    std::string texts[2] = {"a", "b"};
    for (const uint64_t count : {uint64_t{0}, uint64_t{2}}) {
        EXPECT_THROW(Store.GetText("Key", texts, count), fakeBreak);
        EXPECT_THROW(Store.SetText("Key", texts, count), fakeBreak);
    }
    EXPECT_NE(fakeDebugText().find("settingsText::GetText"), std::string::npos);
    EXPECT_NE(fakeDebugText().find("settingsText::SetText"), std::string::npos);
    fakeBreakReturns(true);
    Store.SetText("Key", texts, 2);
    Store.GetText("Key", texts, 2);
    EXPECT_EQ(texts[0], "a");
    EXPECT_EQ(Store.OpenCount, 0u);
    EXPECT_FALSE(fakeFileHas(Path));
}
