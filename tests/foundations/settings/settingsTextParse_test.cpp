#include "foundations/settings/settingsText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using namespace std::string_literals;
using testing::ElementsAre;

namespace {

using row = settingsText::KeyValueRow;

// A section in brief: its name in brackets, "-" for a missing header, then the texts of its rows.
std::vector<std::string> brief(const std::string& bytes)
{
    std::vector<std::string> lines;
    for (const settingsText::Section& section : settingsText::Parse(bytes)) {
        lines.push_back(section.Text.empty() ? "-" : "[" + section.Name + "]");
        for (const row& each : section.Rows)
            lines.push_back(each.Text);
    }
    return lines;
}

std::vector<std::string> keysAndValues(const std::string& bytes)
{
    std::vector<std::string> pairs;
    for (const settingsText::Section& section : settingsText::Parse(bytes))
        for (const row& each : section.Rows)
            pairs.push_back(each.Key + "|" + each.Value());
    return pairs;
}

}  // namespace

TEST(settingsTextParse, FindsHeadersByTheirBracketsAndTheirNamesBetweenThem)
{
    const struct {
        const char* Line;
        const char* Name;  // null for a row
    } Cases[] = {
        {"[Main]", "Main"},
        {"[]", ""},
        {"[ Main ]", " Main "},
        {"  [Main]  ; with a remark", "Main"},
        {"Key=[7]", "7"},
        {"Key=\"[7]\"", "7"},
        {"# [Main]", "Main"},
        {"[A - B]", "A - B"},
        {"[[Main]", nullptr},
        {"[Main]]", nullptr},
        {"[Main][Other]", nullptr},
        {"[Main] [", nullptr},
        {"]Main[", nullptr},
        {"][Main]", nullptr},
        {"]", nullptr},
        {"[", nullptr},
        {"[Main", nullptr},
        {"Main]", nullptr},
        {"Main", nullptr},
    };
    for (const auto& [line, name] : Cases) {
        SCOPED_TRACE(line);
        const auto sections = settingsText::Parse(line);
        ASSERT_EQ(sections.size(), 1u);
        EXPECT_EQ(sections[0].Text, name != nullptr ? line : "");
        EXPECT_EQ(sections[0].Name, name != nullptr ? name : "");
        EXPECT_EQ(sections[0].Rows.size(), name != nullptr ? 0u : 1u);
    }
}

TEST(settingsTextParse, EndsLinesAtAnyLineEnd)
{
    const struct {
        std::string Bytes;
        std::vector<std::string> Lines;
    } Cases[] = {
        {"", {}},
        {"a", {"-", "a"}},
        {"a\n", {"-", "a"}},
        {"a\r", {"-", "a"}},
        {"a\r\n", {"-", "a"}},
        {"a\n\r", {"-", "a"}},
        {"a\rb", {"-", "a", "b"}},
        {"a\nb", {"-", "a", "b"}},
        {"a\r\nb", {"-", "a", "b"}},
        {"a\n\rb", {"-", "a", "b"}},
        {"a\n\nb", {"-", "a", "", "b"}},
        {"a\r\rb", {"-", "a", "", "b"}},
        {"a\r\n\r\nb", {"-", "a", "", "b"}},
        {"a\n\r\nb", {"-", "a", "", "b"}},
        {"\r\na", {"-", "", "a"}},
        {"[S]\n\ra", {"[S]", "a"}},
        {"[S]\ra\r[T]\rb", {"[S]", "a", "[T]", "b"}},
    };
    for (const auto& [bytes, lines] : Cases) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        EXPECT_EQ(brief(bytes), lines);
    }
}

TEST(settingsTextParse, LetsANulEndALineButNotTheFile)
{
    EXPECT_THAT(brief("a\0b"s), ElementsAre("-", "a", "b"));
    EXPECT_THAT(brief("\0\0a"s), ElementsAre("-", "a"));
    EXPECT_THAT(brief("a\0\0\0b\n\0c"s), ElementsAre("-", "a", "b", "c"));
    EXPECT_THAT(brief("[S]\0a=1\0"s), ElementsAre("[S]", "a=1"));
    EXPECT_THAT(brief("\0\0"s), ElementsAre());
    // The line end behind a NUL stands alone, as a blank line.
    EXPECT_THAT(brief("a\0\r\nb"s), ElementsAre("-", "a", "", "b"));
}

TEST(settingsTextParse, SkipsTheByteOrderMarkAndNeverWritesItBack)
{
    const std::string mark = "\xEF\xBB\xBF";
    EXPECT_THAT(brief(mark + "[S]\na"), ElementsAre("[S]", "a"));
    EXPECT_THAT(brief(mark), ElementsAre());
    EXPECT_THAT(brief("\xEF\xBB"), ElementsAre("-", "\xEF\xBB"));
    EXPECT_THAT(brief("a\n" + mark), ElementsAre("-", "a", mark));
    EXPECT_EQ(settingsText::Compose(settingsText::Parse(mark + "[S]")), "[S]\r\n");
}

TEST(settingsTextParse, KeepsRowsBeforeAnyHeaderInANamelessSection)
{
    const auto sections = settingsText::Parse("; remark\na=1\n[Main]\nb=2");
    ASSERT_EQ(sections.size(), 2u);
    EXPECT_EQ(sections[0].Text, "");
    EXPECT_EQ(sections[0].Name, "");
    EXPECT_EQ(sections[0].Rows.size(), 2u);
    EXPECT_EQ(sections[1].Name, "Main");
    EXPECT_EQ(settingsText::Compose(sections), "; remark\r\na=1\r\n[Main]\r\nb=2\r\n");
}

TEST(settingsTextParse, ReadsKeysAndValuesOfRows)
{
    const struct {
        const char* Line;
        const char* Key;
        const char* Value;
    } Cases[] = {
        {"Key=value", "Key", "value"},
        {"  \tKey=value", "Key", "value"},
        {"Key =value", "Key ", "value"},
        {"Key= \t value", "Key", "value"},
        {"Key=value  ", "Key", "value  "},
        {"Key=", "Key", ""},
        {"Key=  ", "Key", ""},
        {"Key=a=b", "Key", "a=b"},
        {"=value", "", "value"},
        {"Key", "", ""},
        {"", "", ""},
        {" \t ", "", ""},
        {"# Key=value", "", ""},
        {"; Key=value", "", ""},
        {"  #Key=value", "", ""},
        {"Key#=value", "Key#", "value"},
        {"Key=;value", "Key", ";value"},
        {"Two words=value", "Two words", "value"},
    };
    for (const auto& [line, key, value] : Cases) {
        SCOPED_TRACE(line);
        const row parsed = row::Parse(line);
        EXPECT_EQ(parsed.Text, line);
        EXPECT_EQ(parsed.Key, key);
        EXPECT_EQ(parsed.Value(), value);
    }
}

TEST(settingsTextParse, UndoesEscapesBetweenQuotesOnly)
{
    const struct {
        const char* Line;
        const char* Value;
    } Cases[] = {
        {R"(K="")", ""},
        {R"(K=" ")", " "},
        {R"(K="a b")", "a b"},
        {R"(K="a\nb\rc\td")", "a\nb\rc\td"},
        {R"(K="a\=b\"c\\d")", "a=b\"c\\d"},
        {R"(K="a\xb")", "axb"},
        {R"(K="a\\nb")", "a\\nb"},
        {R"(K="a\")", "a\\"},
        {R"(K="\")", "\\"},
        {R"(K="a"b")", "a\"b"},
        {R"(K=C:\temp\new)", "C:\\temp\\new"},
        {R"(K="half)", "\"half"},
        {R"(K=half")", "half\""},
        {R"(K=")", "\""},
        {R"(K="quoted" )", "\"quoted\" "},
        {R"(K="quoted" ; remark)", "\"quoted\" ; remark"},
    };
    for (const auto& [line, value] : Cases) {
        SCOPED_TRACE(line);
        EXPECT_EQ(row::Parse(line).Value(), value);
    }
}

TEST(settingsTextParse, QuotesWhatALineCannotHoldAsItStands)
{
    const struct {
        const char* Value;
        const char* Text;
    } Cases[] = {
        {"plain value", "K=plain value"},
        {"", "K="},
        {" ", R"(K=" ")"},
        {" a", R"(K=" a")"},
        {"a ", R"(K="a ")"},
        {"a\tb", R"(K="a\tb")"},
        {"a\r\nb", R"(K="a\r\nb")"},
        {"a\"b", R"(K="a\"b")"},
        {"\"", R"(K="\"")"},
        {"C:\\temp\\a=b", R"(K="C:\\temp\\a\=b")"},
        {"[7]", "K=[7]"},
        {"#;", "K=#;"},
        {"\xE2\x82\xAC", "K=\xE2\x82\xAC"},
    };
    for (const auto& [value, text] : Cases) {
        SCOPED_TRACE(text);
        row written;
        written.Key = "K";
        written.Value(value);
        EXPECT_EQ(written.Text, text);
        EXPECT_EQ(written.Value(), value);
        EXPECT_EQ(row::Parse(written.Text).Value(), value);
    }
}

TEST(settingsTextParse, TakesItsOwnValueAsANewOne)
{
    row written = row::Parse("K = a  ");
    written.Value(written.Value());
    EXPECT_EQ(written.Text, R"(K ="a  ")");
}

TEST(settingsTextParse, ReadsBackEveryValueThatItWrites)
{
    std::mt19937 random(20261120);
    std::uniform_int_distribution<int> anyLength(0, 12);
    std::uniform_int_distribution<int> anyByte(1, 255);
    // Characters with a meaning of their own would be rare among all.
    constexpr std::string_view Meaning = "\\\"= \t\r\n;#ntr";
    std::uniform_int_distribution<size_t> anyMeaning(0, Meaning.size() - 1);
    for (int round = 0; round < 20000; ++round) {
        std::string value;
        for (int i = anyLength(random); i > 0; --i)
            value += random() % 2 == 0 ? static_cast<char>(anyByte(random)) : Meaning[anyMeaning(random)];
        row written;
        written.Key = "K";
        written.Value(value);
        ASSERT_EQ(row::Parse(written.Text).Value(), value) << testing::PrintToString(value);
        ASSERT_EQ(row::Parse(written.Text).Key, "K");
        ASSERT_EQ(written.Text.find_first_of("\r\n"), std::string::npos);
    }
}

TEST(settingsTextParse, ReadsBackEachSingleByte)
{
    for (int byte = 1; byte < 256; ++byte) {
        row written;
        written.Key = "K";
        written.Value(std::string(1, static_cast<char>(byte)));
        EXPECT_EQ(row::Parse(written.Text).Value(), written.Value()) << byte;
    }
}

TEST(settingsTextParse, ComposesBlankLinesAndRemarksAndEndsEachLineWithCrLf)
{
    EXPECT_EQ(settingsText::Compose({}), "");
    EXPECT_EQ(settingsText::Compose(settingsText::Parse("; a\n\n  [S]  \r x = 1 \n\r\n# b")),
              "; a\r\n\r\n  [S]  \r\n x = 1 \r\n\r\n# b\r\n");
}

TEST(settingsTextParse, TakesALineOfBracketsInAValueForAHeader)
{
    EXPECT_THAT(brief("[S]\nKey=[7]\nb=1"), ElementsAre("[S]", "[7]", "b=1"));
    EXPECT_THAT(keysAndValues("[S]\nKey=[7]\nb=1"), ElementsAre("b|1"));
}
