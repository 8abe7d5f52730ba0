#include "forms/help.h"

#include "forms/arguments.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class helpTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        argumentsKeep({});
    }
    void TearDown() override { argumentsKeep({}); }
};

TEST_F(helpTest, AFileStandsBesideTheProgramUnlessItsPathIsWhole)
{
    struct row {
        const char* Program;
        const char* File;
        const char* Path;
    };
    constexpr row rows[] = {
        {"C:\\Sky\\sky.exe", "Skyreckoning.chm", "C:\\Sky\\Skyreckoning.chm"},
        {"/opt/sky/sky", "Skyreckoning.chm", "/opt/sky/Skyreckoning.chm"},
        {"C:\\Sky/bin\\sky.exe", "help\\a.chm", "C:\\Sky/bin\\help\\a.chm"},
        {"C:\\Sky\\sky.exe", "..\\a.chm", "C:\\Sky\\..\\a.chm"},
        {"C:sky.exe", "a.chm", "C:a.chm"},
        {"sky.exe", "a.chm", "a.chm"},
        {"", "a.chm", "a.chm"},
        {"/", "a.chm", "/a.chm"},
        {"C:\\Sky\\sky.exe", "", "C:\\Sky\\"},
        // Whole: a drive letter and colon, or a slash.
        {"C:\\Sky\\sky.exe", "D:\\a.chm", "D:\\a.chm"},
        {"C:\\Sky\\sky.exe", "d:a.chm", "d:a.chm"},
        {"C:\\Sky\\sky.exe", "\\a.chm", "\\a.chm"},
        {"C:\\Sky\\sky.exe", "/a.chm", "/a.chm"},
        {"C:\\Sky\\sky.exe", "\\\\server\\a.chm", "\\\\server\\a.chm"},
        // Neither.
        {"/sky", "1:a.chm", "/1:a.chm"},
        {"/sky", ":a.chm", "/:a.chm"},
        {"/sky", "ab:a.chm", "/ab:a.chm"},
        {"/sky", "\xC3\x84:a.chm", "/\xC3\x84:a.chm"},
    };
    for (const row& each : rows)
        EXPECT_EQ(helpPath(each.Program, each.File), each.Path) << each.Program << " " << each.File;
}

TEST_F(helpTest, WithoutAFileItIsTheProgramsName)
{
    struct row {
        const char* Program;
        const char* Path;
    };
    constexpr row rows[] = {
        {"C:\\Sky\\sky.exe", "C:\\Sky\\sky.chm"},
        {"/opt/sky/sky", "/opt/sky/sky.chm"},
        {"/opt/sky.d/sky", "/opt/sky.d/sky.chm"},
        {"C:\\sky.d\\sky", "C:\\sky.d\\sky.chm"},
        {"sky.1.0.exe", "sky.1.0.chm"},
        {"sky", "sky.chm"},
        // Names that end in a dot are left whole.
        {"/opt/sky.", "/opt/sky..chm"},
        {"/opt/sky..", "/opt/sky...chm"},
        {"/opt/.", "/opt/..chm"},
        {"/opt/..", "/opt/...chm"},
        {"a.b.", "a.b..chm"},
        {"/opt/", "/opt/.chm"},
        {"/opt.d/", "/opt.d/.chm"},
        {"", ".chm"},
        {"/opt/.sky", "/opt/.chm"},
        {"C:.", "C:..chm"},
    };
    for (const row& each : rows)
        EXPECT_EQ(helpPath(each.Program, nullptr), each.Path) << each.Program;
}

TEST_F(helpTest, OpensTheFileBesideTheProgramAsItWasStarted)
{
    argumentsKeep({"C:\\Sky\\sky.exe", "D:\\else"});
    EXPECT_TRUE(Help("Skyreckoning.chm", nullptr));
    EXPECT_TRUE(Help(nullptr, nullptr));
    EXPECT_THAT(fakeCalls(),
                ElementsAre("shellHelp C:\\Sky\\Skyreckoning.chm", "shellHelp C:\\Sky\\sky.chm"));
}

TEST_F(helpTest, AsksTheSystemForAProgramThatWasStartedByItsName)
{
    for (const char* name : {"sky", "./sky", "bin/sky", ""}) {
        argumentsKeep({name});
        fakeClearCalls();
        EXPECT_TRUE(Help("a.chm", nullptr));
        EXPECT_THAT(fakeCalls(), ElementsAre("shellHelp /fake/a.chm")) << name;
    }
    argumentsKeep({});
    fakeClearCalls();
    EXPECT_TRUE(Help("a.chm", nullptr));
    EXPECT_THAT(fakeCalls(), ElementsAre("shellHelp /fake/a.chm"));
    argumentsKeep({"bin/sky"});
    fakeClearCalls();
    fakeFail("processPath");
    EXPECT_TRUE(Help("a.chm", nullptr));
    EXPECT_THAT(fakeCalls(), ElementsAre("shellHelp bin/a.chm")) << "of a system that does not tell";
}

TEST_F(helpTest, AFailureIsTold)
{
    fakeFail("shellHelp", {.Times = 2});
    EXPECT_FALSE(Help("a.chm", nullptr));
    EXPECT_FALSE(Help(nullptr, nullptr));
    EXPECT_TRUE(Help("a.chm", nullptr));
    EXPECT_FALSE(Help("/a\nb.chm", nullptr));
}

}  // namespace
