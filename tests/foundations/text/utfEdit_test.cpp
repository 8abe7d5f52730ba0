#include "foundations/text/utfEdit.h"

#include "foundations/text/utfConvert.h"

#include <gtest/gtest.h>

namespace {

// One to four bytes a code point: at 0, 1, 3, 6, and 11 bytes in all with the "z" behind them.
const std::string Mixed = "a\u00E9\u221E\U0001F6F0z";

}  // namespace

TEST(utfEdit, ChainsFromLeftToRight)
{
    std::string text = "A";
    std::string& result = text << "bc" << 'd' << std::string("e\0f", 3);
    EXPECT_EQ(&result, &text);
    EXPECT_EQ(text, std::string("Abcde\0f", 7));
}

TEST(utfEdit, AppendsAWordForANullText)
{
    std::string text = "name ";
    const char* const none = nullptr;
    EXPECT_EQ(text << none << "!", "name (null)!");
}

TEST(utfEdit, AppendsAStringToItself)
{
    std::string text = "echo ";
    EXPECT_EQ(text << text, "echo echo ");
}

TEST(utfEdit, CountsCodePoints)
{
    struct {
        std::string Text;
        size_t Bytes;
        size_t Length;
    } const rows[] = {
        {Mixed, 0, 0},      {Mixed, 1, 1},
        {Mixed, 2, 2},      {Mixed, 3, 2},
        {Mixed, 4, 3},      {Mixed, 6, 3},
        {Mixed, 7, 4},      {Mixed, 11, 5},
        {Mixed, 100, 5},    {Mixed, utfToEnd, 5},
        {"", 10, 0},        {"\x80\xBF", 2, 0},
        {"\xFF\xC0", 2, 2}, {std::string("ab\0cd", 5), 5, 2},
    };
    for (const auto& row : rows)
        EXPECT_EQ(utfLength(row.Text.c_str(), row.Bytes), row.Length) << row.Text << ' ' << row.Bytes;
}

TEST(utfEdit, FindsWhereACodePointBegins)
{
    const size_t offsets[] = {0, 1, 3, 6, 10, 11, 11};
    for (size_t index = 0; index < std::size(offsets); ++index)
        EXPECT_EQ(utfOffset(Mixed.c_str(), index), offsets[index]) << index;
    EXPECT_EQ(utfOffset(Mixed.c_str(), utfToEnd), 11u);
    EXPECT_EQ(utfOffset("", 0), 0u);
    EXPECT_EQ(utfOffset("", 3), 0u);
    EXPECT_EQ(utfOffset("ab\0cd", 4), 2u);
    EXPECT_EQ(utfOffset("\x80\x80z", 0), 2u) << "continuation bytes without a lead are stepped over";
}

TEST(utfEdit, ErasesCodePoints)
{
    struct {
        size_t Index;
        size_t Count;
        const char* Left;
    } const rows[] = {
        {0, 0, "a\u00E9\u221E\U0001F6F0z"},
        {0, 1, "\u00E9\u221E\U0001F6F0z"},
        {1, 1, "a\u221E\U0001F6F0z"},
        {2, 1, "a\u00E9\U0001F6F0z"},
        {3, 1, "a\u00E9\u221Ez"},
        {4, 1, "a\u00E9\u221E\U0001F6F0"},
        {1, 3, "az"},
        {0, 5, ""},
        {2, 100, "a\u00E9"},
        {0, utfToEnd, ""},
        {5, 1, "a\u00E9\u221E\U0001F6F0z"},
        {100, 1, "a\u00E9\u221E\U0001F6F0z"},
    };
    for (const auto& row : rows) {
        std::string text = Mixed;
        utfErase(text, row.Index, row.Count);
        EXPECT_EQ(text, row.Left) << row.Index << ' ' << row.Count;
    }
}

TEST(utfEdit, ErasesNothingBehindANul)
{
    std::string text("ab\0cd", 5);
    utfErase(text, 2, 1);
    EXPECT_EQ(text, std::string("ab\0cd", 5));
    utfErase(text, 1, 9);
    EXPECT_EQ(text, std::string("a\0cd", 4));
}

TEST(utfEdit, ErasesFromAnEmptyText)
{
    std::string text;
    utfErase(text, 0, 1);
    EXPECT_EQ(text, "");
}

TEST(utfEdit, InsertsACodePoint)
{
    struct {
        size_t Index;
        char32_t CodePoint;
        const char* Result;
    } const rows[] = {
        {0, U'x', "xa\u00E9\u221E\U0001F6F0z"},
        {1, U'\u00FC', "a\u00FC\u00E9\u221E\U0001F6F0z"},
        {2, U'\u20AC', "a\u00E9\u20AC\u221E\U0001F6F0z"},
        {4, U'\U0001F30D', "a\u00E9\u221E\U0001F6F0\U0001F30Dz"},
        {5, U'!', "a\u00E9\u221E\U0001F6F0z!"},
        {100, U'!', "a\u00E9\u221E\U0001F6F0z!"},
        {1, 0, "a\u00E9\u221E\U0001F6F0z"},
        {1, 0x110000, "a\u00E9\u221E\U0001F6F0z"},
    };
    for (const auto& row : rows) {
        std::string text = Mixed;
        utfInsert(text, row.Index, row.CodePoint);
        EXPECT_EQ(text, row.Result) << row.Index;
    }
}

TEST(utfEdit, ReplacesEveryOccurrence)
{
    struct {
        const char* Text;
        char32_t Find;
        char32_t Put;
        const char* Result;
    } const rows[] = {
        {"a\\b\\c", U'\\', U'/', "a/b/c"},
        {"\\\\", U'\\', U'\u2215', "\u2215\u2215"},
        {"\u221Ea\u221E", U'\u221E', U'8', "8a8"},
        {"\u00E9t\u00E9", U'\u00E9', U'\U0001F30D', "\U0001F30Dt\U0001F30D"},
        {"abc", U'x', U'y', "abc"},
        {"abc", U'b', U'b', "abc"},
        {"", U'a', U'b', ""},
        {"abcb", U'b', 0, "ac"},
        {"abcb", U'b', 0x110000, "ac"},
        {"abc", 0, U'x', "abc"},
        {"abc", 0x110000, U'x', "abc"},
    };
    for (const auto& row : rows) {
        std::string text = row.Text;
        utfReplace(text, row.Find, row.Put);
        EXPECT_EQ(text, row.Result) << row.Text;
    }
}

TEST(utfEdit, TruncatesAtEveryByteWithoutSplittingASequence)
{
    const std::string texts[] = {Mixed,
                                 "plain",
                                 "\u00E9\u00E9\u00E9",
                                 "\u221E\u221E\u221E",
                                 "\U0001F6F0\U0001F6F0\U0001F6F0",
                                 "\U0001F6F0\u00E9\u221Ea\U0001F6F0"};
    for (const std::string& whole : texts) {
        for (size_t bytes = 0; bytes <= whole.size() + 1; ++bytes) {
            std::string text = whole;
            utfTruncate(text, bytes);
            // The longest beginning of whole code points that fits.
            size_t expected = 0;
            for (size_t index = 0; utfOffset(whole.c_str(), index) <= bytes && expected < whole.size();
                 ++index)
                expected = utfOffset(whole.c_str(), index);
            if (bytes >= whole.size())
                expected = whole.size();
            EXPECT_EQ(text, whole.substr(0, expected)) << whole << " at " << bytes;
        }
    }
}

TEST(utfEdit, TruncatesMalformedTextWithinItsBounds)
{
    struct {
        std::string Text;
        size_t Bytes;
        const char* Result;
    } const rows[] = {
        {"\xF0", 0, ""},
        {"\x80\x80\x80\x80", 2, "\x80\x80"},
        {"ab\xFF\xFF", 3, "ab"},
        {"\xF0"
         "abc",
         3, ""},
        {"\xE0"
         "abc",
         2, ""},
    };
    for (const auto& row : rows) {
        std::string text = row.Text;
        utfTruncate(text, row.Bytes);
        EXPECT_EQ(text, row.Result) << row.Text;
    }
}
