#include "platform/process.h"

#include "platform/debug.h"
#include "platform/file.h"
#include "platform/registry.h"
#include "tests/platform/contract.h"
#include "tests/platform/native/child.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <io.h>

namespace {

using win32Process = contractTest;

std::string InWindows(const std::string& file)
{
    const char* const root = std::getenv("SystemRoot");
    return std::string(root == nullptr ? "C:\\windows" : root) + "\\system32\\" + file;
}

// Each is a case of its own in the system's rules for quotes and backslashes.
const std::vector<std::string> Hostile = {
    "",           " ",         "a b",         "\t",    "\"",      "\"\"",   "\\",
    "\\\\",       "\\\"",      "a\\",         "a b\\", "a b\\\\", "a\\\"b", "a\\\\\"b",
    "C:\\a b\\",  "%PATH%",    "^&|<>",       "a\nb",  "a\r\nb",  "\v",     "--x=\"",
    "\" \" \\\"", "\\\\\\\"x", "a\"b\"c d\\", "\"\\",  "(a;b,c)", "*.*",    ""};

CHILD_TEST(ComparesHostileArguments)
{
    childEnd(childArguments() == Hostile);
}

TEST_F(win32Process, HandsOverHostileArguments)
{
    EXPECT_EQ(childRun("ComparesHostileArguments", Hostile), ChildGood);
}

TEST_F(win32Process, HandsOverLettersOfAllLanguages)
{
    const std::string name = "Gr\xC3\xBC\xC3\x9F \xE2\x82\xAC";
    const std::string text = "\xE4\xB8\xAD \\\"\xF0\x9F\x9B\xB0\\";
    processHandle* const reg =
        processStart({InWindows("reg.exe"), "add", "HKEY_CURRENT_USER\\" + std::string(ContractKey), "/v",
                      name, "/d", text, "/f"});
    ASSERT_NE(reg, nullptr);
    EXPECT_EQ(processWait(reg), 0);

    registryKey* const key = registryOpen(ContractKey);
    ASSERT_NE(key, nullptr);
    char16_t units[100] = {};
    uint32_t size = sizeof units;
    registryType type = {};
    EXPECT_EQ(registryQuery(key, name, type, units, size), registryStatus::Ok);
    EXPECT_EQ(std::u16string(units), u"\u4E2D \\\"\U0001F6F0\\");
    registryClose(key);
}

TEST_F(win32Process, StartsOnlyWhatGetsItsArgumentsWhole)
{
    const std::string self = processPath();
    // One that did start would run no test.
    const std::string idle = "--gtest_filter=-*";
    EXPECT_EQ(processStart({self, idle, std::string("a\0b", 3)}), nullptr);
    EXPECT_EQ(processStart({self, idle, "\xFF"}), nullptr);
    EXPECT_EQ(processStart({self, idle, std::string(40'000, 'x')}), nullptr);
    EXPECT_EQ(processStart({"", idle}), nullptr);
    EXPECT_EQ(processStart({'"' + self + '"', idle}), nullptr);
    EXPECT_EQ(processStart({self + std::string("\0.exe", 5), idle}), nullptr);
    EXPECT_EQ(processStart({"no such program.exe", idle}), nullptr);
}

TEST_F(win32Process, StartsNoScriptOfTheShell)
{
    for (const char* const name : {"script.bat", "script.CMD", "script.bat.", "script.cmd "}) {
        const std::filesystem::path script = std::filesystem::path(contractFolder()) / name;
        std::ofstream(script) << "exit 0\r\n";
        EXPECT_EQ(processStart({script.string(), "argument"}), nullptr) << name;
    }
}

CHILD_TEST(IsThere)
{
    childEnd(true);
}

TEST_F(win32Process, StartsAProgramWhosePathHasBlanks)
{
    const std::filesystem::path program = contractFolder() + u"/a program.exe";
    ASSERT_TRUE(fileCopy(std::filesystem::path(processPath()).u16string(), program.u16string()));
    processHandle* const child = processStart({program.string(), "--gtest_filter=DISABLED_child.IsThere",
                                               "--gtest_also_run_disabled_tests", "--gtest_brief=1"});
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(processWait(child), ChildGood);
}

CHILD_TEST(EndsWithAnyCode)
{
    std::_Exit(std::stoi(childArguments().at(0)));
}

CHILD_TEST(Breaks)
{
    debugBreak();
    childEnd(true);
}

TEST_F(win32Process, TellsOwnEndsFromOthers)
{
    struct endRow {
        const char* Argument;
        int Code;
    };
    // 259 is what the system calls a process that still runs.
    const endRow rows[] = {{"256", 256}, {"259", 259}, {"100000", 100'000}, {"-5", -1}};
    for (const endRow& row : rows)
        EXPECT_EQ(childRun("EndsWithAnyCode", {row.Argument}), row.Code);
    EXPECT_EQ(childRun("Breaks"), -1);
}

CHILD_TEST(StaysBesideAFile)
{
    childStay();
}

TEST_F(win32Process, HandsOverNoFileOfTheLibrary)
{
    const std::filesystem::path path = std::filesystem::path(contractFolder()) / "file";
    // The library opens its files in a way that lets children inherit them.
    std::FILE* const file = std::fopen(path.string().c_str(), "w");
    ASSERT_NE(file, nullptr);
    processHandle* const child = childStart("StaysBesideAFile");
    ASSERT_NE(child, nullptr);
    std::fclose(file);
    fileHandle handle = fileNone;
    EXPECT_EQ(fileOpen(path.u16string(), {.Write = true, .Exclusive = true}, handle), fileStatus::Ok);
    if (handle != fileNone)
        fileClose(handle);
    processKill(child);
    processWait(child);
}

TEST_F(win32Process, TakesInputForBytes)
{
    const int before = _setmode(_fileno(stdin), _O_TEXT);
    processInputBytes();
    EXPECT_EQ(_setmode(_fileno(stdin), before), _O_BINARY);
}

TEST_F(win32Process, KnowsItsOwnFile)
{
    const std::filesystem::path path(processPath());
    EXPECT_TRUE(path.is_absolute());
    EXPECT_TRUE(fileExists(path.u16string()));
}

}  // namespace
