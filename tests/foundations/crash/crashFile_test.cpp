#include "foundations/crash/crashFile.h"

#include "tests/fakes/fakeCrash.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <regex>
#include <string>

using testing::EndsWith;
using testing::MatchesRegex;

namespace {

constexpr crashTime Time{2026, 1, 2, 3, 4, 5};

std::string PathOf(const std::string& folder, const std::string& program, unsigned number)
{
    std::array<char, crashPathRoom> room;
    crashPath(room, folder, '\\', program, Time, number);
    return room.data();
}

class crashFileTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
};

unsigned NumberIn(const std::string& path)
{
    return static_cast<unsigned>(std::stoul(path.substr(path.size() - 18, 3)));
}

}  // namespace

TEST(crashPath, NamesProgramTimeAndNumber)
{
    EXPECT_EQ(PathOf("C:\\Docs", "sky", 7), "C:\\Docs\\sky_20260102030405_007_ExceptInfo.txt");
}

TEST(crashPath, TheNumberStartsAgainAfterAThousand)
{
    EXPECT_THAT(PathOf("C:", "sky", 999), EndsWith("_999_ExceptInfo.txt"));
    EXPECT_THAT(PathOf("C:", "sky", 1000), EndsWith("_000_ExceptInfo.txt"));
    EXPECT_THAT(PathOf("C:", "sky", 4294967295), EndsWith("_295_ExceptInfo.txt"));
}

TEST(crashPath, WithoutAFolderTheSeparatorStandsAlone)
{
    EXPECT_EQ(PathOf("", "sky", 0), "\\sky_20260102030405_000_ExceptInfo.txt");
}

TEST(crashPath, ALongFolderKeepsAsMuchOfTheEndingAsFits)
{
    struct row {
        size_t Folder;
        std::string End;
    };
    const row rows[] = {
        {4095 - 38, "\\sky_20260102030405_007_ExceptInfo.txt"},
        {4095 - 37, "\\sky_20260102030405_007_ExceptInfo.tx"},  // one letter too long
        {4095 - 27, "\\sky_20260102030405_007_Exc"},
        {4095 - 21, "\\sky_20260102030405__"},  // no room for the number
        {4095 - 18, "\\sky__ExceptInfo.t"},     // nor for the time
        {4095 - 11, "\\sky__Excep"},
        {4095 - 5, "\\sky_"},
        {4095 - 4, "\\sky"},
        {4095 - 3, "\\_E"},  // nor for the name
        {4094, "\\"},
    };
    for (const row& each : rows) {
        const std::string path = PathOf(std::string(each.Folder, 'x'), "sky", 7);
        EXPECT_LE(path.size(), 4095u);
        EXPECT_EQ(path.substr(each.Folder - 1), "x" + each.End) << each.Folder;
    }
}

TEST_F(crashFileTest, NamesTheFileAfterTheProgramAndNow)
{
    const crashFile file;
    EXPECT_TRUE(file.IsOpen());
    EXPECT_TRUE(std::regex_match(
        file.Path(), std::regex("/documents/skyreckoning_20261122090807_[0-9]{3}_ExceptInfo\\.txt")))
        << file.Path();
}

TEST_F(crashFileTest, EachHasTheNextNumber)
{
    const crashFile one, two;
    EXPECT_EQ((NumberIn(one.Path()) + 1) % 1000, NumberIn(two.Path()));
}

TEST_F(crashFileTest, TakesTheLastExtensionFromTheName)
{
    fakeCrash().ProgramPath = "/opt/sky.d/my.program.x86";
    EXPECT_THAT(crashFile().Path(), testing::StartsWith("/documents/my.program_2026"));
    fakeCrash().ProgramPath = "/opt/sky.d/plain";
    EXPECT_THAT(crashFile().Path(), testing::StartsWith("/documents/plain_2026"));
    fakeCrash().ProgramPath = "";
    EXPECT_THAT(crashFile().Path(), testing::StartsWith("/documents/Unknown_2026"));
}

TEST_F(crashFileTest, WithoutDocumentsTheFileIsForTheRoot)
{
    fakeCrash().Documents = "";
    EXPECT_THAT(crashFile().Path(), testing::StartsWith("/skyreckoning_2026"));
}

TEST_F(crashFileTest, OneThatCannotBeMadeIsNotOpenAndTakesNothing)
{
    fakeCrash().Creates = false;
    crashFile file;
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.Text("lost"));
    EXPECT_EQ(fakeCallCount("crashFileClose"), 0u);
}

TEST_F(crashFileTest, ClosesOnce)
{
    {
        crashFile file;
        EXPECT_TRUE(file.Text("kept"));
        file.Close();
        EXPECT_FALSE(file.Text("lost"));
        EXPECT_EQ(fakeCrash().Written[file.Path()], "kept");
    }
    EXPECT_EQ(fakeCallCount("crashFileClose"), 1u);
}

TEST_F(crashFileTest, TellsThatAWriteFailed)
{
    crashFile file;
    fakeFail("crashFileWrite");
    EXPECT_FALSE(file.Text("lost"));
    EXPECT_TRUE(file.Text("kept"));
}

TEST_F(crashFileTest, DumpsMemoryFromTheWordThatHoldsTheAddress)
{
    alignas(8) const uint64_t words[] = {1, 2, 3, 4, 5, 6};
    const auto address = reinterpret_cast<uint64_t>(words);
    crashFile file;
    crashDump(file, "at ", address + 3, 4);
    std::string text = fakeCrash().Written[file.Path()];
    EXPECT_EQ(text.substr(19),
              "\r\n      0000000000000001  0000000000000002  0000000000000003  0000000000000004"
              "\r\n      0000000000000005\r\n");
}
