#include "platform/file.h"

#include "platform/linux/fileSystem.h"
#include "tests/platform/linux/configuration.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr fileAccess Write{.Write = true};
constexpr fileAccess WriteAlone{.Write = true, .Exclusive = true};

class fileLinux : public testing::Test
{
protected:
    std::u16string Path(const char* name) const { return (Folder.Path / name).u16string(); }
    std::string Narrow(const char* name) const { return (Folder.Path / name).string(); }
    void Put(const char* name) const { std::ofstream(Folder.Path / name) << "content"; }

    const configurationFolder Folder;
};

fileStatus Open(const std::u16string& path, const fileAccess& access, fileHandle& handle)
{
    handle = fileNone;
    return fileOpen(path, access, handle);
}

TEST_F(fileLinux, TellsThatTheDiskIsFull)
{
    fileHandle full = fileNone;
    if (fileOpen(u"/dev/full", Write, full) != fileStatus::Ok)
        GTEST_SKIP() << "there is no such device";
    uint32_t done = 7;
    EXPECT_EQ(fileWrite(full, 0, "x", 1, done), fileStatus::DiskFull);
    EXPECT_EQ(done, 0u);
    fileClose(full);
}

TEST_F(fileLinux, TakesWhatFitsOntoAFullDisk)
{
    fileHandle file = fileNone;
    ASSERT_EQ(fileCreate(Path("file"), Write, file), fileStatus::Ok);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {1000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);

    const std::string bytes(1500, 'x');
    uint32_t done = 0;
    EXPECT_EQ(fileWrite(file, 0, bytes.data(), 1500, done), fileStatus::Ok);
    EXPECT_EQ(done, 1000u);
    EXPECT_EQ(fileWrite(file, 1000, bytes.data(), 500, done), fileStatus::DiskFull);
    EXPECT_EQ(done, 0u);
    std::ofstream(Folder.Path / "small") << "fits";
    EXPECT_FALSE(fileCopy(u"/proc/self/exe", Path("copy")));

    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);
    EXPECT_EQ(fileSize(file), 1000u);
    EXPECT_FALSE(fileExists(Path("copy")));
    fileClose(file);
}

TEST_F(fileLinux, TurnsTheSystemsErrorsIntoOurs)
{
    const struct {
        int Error;
        fileStatus Status;
    } rows[] = {
        {0, fileStatus::Ok},           {ENOENT, fileStatus::Missing},  {ENOTDIR, fileStatus::Missing},
        {EEXIST, fileStatus::Exists},  {EAGAIN, fileStatus::Sharing},  {ENOSPC, fileStatus::DiskFull},
        {EFBIG, fileStatus::DiskFull}, {ENOMEM, fileStatus::NoMemory}, {EDQUOT, fileStatus::NoQuota},
        {EACCES, fileStatus::Failed},  {EISDIR, fileStatus::Failed},   {EIO, fileStatus::Failed},
    };
    for (const auto& row : rows)
        EXPECT_EQ(fileStatusOf(row.Error), row.Status) << row.Error;
}

TEST_F(fileLinux, DoesNotWaitForTheOtherEndOfAPipe)
{
    ASSERT_EQ(mkfifo(Narrow("pipe").c_str(), 0600), 0);
    fileHandle handle = fileNone;
    EXPECT_EQ(Open(Path("pipe"), {}, handle), fileStatus::Failed);
    EXPECT_EQ(Open(Path("pipe"), WriteAlone, handle), fileStatus::Failed);
    EXPECT_FALSE(fileCopy(Path("pipe"), Path("copy")));
    EXPECT_TRUE(fileRemove(Path("pipe")));
}

TEST_F(fileLinux, RemovesALinkAndNotWhatItLeadsTo)
{
    Put("file");
    std::filesystem::create_symlink("file", Folder.Path / "link");
    std::filesystem::create_symlink("nothing", Folder.Path / "dangling");
    EXPECT_TRUE(fileExists(Path("dangling")));
    EXPECT_TRUE(fileRemove(Path("link")));
    EXPECT_TRUE(fileRemove(Path("dangling")));
    EXPECT_TRUE(fileExists(Path("file")));
}

TEST_F(fileLinux, LeavesNothingBehindWhenItMakesAFile)
{
    fileHandle handle = fileNone;
    ASSERT_EQ(fileCreate(Path("file"), WriteAlone, handle), fileStatus::Ok);
    EXPECT_EQ(fileCreate(Path("file"), WriteAlone, handle), fileStatus::Exists);
    fileClose(handle);
    const std::filesystem::directory_iterator entries(Folder.Path);
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(fileLinux, KeepsACopyAsPrivateAsTheFile)
{
    Put("private");
    ASSERT_EQ(chmod(Narrow("private").c_str(), 0600), 0);
    ASSERT_TRUE(fileCopy(Path("private"), Path("copy")));
    struct stat state = {};
    ASSERT_EQ(stat(Narrow("copy").c_str(), &state), 0);
    EXPECT_EQ(state.st_mode & 0777u, 0600u);
}

TEST_F(fileLinux, CopiesNothingWithoutAnEnd)
{
    EXPECT_FALSE(fileCopy(u"/dev/zero", Path("copy")));
    EXPECT_FALSE(fileExists(Path("copy")));
}

TEST_F(fileLinux, OpensNoFileThatLostItsNameMeanwhile)
{
    // Who has a file alone keeps it from being removed, so it must bear its name.
    constexpr int Rounds = 3000;
    std::atomic<int> left{Rounds};
    std::atomic<int> nameless{0};
    const auto openAndLook = [&] {
        while (left > 0) {
            fileHandle handle = fileNone;
            if (Open(Path("file"), WriteAlone, handle) == fileStatus::Ok &&
                !fileIsNamed(static_cast<int>(handle), Narrow("file")))
                nameless++;
            fileClose(handle);
        }
    };
    {
        std::vector<std::jthread> openers;
        for (int i = 0; i < 6; i++)
            openers.emplace_back(openAndLook);
        while (left-- > 0) {
            fileHandle handle = fileNone;
            fileCreate(Path("file"), Write, handle);
            fileClose(handle);
            fileRemove(Path("file"));
        }
    }
    EXPECT_EQ(nameless, 0);
}

TEST_F(fileLinux, LetsOneOfManyThreadsHaveTheFileAlone)
{
    Put("file");
    std::atomic<int> inside{0};
    std::atomic<int> turns{0};
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([&] {
            while (turns < 200) {
                fileHandle handle = fileNone;
                if (Open(Path("file"), WriteAlone, handle) != fileStatus::Ok)
                    continue;
                EXPECT_EQ(++inside, 1);
                turns++;
                inside--;
                fileClose(handle);
            }
        });
    }
}

TEST_F(fileLinux, MakesAFileInOneOfManyThreads)
{
    for (int round = 0; round < 50; round++) {
        std::atomic<int> made{0};
        {
            std::vector<std::jthread> threads;
            for (int i = 0; i < 4; i++) {
                threads.emplace_back([&] {
                    fileHandle handle = fileNone;
                    const fileStatus status = fileCreate(Path("file"), WriteAlone, handle);
                    EXPECT_TRUE(status == fileStatus::Ok || status == fileStatus::Exists);
                    made += status == fileStatus::Ok ? 1 : 0;
                    fileClose(handle);
                });
            }
        }
        EXPECT_EQ(made, 1);
        ASSERT_TRUE(fileRemove(Path("file")));
    }
}

// Runs in a process of its own.
[[noreturn]] void OpenWithoutStreams(const std::u16string& path)
{
    close(STDERR_FILENO);
    fileHandle handle = fileNone;
    const bool good = fileCreate(path, Write, handle) == fileStatus::Ok && handle > STDERR_FILENO &&
                      fcntl(STDERR_FILENO, F_GETFD) == -1;
    _exit(good ? 42 : 1);
}

TEST_F(fileLinux, PutsNoFileInTheStandardStreamsPlace)
{
    EXPECT_EXIT(OpenWithoutStreams(Path("file")), testing::ExitedWithCode(42), "");
}

TEST_F(fileLinux, EndsItsLocksAlsoWhenAStartingProgramHoldsACopy)
{
    fileHandle handle = fileNone;
    ASSERT_EQ(fileCreate(Path("file"), WriteAlone, handle), fileStatus::Ok);
    ASSERT_TRUE(fileLockRange(handle, 0, 100, false));
    const int copy = dup(static_cast<int>(handle));
    fileClose(handle);
    ASSERT_EQ(Open(Path("file"), WriteAlone, handle), fileStatus::Ok);
    EXPECT_TRUE(fileLockRange(handle, 0, 100, false));
    fileClose(handle);
    close(copy);
}

TEST_F(fileLinux, CountsEverySlashOfTheRoot)
{
    EXPECT_EQ(fileRootLength(u"/"), 1u);
    EXPECT_EQ(fileRootLength(u"/home/file"), 1u);
    EXPECT_EQ(fileRootLength(u"//home"), 2u);
    EXPECT_EQ(fileRootLength(u"C:\\file"), 0u);
    EXPECT_FALSE(fileIsSeparator(u'\\'));
}

}  // namespace
