// The report's file, what its name is made of, and the message about it.
#include "platform/crash.h"
#include "tests/platform/contract.h"
#include "tests/platform/linux/configuration.h"

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/stat.h>

namespace {

std::string Folder()
{
    return std::filesystem::path(contractFolder()).string();
}

void Write(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

std::string Documents()
{
    char text[crashPathRoom];
    const size_t length = crashDocuments(text, sizeof text);
    EXPECT_EQ(length, std::strlen(text));
    return text;
}

using crashFileLinux = contractTest;

TEST_F(crashFileLinux, DocumentsAreWhereTheDesktopKeepsThem)
{
    const variableSet home("HOME", Folder().c_str());
    const variableSet configuration("XDG_CONFIG_HOME", (Folder() + "/config").c_str());
    std::filesystem::create_directories(Folder() + "/config");
    std::filesystem::create_directories(Folder() + "/My \"papers\"");
    std::filesystem::create_directories(Folder() + "/elsewhere");
    struct row {
        std::string List, Documents;
    };
    const row rows[] = {
        {"XDG_DOCUMENTS_DIR=\"$HOME/elsewhere\"\n", "/elsewhere"},
        {"# no\nXDG_MUSIC_DIR=\"$HOME/m\"\n  XDG_DOCUMENTS_DIR=\"$HOME/elsewhere\"", "/elsewhere"},
        {"XDG_DOCUMENTS_DIR=\"" + Folder() + "/elsewhere\"\n", "/elsewhere"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/My \\\"papers\\\"\"\n", "/My \"papers\""},
        {"XDG_DOCUMENTS_DIR=\"$HOME/elsewhere//\"\n", "/elsewhere"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/\"\n", ""},
        {"XDG_DOCUMENTS_DIR=\"$HOME/missing\"\n", ""},
        {"XDG_DOCUMENTS_DIR=\"relative\"\n", ""},
        {"#XDG_DOCUMENTS_DIR=\"$HOME/elsewhere\"\n", ""},
        {"XDG_DOCUMENTS_DIR=\"\n", ""},
        {"XDG_DOCUMENTS_DIR=\"\"\n", ""},
        {"", ""},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.List);
        Write(Folder() + "/config/user-dirs.dirs", each.List);
        EXPECT_EQ(Documents(), Folder() + each.Documents);
    }
}

TEST_F(crashFileLinux, WithoutAListDocumentsAreAtHome)
{
    const variableSet home("HOME", Folder().c_str());
    const variableSet configuration("XDG_CONFIG_HOME", (Folder() + "/nothing").c_str());
    EXPECT_EQ(Documents(), Folder());
    const variableSet closed("HOME", (Folder() + '/').c_str());
    EXPECT_EQ(Documents(), Folder());
    const variableSet root("HOME", "/");
    EXPECT_EQ(Documents(), "/");
    const variableSet none("HOME", "");
    EXPECT_EQ(Documents(), "");
}

TEST_F(crashFileLinux, AFolderThatIsTooLongIsNone)
{
    const variableSet configuration("XDG_CONFIG_HOME", "/nowhere");
    const variableSet home("HOME", std::string(4094, 'x').c_str());
    EXPECT_EQ(Documents().size(), 4094u);
    const variableSet longer("HOME", std::string(4095, 'x').c_str());
    char text[crashPathRoom - 1];
    EXPECT_EQ(crashDocuments(text, sizeof text), 0u);
}

TEST_F(crashFileLinux, TellsTheTimeOfTheWorld)
{
    using namespace std::chrono;
    const auto before = floor<seconds>(system_clock::now());
    const crashTime now = crashNow();
    const auto after = floor<seconds>(system_clock::now());
    const auto told = sys_days(year(now.Year) / now.Month / now.Day) + hours(now.Hour) + minutes(now.Minute) +
                      seconds(now.Second);
    EXPECT_GE(told, before);
    EXPECT_LE(told, after);
}

TEST_F(crashFileLinux, AReportIsForItsUserAlone)
{
    const std::string path = Folder() + "/report.txt";
    const intptr_t file = crashFileCreate(path.c_str());
    ASSERT_NE(file, crashNoFile);
    EXPECT_TRUE(crashFileWrite(file, "bytes", 5));
    crashFileClose(file);
    struct stat facts = {};
    ASSERT_EQ(stat(path.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0600u);
    EXPECT_EQ(facts.st_size, 5);
    char text[16] = {};
    const intptr_t again = crashFileOpen(path.c_str());
    EXPECT_EQ(crashFileRead(again, text, sizeof text), 5u);
    EXPECT_EQ(crashFileRead(again, text, sizeof text), 0u);
    crashFileClose(again);
    EXPECT_EQ(crashFileCreate((Folder() + "/missing/report.txt").c_str()), crashNoFile);
    EXPECT_EQ(crashFileOpen((Folder() + "/missing").c_str()), crashNoFile);
    EXPECT_FALSE(crashFileWrite(crashNoFile, "x", 1));
}

TEST_F(crashFileLinux, FindsAMessageInItsWordsOnlyWhenItIsOne)
{
    char caption[] = "Exception report written to file";
    char other[] = "/usr/bin/skyreckoning";
    char path[] = "/some/where.txt";
    char* message[] = {caption, path, nullptr};
    char* program[] = {other, path, nullptr};
    const char* found = nullptr;
    const char* text = nullptr;
    EXPECT_FALSE(crashMessageOf(2, program, found, text));
    EXPECT_FALSE(crashMessageOf(1, message, found, text));
    ASSERT_TRUE(crashMessageOf(2, message, found, text));
    EXPECT_STREQ(found, caption);
    EXPECT_STREQ(text, path);
}

}  // namespace
