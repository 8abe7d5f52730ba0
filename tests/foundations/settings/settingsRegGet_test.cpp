// What each getter makes of each type of value.
#include "tests/foundations/settings/settingsRegFixture.h"

#include "foundations/text/utfLocale.h"

#include <algorithm>
#include <limits>
#include <memory>

using testing::ElementsAre;

namespace {

constexpr auto Expandable = static_cast<registryType>(2);
constexpr auto Multiple = static_cast<registryType>(7);
constexpr auto None = static_cast<registryType>(0);

class settingsRegGet : public settingsRegFixture
{
protected:
    template <class T>
    struct row {
        const char* What;
        fakeValue Value;
        std::vector<T> Expected;  // with `prior` where nothing is to be stored
    };

    template <class T>
    void Check(void (settingsReg::*getter)(const char*, T*, uint64_t), T prior,
               const std::vector<row<T>>& rows)
    {
        for (const auto& [what, value, expected] : rows) {
            SCOPED_TRACE(what);
            Put(value);
            const auto elements = std::make_unique<T[]>(expected.size());
            std::fill_n(elements.get(), expected.size(), prior);
            (Store.*getter)("Key", elements.get(), expected.size());
            for (size_t i = 0; i < expected.size(); ++i)
                EXPECT_EQ(elements[i], expected[i]) << "element " << i;
            EXPECT_EQ(Store.OpenCount, 0u);
        }
        EXPECT_EQ(fakeRegistryHandles(), 0u);
        CheckUntouched(getter, prior);
    }

    // No getter knows these, and none stores an element that the caller has not.
    template <class T>
    void CheckUntouched(void (settingsReg::*getter)(const char*, T*, uint64_t), T prior)
    {
        const fakeValue strange[] = {
            Text(u"1", Expandable),           Text(u"1", Multiple),         {None, {1, 0, 0, 0, 0, 0, 0, 0}},
            {registryType::Binary, {}},       {registryType::Dword, {}},    {registryType::Dword, {1, 0, 0}},
            {registryType::Qword, {1, 0, 0}}, {registryType::Text, {0x31}}, Text(u""),
        };
        for (const fakeValue& value : strange) {
            SCOPED_TRACE(static_cast<uint32_t>(value.Type));
            Put(value);
            T element = prior;
            (Store.*getter)("Key", &element, 1);
            EXPECT_EQ(element, prior);
        }
        for (const fakeValue& value : {Dword(1), Qword(1), Binary<uint64_t>({1, 1}), Text(u"hex(b):1")}) {
            Put(value);
            (Store.*getter)("Key", nullptr, 0);
        }
        T element = prior;
        (Store.*getter)("missing", &element, 1);
        EXPECT_EQ(element, prior);
    }
};

}  // namespace

TEST_F(settingsRegGet, TakesTextFromTextAndBytes)
{
    const struct {
        const char* What;
        fakeValue Value;
        const char* Expected;
    } Cases[] = {
        {"text", Text(u"abc"), "abc"},
        {"text of other scripts", Text(u"\u00E4\U0001F6F0"), "\xC3\xA4\xF0\x9F\x9B\xB0"},
        {"empty text", Text(u""), ""},
        {"text behind a zero", Text(std::u16string_view(u"ab\0cd", 5)), "ab"},
        {"no bytes", {registryType::Text, {}}, ""},
        {"no terminator", {registryType::Text, {'a', 0, 'b', 0}}, "ab"},
        {"half a unit", {registryType::Text, {'a', 0, 'b'}}, "a"},
        {"one byte", {registryType::Text, {'a'}}, ""},
        {"half a pair", Text(u"a\xD800z"), "a"},
        {"bytes", Text(u"abc", registryType::Binary), "abc"},
        {"no bytes at all", {registryType::Binary, {}}, ""},
        {"number", Dword(65), "prior"},
        {"long number", Qword(65), "prior"},
        {"expandable text", Text(u"abc", Expandable), "prior"},
        {"several texts", Text(u"abc", Multiple), "prior"},
        {"no type", {None, {'a', 0}}, "prior"},
    };
    for (const auto& [what, value, expected] : Cases) {
        SCOPED_TRACE(what);
        Put(value);
        std::string text = "prior";
        Store.GetText("Key", &text, 1);
        EXPECT_EQ(text, expected);
    }
    std::string text = "prior";
    Store.GetText("missing", &text, 1);
    EXPECT_EQ(text, "prior");
}

TEST_F(settingsRegGet, TakesDoubles)
{
    Check<double>(&settingsReg::GetDouble, 7,
                  {{"number", Dword(0xFFFFFFFE), {-2, 7}},
                   {"long number", Qword(5), {7}},
                   {"bytes", Binary<double>({1.5, -2.5, 3.5}), {1.5, -2.5, 3.5, 7}},
                   {"more bytes than asked for", Binary<double>({1.5, -2.5}), {1.5}},
                   {"half an element", {registryType::Binary, std::vector<uint8_t>(15)}, {0, 7}},
                   {"text", Text(u"1.5 -2.5e1\t3"), {1.5, -25, 3, 7}},
                   {"text for one", Text(u"1.5 2"), {1.5}},
                   // What is left but no number counts as 0, again and again.
                   {"words", Text(u"1 x 2"), {1, 0, 0}},
                   {"a blank behind", Text(u"1 "), {1, 0, 7}}});
}

TEST_F(settingsRegGet, TakesFloats)
{
    constexpr float Infinity = std::numeric_limits<float>::infinity();
    Check<float>(&settingsReg::GetFloat, 7,
                 {{"number", Dword(0xFFFFFFFE), {-2, 7}},
                  {"long number", Qword(5), {7}},
                  {"bytes", Binary<float>({1.5f, -2.5f}), {1.5f, -2.5f, 7}},
                  {"half an element", {registryType::Binary, std::vector<uint8_t>(7)}, {0, 7}},
                  {"text", Text(u"1.5 -2.5"), {1.5f, -2.5f, 7}},
                  {"beyond the range", Text(u"1e300"), {Infinity}}});
}

TEST_F(settingsRegGet, TakesTheLocalesPointInTexts)
{
    const std::string former = utfLocale.DecimalPoint;
    utfLocale.DecimalPoint = ",";
    Put(Text(u"1,5 2.5"));
    double values[] = {0, 0};
    Store.GetDouble("Key", values, 2);
    EXPECT_THAT(values, ElementsAre(1.5, 2.5));
    const double written = 0.5;
    Store.SetDouble("Key", &written, 1);
    EXPECT_EQ(Stored().Data, Text(u"0.500000").Data);
    utfLocale.DecimalPoint = former;
}

TEST_F(settingsRegGet, TakesUnsigned64)
{
    Check<uint64_t>(&settingsReg::GetUInt64, 7,
                    {{"number", Dword(0xFFFFFFFE), {0xFFFFFFFE, 7}},
                     {"long number", Qword(0xFFFFFFFFFFFFFFFE), {0xFFFFFFFFFFFFFFFE, 7}},
                     {"bytes", Binary<uint64_t>({UINT64_MAX, 5}), {UINT64_MAX, 5, 7}},
                     {"half an element", {registryType::Binary, std::vector<uint8_t>(15)}, {0, 7}},
                     {"text", Text(u"hex(b):12"), {0x12, 7}},
                     {"other text", Text(u"12"), {7}}});
}

TEST_F(settingsRegGet, TakesSigned64)
{
    Check<int64_t>(&settingsReg::GetInt64, 7,
                   {{"number", Dword(0xFFFFFFFE), {-2, 7}},
                    {"long number", Qword(0xFFFFFFFFFFFFFFFE), {-2, 7}},
                    {"bytes", Binary<int64_t>({-5, 5}), {-5, 5, 7}},
                    {"text", Text(u"hex(b):ff,ff,ff,ff"), {0xFFFFFFFF, 7}},
                    {"other text", Text(u"12"), {7}}});
}

TEST_F(settingsRegGet, PlacesAtMostFourNumbersOfTheHexFormAByteApart)
{
    const std::pair<std::u16string, uint64_t> Cases[] = {
        {u"hex(b):", 0},
        {u"hex(b):1", 1},
        {u"hex(b):12,34", 0x3412},
        {u"hex(b):12,34,56,78", 0x78563412},
        {u"hex(b):12,34,56,78,9a,bc,de,f0", 0x78563412},
        {u"hex(b):,12", 0x120},
        {u"hex(b):,,12", 0x1200},
        {u"hex(b):1,,2", 0x2001},
        {u"hex(b):,,,,,,,f", 0xF0000000},
        {u"hex(b):,,,,,,,,f", 0},
        {u"hex(b):123456789", 0xFFFFFFFF},
        {u"hex(b):1,123456789", 0xFFFFFF01},
        {u"hex(b):-1", 0xFFFFFFFF},
        {u"hex(b): 12", 0x12},
        {u"hex(b):0x12", 0x12},
        {u"hex(b):zz", 0},
        {u"hex(b):1z2", 1},
        {u"hex(b):1 2", 0x21},
        {u"Hex(b):12", 7},
        {u"hex(b)12", 7},
        {u" hex(b):12", 7},
        {u"hex:12", 7},
    };
    for (const auto& [text, expected] : Cases) {
        Put(Text(text));
        uint64_t value = 7;
        Store.GetUInt64("Key", &value, 1);
        EXPECT_EQ(value, expected) << testing::PrintToString(text);
        int64_t other = 7;
        Store.GetInt64("Key", &other, 1);
        EXPECT_EQ(other, static_cast<int64_t>(expected)) << testing::PrintToString(text);
    }
}

TEST_F(settingsRegGet, TakesInt32)
{
    Check<int32_t>(&settingsReg::GetInt32, 7,
                   {{"number", Dword(0xFFFFFFFE), {-2, 7}},
                    {"a number too long", {registryType::Dword, {1, 0, 0, 0, 2, 0, 0, 0}}, {1, 7}},
                    {"long number", Qword(5), {7}},
                    {"bytes", Binary<int32_t>({-5, 5, 9}), {-5, 5, 9, 7}},
                    {"half an element", {registryType::Binary, {1, 0, 0, 0, 2, 0}}, {1, 7}},
                    {"text", Text(u"12"), {7}}});
}

TEST_F(settingsRegGet, TakesUnsigned16)
{
    Check<uint16_t>(&settingsReg::GetUInt16, 7,
                    {{"number", Dword(5), {5, 7}},
                     {"largest", Dword(65535), {65535}},
                     {"too large", Dword(65536), {65535}},
                     {"negative", Dword(0xFFFFFFFE), {65535}},
                     {"long number", Qword(5), {7}},
                     {"bytes", Binary<int32_t>({5, 65536, -1}), {5, 65535, 65535, 7}},
                     {"half an element", {registryType::Binary, {1, 0, 2, 0}}, {65535}},
                     {"text", Text(u"12"), {7}}});
}

TEST_F(settingsRegGet, TakesInt16WithDifferentLowerBounds)
{
    Check<int16_t>(&settingsReg::GetInt16, 7,
                   {{"number", Dword(0xFFFFFFFE), {-2, 7}},
                    {"smallest", Dword(0xFFFF8000), {-32768}},
                    {"too small", Dword(0xFFFF7FFF), {-32768}},
                    {"too large", Dword(32768), {32767}},
                    {"long number", Qword(5), {7}},
                    {"bytes", Binary<int32_t>({5, -5, 32768, -32769}), {5, 0, 32767, 0, 7}},
                    {"text", Text(u"12"), {7}}});
}

TEST_F(settingsRegGet, TakesUnsigned8)
{
    Check<uint8_t>(&settingsReg::GetUInt8, 7,
                   {{"number", Dword(5), {5, 7}},
                    {"too large", Dword(256), {255}},
                    {"negative", Dword(0xFFFFFFFE), {255}},
                    {"long number", Qword(5), {7}},
                    {"bytes", Binary<int32_t>({5, 256, -1}), {5, 255, 255, 7}},
                    {"text", Text(u"12"), {7}}});
}

TEST_F(settingsRegGet, TakesBools)
{
    for (const bool prior : {false, true}) {
        SCOPED_TRACE(prior);
        const std::vector<row<bool>> rows = {
            {"zero", Dword(0), {false, prior}},
            {"one", Dword(1), {true, prior}},
            {"any number", Dword(0x100), {true, prior}},
            {"long number", Qword(1), {prior}},
            {"bytes", Binary<uint8_t>({1, 0, 2}), {true, false, true, prior}},
            {"text", Text(u"1"), {prior}}};
        Check<bool>(&settingsReg::GetBool, prior, rows);
    }
}

TEST_F(settingsRegGet, GrowsItsBufferWithTheValue)
{
    for (const unsigned length : {1u, 100u, 5000u, 20u, 100000u}) {
        SCOPED_TRACE(length);
        const std::u16string text(length, u'x');
        Put(Text(text));
        fakeClearCalls();
        std::string value;
        Store.GetText("Key", &value, 1);
        EXPECT_EQ(value, std::string(length, 'x'));
        EXPECT_LE(fakeCallCount("registryQuery"), 2u);
    }
}

TEST_F(settingsRegGet, AsksOnceForWhatFitsOrIsMissing)
{
    int32_t value = 7;
    Put(Dword(1));
    Store.GetInt32("missing", &value, 1);
    EXPECT_EQ(fakeCallCount("registryQuery"), 1u);
    EXPECT_EQ(value, 7);
    Store.GetInt32("Key", &value, 1);
    fakeClearCalls();
    Store.GetInt32("Key", &value, 1);
    EXPECT_EQ(fakeCallCount("registryQuery"), 1u);
    EXPECT_EQ(value, 1);
}

TEST_F(settingsRegGet, AsksAgainWhenTheValueGrowsBetweenTwoQueries)
{
    Put(Text(u"short"));
    fakeOnCall("registryQuery", 2, [this] { Put(Text(u"longer than before")); });
    fakeOnCall("registryQuery", 3, [this] { Put(Text(u"longer than before, and once more")); });
    std::string value;
    Store.GetText("Key", &value, 1);
    EXPECT_EQ(value, "longer than before, and once more");
    EXPECT_EQ(fakeCallCount("registryQuery"), 4u);
}

TEST_F(settingsRegGet, LeavesTheOutputAloneWhenAQueryFails)
{
    Put(Dword(1));
    for (const unsigned skip : {0u, 1u}) {
        SCOPED_TRACE(skip);
        settingsReg store;
        store.Root = Root;
        int32_t value = 7;
        fakeFail("registryQuery", {.Skip = skip});
        store.GetInt32("Key", &value, 1);
        EXPECT_EQ(value, 7);
        EXPECT_EQ(store.OpenCount, 0u);
    }
}
