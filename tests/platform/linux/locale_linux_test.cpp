#include "platform/locale.h"

#include "platform/linux/localeFormat.h"
#include "platform/process.h"
#include "tests/platform/linux/configuration.h"
#include "tests/platform/native/child.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

TEST(localeLinux, FindsTheSeparatorOfAFormat)
{
    const struct {
        const char* Format;
        const char* Separator;
    } rows[] = {
        {"%m/%d/%Y", "/"},
        {"%d.%m.%Y", "."},
        {"%Y-%m-%d", "-"},
        {"%-d. %-m. %Y", ". "},
        {"%H:%M:%S", ":"},
        {"%I:%M:%S %p", ":"},
        {"%H.%M.%S", "."},
        {"%Oy/%Om/%Od", "/"},
        {"%D", "/"},
        {"%F", "-"},
        {"%T", ":"},
        {"%R", ":"},
        {"%02d.%02m", "."},
        {"%a %d %b", " "},
        {"%Y\u5E74%m\u6708", ""},
        {"%d de %m", ""},
        {"", ""},
        {"%", ""},
        {"%-", ""},
        {"%d", ""},
        {"words", ""},
        {"%d%m", ""},
        {"on %d.%m.", "."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(localeSeparatorIn(row.Format), row.Separator) << row.Format;
}

TEST(localeLinux, ConvertsOtherCodesets)
{
    EXPECT_EQ(localeToUTF8("M\xE4rz", "ISO-8859-1"), "M\xC3\xA4rz");
    EXPECT_EQ(localeToUTF8("M\xC3\xA4rz", "UTF-8"), "M\xC3\xA4rz");
    EXPECT_EQ(localeToUTF8("March", "ANSI_X3.4-1968"), "March");
    EXPECT_EQ(localeToUTF8("", "ISO-8859-1"), "");
    EXPECT_EQ(localeToUTF8("March", "no such codeset"), "");
    EXPECT_EQ(localeToUTF8("\xA4", "EUC-JP"), "");
}

TEST(localeLinux, SpeaksTheSystemsOwnLanguageWhenTheUserHasNone)
{
    const variableSet all("LC_ALL", "C");
    EXPECT_EQ(localeText(localeItem::DateSeparator), "/");
    EXPECT_EQ(localeText(localeItem::TimeSeparator), ":");
    EXPECT_EQ(localeText(localeItem::DecimalPoint), ".");
    EXPECT_EQ(localeText(localeItem::ListSeparator), "");
    EXPECT_EQ(localeText(localeItem::MonthFull, 0), "January");
    EXPECT_EQ(localeText(localeItem::MonthShort, 11), "Dec");
    EXPECT_EQ(localeText(localeItem::DayFull, 0), "Sunday");
    EXPECT_EQ(localeText(localeItem::DayShort, 6), "Sat");
    EXPECT_EQ(localeText(localeItem::DayShortest, 0), "");
    EXPECT_EQ(localeErrorText(ENOENT), "No such file or directory");
}

TEST(localeLinux, HasNothingForALocaleThatIsNotInstalled)
{
    const variableSet all("LC_ALL", "xx_XX.UTF-8");
    EXPECT_EQ(localeText(localeItem::DateSeparator), "");
    EXPECT_EQ(localeText(localeItem::MonthFull, 0), "");
    EXPECT_EQ(localeErrorText(ENOENT), "No such file or directory");
}

// In a process of its own, because the C library never gives back what it notes of LOCPATH.
CHILD_TEST(SpeaksGerman)
{
    childEnd(localeText(localeItem::DateSeparator) == "." && localeText(localeItem::DecimalPoint) == "," &&
             localeText(localeItem::ListSeparator) == ";" && localeText(localeItem::TimeSeparator) == ":" &&
             localeText(localeItem::MonthFull, 2) == "M\xC3\xA4rz" &&
             localeText(localeItem::DayShort, 0) == "So");
}

TEST(localeLinux, SpeaksTheUsersLanguageFromAnyCodeset)
{
    const configurationFolder folder;
    const struct {
        const char* Codeset;
        const char* Name;
    } rows[] = {{"UTF-8", "de_DE.UTF-8"}, {"ISO-8859-1", "de_DE"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        processHandle* const compiler = processStart(
            {"/usr/bin/localedef", "-i", "de_DE", "-f", row.Codeset, (folder.Path / row.Name).string()});
        if (compiler == nullptr || processWait(compiler) != 0)
            GTEST_SKIP() << "the sources of locales are not installed";
        const variableSet path("LOCPATH", folder.Path.c_str());
        const variableSet all("LC_ALL", row.Name);
        EXPECT_EQ(childRun("SpeaksGerman"), ChildGood);
    }
}

}  // namespace
