#include "foundations/text/utfConvert.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

// Counts are given, so that the sanitizer sees a read behind the end of the copy.
std::u16string to16(std::string_view text)
{
    const std::string copy(text);
    std::u16string result;
    utfAppend16From8(result, copy.data(), copy.size());
    return result;
}

std::string to8(std::u16string_view text)
{
    const std::u16string copy(text);
    std::string result;
    utfAppend8From16(result, copy.data(), copy.size());
    return result;
}

std::string to8(std::u32string_view text)
{
    const std::u32string copy(text);
    std::string result;
    utfAppend8From32(result, copy.data(), copy.size());
    return result;
}

std::string bytes(std::initializer_list<unsigned> values)
{
    std::string text;
    for (const unsigned value : values)
        text.push_back(static_cast<char>(value));
    return text;
}

unsigned continuationsOf(unsigned lead)
{
    return lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
}

constexpr unsigned FirstLead = 0xC0;
constexpr unsigned LastLead = 0xF7;

}  // namespace

TEST(utfConvert, CarriesEveryCodePointThereAndBack)
{
    for (char32_t codePoint = 1; codePoint <= 0x10FFFF; ++codePoint) {
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF)
            continue;
        const std::string text = to8(std::u32string(1, codePoint));
        const std::u16string wide = to16(text);
        const size_t length = codePoint < 0x80 ? 1u : codePoint < 0x800 ? 2u : codePoint < 0x10000 ? 3u : 4u;
        ASSERT_EQ(text.size(), length) << std::hex << static_cast<uint32_t>(codePoint);
        ASSERT_EQ(wide.size(), codePoint < 0x10000 ? 1u : 2u) << std::hex << static_cast<uint32_t>(codePoint);
        ASSERT_EQ(to8(wide), text) << std::hex << static_cast<uint32_t>(codePoint);
    }
}

TEST(utfConvert, WritesTheWellKnownEncodings)
{
    struct {
        const char32_t* Wide;
        const char16_t* Units;
        const char* Bytes;
    } const rows[] = {
        {U"A", u"A", "A"},
        {U"\u007F\u0080", u"\u007F\u0080", "\x7F\xC2\x80"},
        {U"\u00E9", u"\u00E9", "\xC3\xA9"},
        {U"\u07FF\u0800", u"\u07FF\u0800", "\xDF\xBF\xE0\xA0\x80"},
        {U"\u221E", u"\u221E", "\xE2\x88\x9E"},
        {U"\uFFFF", u"\uFFFF", "\xEF\xBF\xBF"},
        {U"\U00010000", u"\xD800\xDC00", "\xF0\x90\x80\x80"},
        {U"\U0001F6F0", u"\xD83D\xDEF0", "\xF0\x9F\x9B\xB0"},
        {U"\U0010FFFF", u"\xDBFF\xDFFF", "\xF4\x8F\xBF\xBF"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Bytes);
        EXPECT_EQ(to8(row.Wide), row.Bytes);
        EXPECT_EQ(to8(row.Units), row.Bytes);
        EXPECT_EQ(to16(row.Bytes), row.Units);
    }
}

TEST(utfConvert, AppendsAndReturnsTheTarget)
{
    std::string narrow = "have ";
    EXPECT_EQ(&utfAppend8From16(narrow, u"\u00E9"), &narrow);
    EXPECT_EQ(&utfAppend8From32(narrow, U"!"), &narrow);
    EXPECT_EQ(narrow, "have \xC3\xA9!");

    std::u16string wide = u"have ";
    EXPECT_EQ(&utfAppend16From8(wide, "\xC3\xA9"), &wide);
    EXPECT_EQ(wide, u"have \u00E9");
}

TEST(utfConvert, TakesAtMostTheCount)
{
    struct {
        size_t Count;
        const char* Narrow;
        const char16_t* Wide;
    } const rows[] = {
        {0, "", u""}, {1, "a", u"a"}, {2, "ab", u"ab"}, {3, "abc", u"abc"}, {utfToEnd, "abc", u"abc"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Count);
        std::string from16;
        std::string from32;
        std::u16string from8;
        EXPECT_EQ(utfAppend8From16(from16, u"abc", row.Count), row.Narrow);
        EXPECT_EQ(utfAppend8From32(from32, U"abc", row.Count), row.Narrow);
        EXPECT_EQ(utfAppend16From8(from8, "abc", row.Count), row.Wide);
    }
}

TEST(utfConvert, StopsAtANulWithinTheCount)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(to16("ab\0cd"sv), u"ab");
    EXPECT_EQ(to8(u"ab\0cd"sv), "ab");
    EXPECT_EQ(to8(U"ab\0cd"sv), "ab");
    EXPECT_EQ(to16("\0"sv), u"");
}

TEST(utfConvert, ReadsNothingForACountOfZero)
{
    std::u16string wide;
    std::string narrow;
    EXPECT_EQ(utfAppend16From8(wide, nullptr, 0), u"");
    EXPECT_EQ(utfAppend8From16(narrow, nullptr, 0), "");
    EXPECT_EQ(utfAppend8From32(narrow, nullptr, 0), "");
}

TEST(utfConvert, ReadsWhatEveryLeadByteAsksFor)
{
    for (unsigned lead = FirstLead; lead <= LastLead; ++lead) {
        SCOPED_TRACE(lead);
        const unsigned continuations = continuationsOf(lead);
        const std::string text = bytes({lead}) + std::string(continuations, '\x8F');
        char32_t codePoint = lead & (0x3Fu >> continuations);
        for (unsigned index = 0; index < continuations; ++index)
            codePoint = codePoint << 6 | 0x0F;
        std::u16string expected = u"A";
        if (codePoint < 0x10000)
            expected += static_cast<char16_t>(codePoint);
        else if (codePoint <= 0x10FFFF)
            expected += {static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10)),
                         static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF))};
        if (codePoint <= 0x10FFFF)
            expected += u"B";
        EXPECT_EQ(to16("A" + text + "B"), expected);
    }
}

TEST(utfConvert, StopsAtAByteThatNoSequenceBeginsWith)
{
    for (unsigned lead = 0x80; lead <= 0xFF; ++lead) {
        if (lead >= FirstLead && lead <= LastLead)
            continue;
        EXPECT_EQ(to16("A" + bytes({lead}) + "\x80\x80\x80\x80\x80 B"), u"A") << lead;
    }
}

TEST(utfConvert, StopsAtASequenceThatIsCutShort)
{
    for (unsigned lead = FirstLead; lead <= LastLead; ++lead) {
        for (unsigned present = 0; present < continuationsOf(lead); ++present) {
            const std::string text = "A" + bytes({lead}) + std::string(present, '\x80');
            EXPECT_EQ(to16(text), u"A") << lead << " with " << present;
            EXPECT_EQ(to16(text + '\0' + "\x80\x80\x80"), u"A") << lead << " with " << present;
            std::u16string toEnd;
            EXPECT_EQ(utfAppend16From8(toEnd, text.c_str()), u"A") << lead << " with " << present;
        }
    }
}

TEST(utfConvert, StopsAtAWrongContinuationAtEachPosition)
{
    for (unsigned lead = FirstLead; lead <= LastLead; ++lead) {
        for (unsigned position = 0; position < continuationsOf(lead); ++position) {
            for (unsigned wrong = 0; wrong <= 0xFF; ++wrong) {
                if ((wrong & 0xC0) == 0x80)
                    continue;
                std::string text = bytes({'A', lead}) + std::string(continuationsOf(lead), '\x80') + "B";
                text[2 + position] = static_cast<char>(wrong);
                ASSERT_EQ(to16(text), u"A") << lead << ' ' << position << ' ' << wrong;
            }
        }
    }
}

TEST(utfConvert, ConvertsThePartBeforeABrokenSequenceAndDropsTheRest)
{
    EXPECT_EQ(to16("before \xE2\x88 after"), u"before ");
    EXPECT_EQ(to16("\xC3\xA9\x80 after"), u"\u00E9");
}

TEST(utfConvert, TakesOverlongFormsAndEncodedSurrogates)
{
    EXPECT_EQ(to16("\xC1\x81"
                   "B"),
              u"AB");
    EXPECT_EQ(to16("\xE0\x81\x81"
                   "B"),
              u"AB");
    EXPECT_EQ(to16("\xF0\x80\x81\x81"
                   "B"),
              u"AB");
    EXPECT_EQ(to16("\xC0\x80"
                   "B"),
              std::u16string(u"\0B", 2));
    EXPECT_EQ(to16("\xED\xA0\x80"
                   "B"),
              std::u16string({0xD800, u'B'}));
    EXPECT_EQ(to16("\xED\xBF\xBF"
                   "B"),
              std::u16string({0xDFFF, u'B'}));
    EXPECT_EQ(to8(std::u32string{0xD800, U'B'}), "\xED\xA0\x80"
                                                 "B");
}

TEST(utfConvert, StopsAboveTheLastCodePoint)
{
    EXPECT_EQ(to16("A\xF4\x8F\xBF\xBF"
                   "B"),
              u"A\xDBFF\xDFFF"
              u"B");
    EXPECT_EQ(to16("A\xF4\x90\x80\x80"
                   "B"),
              u"A");
    EXPECT_EQ(to16("A\xF7\xBF\xBF\xBF"
                   "B"),
              u"A");
    EXPECT_EQ(to8(std::u32string{U'A', 0x110000, U'B'}), "A");
    EXPECT_EQ(to8(std::u32string{U'A', 0xFFFFFFFF, U'B'}), "A");
}

TEST(utfConvert, StopsAtASurrogateWithoutItsPartner)
{
    struct {
        const char* Name;
        std::u16string Text;
    } const rows[] = {
        {"high at the end", {u'A', 0xD83D}},
        {"high before a letter", {u'A', 0xD83D, u'B'}},
        {"high before a high", {u'A', 0xD83D, 0xD83D, 0xDEF0}},
        {"low alone", {u'A', 0xDEF0, u'B'}},
        {"two lows", {u'A', 0xDEF0, 0xDEF0}},
        {"reversed", {u'A', 0xDEF0, 0xD83D}},
        {"high before a NUL", {u'A', 0xD83D, 0, 0xDEF0}},
        {"first high", {u'A', 0xD800, 0xDBFF}},
        {"last low", {u'A', 0xDFFF}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(to8(row.Text), "A") << row.Name;
    std::string text;
    EXPECT_EQ(utfAppend8From16(text, u"A\xD83D\xDEF0", 2), "A") << "the count ends within the pair";
}

TEST(utfConvert, EncodesNothingAboveTheLastCodePoint)
{
    char target[4];
    EXPECT_EQ(utfEncode(0x10FFFF, target), 4u);
    EXPECT_EQ(utfEncode(0x110000, target), 0u);
    EXPECT_EQ(utfEncode(0xFFFFFFFF, target), 0u);
    EXPECT_EQ(utfEncode(0, target), 1u);
    EXPECT_EQ(target[0], '\0');
}
