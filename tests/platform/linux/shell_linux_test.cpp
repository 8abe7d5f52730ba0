#include "platform/shell.h"

#include "tests/platform/contract.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using testing::HasSubstr;

// A desktop whose opener is a script that the test writes. It tells what it was given in the file `told`,
// when it is through.
class shellLinux : public contractTest
{
protected:
    void SetUp() override
    {
        contractTest::SetUp();
        Folder = std::filesystem::canonical(contractFolder());
        const char* const path = std::getenv("PATH");
        PathBefore = path ? path : "";
        SetPath(Folder.string() + ":/usr/bin:/bin");
    }
    void TearDown() override { SetPath(PathBefore); }

    static void SetPath(const std::string& path) { setenv("PATH", path.c_str(), 1); }

    void Opener(const std::string& commands) const
    {
        Write("xdg-open", "#!/bin/sh\nstreams=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2)\n{\n" +
                              commands + "\n} > '" + (Folder / "being told").string() + "' 2>&1\nmv '" +
                              (Folder / "being told").string() + "' '" + (Folder / "told").string() + "'\n");
        chmod((Folder / "xdg-open").c_str(), S_IRWXU);
    }

    void Write(const std::string& name, const std::string& text) const
    {
        std::filesystem::create_directories((Folder / name).parent_path());
        std::ofstream(Folder / name, std::ios::binary) << text;
    }

    // What the opener told, once it is through.
    std::string Told() const
    {
        const std::filesystem::path file = Folder / "told";
        if (!contractAwait([&file] { return std::filesystem::exists(file); }))
            return "nothing";
        std::ifstream stream(file, std::ios::binary);
        std::string text{std::istreambuf_iterator<char>(stream), {}};
        std::filesystem::remove(file);
        return text;
    }

    std::filesystem::path Folder;

private:
    std::string PathBefore;
};

constexpr char Repeat[] = "for each; do printf '[%s]' \"$each\"; done";

TEST_F(shellLinux, GivesTheTargetAsOneArgument)
{
    Opener(Repeat);
    for (const std::string target :
         {"https://skyreckoning.example/?a=b&c;d", "mailto:hello@skyreckoning.example", "/a file", "'$HOME'",
          "\"; touch x; \"", "`x` $(x) *", "a\\n", "\xC3\xA4\xFF", " "}) {
        EXPECT_TRUE(shellOpen(target)) << target;
        EXPECT_EQ(Told(), "[" + target + "]");
    }
}

TEST_F(shellLinux, StartsNothingForARefusedTarget)
{
    Opener(Repeat);
    EXPECT_FALSE(shellOpen("--version"));
    EXPECT_FALSE(shellOpen(std::string("a\0b", 3)));
    EXPECT_TRUE(shellOpen("last"));
    EXPECT_EQ(Told(), "[last]");
}

TEST_F(shellLinux, SaysWhenThereIsNoOpener)
{
    for (const std::string path : {"", ":", "/none:/none too", "none"}) {
        SetPath(path);
        EXPECT_FALSE(shellOpen("a")) << path;
    }
    unsetenv("PATH");
    EXPECT_FALSE(shellOpen("a"));
}

TEST_F(shellLinux, LooksForItInAbsoluteFoldersAlone)
{
    Opener(Repeat);
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(Folder);
    for (const char* path : {".", "", ":.:", "./"}) {
        SetPath(path);
        EXPECT_FALSE(shellOpen("a")) << path;
    }
    std::filesystem::current_path(before);
}

TEST_F(shellLinux, SaysWhenTheOpenerIsNoProgram)
{
    Write("xdg-open", "this is no program");
    SetPath(Folder);
    EXPECT_FALSE(shellOpen("a")) << "it may not be run";
    chmod((Folder / "xdg-open").c_str(), S_IRWXU);
    EXPECT_FALSE(shellOpen("a")) << "it cannot be run";
    std::filesystem::remove(Folder / "xdg-open");
    std::filesystem::create_directory(Folder / "xdg-open");
    EXPECT_FALSE(shellOpen("a")) << "it is a folder";
    EXPECT_FALSE(shellOpen(std::string(10'000'000, 'a'))) << "too long for the system";
}

TEST_F(shellLinux, SaysWhenATargetIsTooLong)
{
    Opener(Repeat);
    EXPECT_FALSE(shellOpen(std::string(10'000'000, 'a')));
}

TEST_F(shellLinux, DoesNotWaitForTheOpener)
{
    ASSERT_EQ(mkfifo((Folder / "go on").c_str(), S_IRWXU), 0);
    Opener("read line < '" + (Folder / "go on").string() + "'; printf '%s' \"$line\"");
    EXPECT_TRUE(shellOpen("a"));
    EXPECT_FALSE(std::filesystem::exists(Folder / "told"));
    std::ofstream(Folder / "go on") << "through\n";
    EXPECT_EQ(Told(), "through");
}

TEST_F(shellLinux, LeavesNoChildBehind)
{
    Opener(Repeat);
    EXPECT_TRUE(shellOpen("a"));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
    Told();
}

TEST_F(shellLinux, WorksInAProgramThatIgnoresItsChildren)
{
    const auto before = signal(SIGCHLD, SIG_IGN);
    Opener(Repeat);
    EXPECT_TRUE(shellOpen("a"));
    EXPECT_EQ(Told(), "[a]");
    signal(SIGCHLD, before);
}

TEST_F(shellLinux, TheOpenerStandsAlone)
{
    Opener("cut -d' ' -f6 /proc/$$/stat; echo \"$streams\"");
    EXPECT_TRUE(shellOpen("a"));
    const std::string told = Told();
    EXPECT_NE(std::atoi(told.c_str()), getsid(0)) << told;
    EXPECT_THAT(told, HasSubstr("\n/dev/null\n/dev/null\n/dev/null\n"));
}

TEST_F(shellLinux, TheOpenerHasSignalsAsTheSystemHasThem)
{
    Opener("grep -E 'SigBlk|SigIgn' /proc/self/status | cut -f2");
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR2);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto handler = signal(SIGUSR1, SIG_IGN);
    EXPECT_TRUE(shellOpen("a"));
    signal(SIGUSR1, handler);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(Told(), "0000000000000000\n0000000000000000\n");
}

TEST_F(shellLinux, TheOpenerHoldsNoneOfOurFiles)
{
    const int file = open("/dev/null", O_RDONLY);
    const int high = fcntl(file, F_DUPFD, 900);
    Opener("ls /proc/$$/fd | tr '\\n' ' '");
    EXPECT_TRUE(shellOpen("a"));
    EXPECT_THAT(" " + Told(), testing::Not(HasSubstr(" 900 ")));
    close(file);
    close(high);
}

// --- The manual

TEST_F(shellLinux, OpensThePagesBesideTheManual)
{
    Opener(Repeat);
    Write("program/help/index.html", "x");
    for (const char* name : {"Skyreckoning.chm", "sky.chm", ".chm"}) {
        EXPECT_TRUE(shellHelp(Folder / "program" / name)) << name;
        EXPECT_EQ(Told(), "[" + (Folder / "program/help/index.html").string() + "]");
    }
}

TEST_F(shellLinux, OpensThePagesThatWereInstalled)
{
    Opener(Repeat);
    Write("usr/share/doc/skyreckoning/help/index.html", "x");
    Write("usr/bin/skyreckoning", "x");
    EXPECT_TRUE(shellHelp(Folder / "usr/bin/Skyreckoning.chm"));
    EXPECT_EQ(Told(), "[" + (Folder / "usr/share/doc/skyreckoning/help/index.html").string() + "]");
    Write("usr/bin/help/index.html", "x");
    EXPECT_TRUE(shellHelp(Folder / "usr/bin/Skyreckoning.chm"));
    EXPECT_EQ(Told(), "[" + (Folder / "usr/bin/help/index.html").string() + "]")
        << "those beside it come first";
}

TEST_F(shellLinux, OpensAPageByItsName)
{
    Opener(Repeat);
    Write("a page.html", "x");
    EXPECT_TRUE(shellHelp(Folder / "a page.html"));
    EXPECT_EQ(Told(), "[" + (Folder / "a page.html").string() + "]");
    EXPECT_FALSE(shellHelp(Folder / "another page.html"));
}

TEST_F(shellLinux, APageOfARelativeNameIsGivenWhole)
{
    Opener(Repeat);
    Write("-x/help/index.html", "x");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(Folder);
    EXPECT_TRUE(shellHelp("./-x/Skyreckoning.chm"));
    EXPECT_EQ(Told(), "[" + (Folder / "-x/help/index.html").string() + "]");
    EXPECT_FALSE(shellHelp("Skyreckoning.chm"));
    std::filesystem::current_path(before);
}

}  // namespace
