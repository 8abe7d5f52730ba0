#include "tests/foundations/settings/settingsTextFixture.h"

#include <map>
#include <vector>

namespace {

class settingsTextBackup : public settingsTextFixture
{
protected:
    std::u16string Backup(int number) const
    {
        return number == 0 ? Path : Path + u'.' + static_cast<char16_t>(u'0' + number);
    }

    // The content of the file, as number 0, and of those backups that exist.
    std::map<int, std::string> Disk() const
    {
        std::map<int, std::string> files;
        for (int number = 0; number <= 9; ++number)
            if (fakeFileHas(Backup(number)))
                files[number] = fakeFileBytes(Backup(number));
        return files;
    }

    void PutDisk(const std::map<int, std::string>& files)
    {
        for (const auto& [number, bytes] : files)
            fakeFilePut(Backup(number), bytes);
    }
};

using disk = std::map<int, std::string>;

}  // namespace

TEST_F(settingsTextBackup, CopiesTheFileAndShiftsItsBackups)
{
    PutDisk({{0, "now"}, {1, "one"}, {2, "two"}});
    Store.RotateFiles();
    EXPECT_EQ(Disk(), (disk{{0, "now"}, {1, "now"}, {2, "one"}, {3, "two"}}));
}

TEST_F(settingsTextBackup, LeavesTheSameContentTwiceWhenRotatedTwice)
{
    PutDisk({{0, "now"}});
    Store.RotateFiles();
    Store.RotateFiles();
    EXPECT_EQ(Disk(), (disk{{0, "now"}, {1, "now"}, {2, "now"}}));
}

TEST_F(settingsTextBackup, DropsTheOldestOfNineBackups)
{
    disk before{{0, "0"}};
    disk after{{0, "0"}};
    for (int number = 1; number <= 9; ++number) {
        before[number] = std::to_string(number);
        after[number] = std::to_string(number - 1);
    }
    PutDisk(before);
    Store.RotateFiles();
    EXPECT_EQ(Disk(), after);
    EXPECT_FALSE(fakeFileHas(Path + u".10"));
}

TEST_F(settingsTextBackup, LeavesGapsWhereTheyAreButOneFurther)
{
    PutDisk({{0, "now"}, {2, "two"}, {5, ""}});
    Store.RotateFiles();
    EXPECT_EQ(Disk(), (disk{{0, "now"}, {1, "now"}, {3, "two"}, {6, ""}}));
}

TEST_F(settingsTextBackup, RotatesBackupsWithoutAFile)
{
    PutDisk({{1, "one"}});
    Store.RotateFiles();
    EXPECT_EQ(Disk(), (disk{{2, "one"}}));
    fakeReset();
    Store.RotateFiles();
    EXPECT_EQ(Disk(), disk{});
}

TEST_F(settingsTextBackup, CopiesAnEmptyFileToo)
{
    PutDisk({{0, ""}});
    Store.RotateFiles();
    EXPECT_EQ(Disk(), (disk{{0, ""}, {1, ""}}));
}

TEST_F(settingsTextBackup, PassesOverABackupWhoseTargetCannotBeRemoved)
{
    disk all;
    for (int number = 0; number <= 9; ++number)
        all[number] = std::to_string(number);
    PutDisk(all);
    // The only target in the way is the oldest: all others have moved when their turn comes.
    fakeFail("fileRemove");
    Store.RotateFiles();
    disk after = all;
    // 8 stays, so its own place is taken too until it is removed for 7.
    after[8] = "7";
    for (int number = 7; number >= 1; --number)
        after[number] = std::to_string(number - 1);
    EXPECT_EQ(Disk(), after);
}

TEST_F(settingsTextBackup, GoesOnWhenARenameOrTheCopyFails)
{
    PutDisk({{0, "now"}, {1, "one"}, {2, "two"}});
    fakeFail("fileRename");
    Store.RotateFiles();
    // 2 did not move, so it goes when 1 takes its place.
    EXPECT_EQ(Disk(), (disk{{0, "now"}, {1, "now"}, {2, "one"}}));
    fakeFail("fileCopy");
    Store.RotateFiles();
    EXPECT_EQ(Disk(), (disk{{0, "now"}, {2, "now"}, {3, "one"}}));
}

TEST_F(settingsTextBackup, RestoresAnEmptyFileFromItsNewestBackupWithContent)
{
    const struct {
        disk Before;
        disk After;
    } Cases[] = {
        {{{0, ""}, {1, "one"}, {2, "two"}}, {{0, "one"}, {2, "two"}}},
        {{{0, ""}, {1, ""}, {2, "two"}}, {{0, "two"}, {1, ""}}},
        {{{0, ""}, {9, "nine"}}, {{0, "nine"}}},
        {{{0, ""}, {1, ""}}, {{0, ""}, {1, ""}}},
        {{{0, ""}}, {{0, ""}}},
        {{{0, "now"}, {1, "one"}}, {{0, "now"}, {1, "one"}}},
        {{{1, "one"}}, {{1, "one"}}},
        {{}, {}},
    };
    for (const auto& [before, after] : Cases) {
        SCOPED_TRACE(testing::PrintToString(before));
        fakeReset();
        PutDisk(before);
        Store.RestoreFile();
        EXPECT_EQ(Disk(), after);
    }
}

TEST_F(settingsTextBackup, DoesNotRestoreAnOpenStore)
{
    PutDisk({{0, ""}, {1, "one"}});
    Store.Open(true);
    Store.RestoreFile();
    Store.Close(false);
    EXPECT_EQ(Disk(), (disk{{0, ""}, {1, "one"}}));
}

TEST_F(settingsTextBackup, KeepsTheBackupWhenTheEmptyFileCannotBeRemoved)
{
    PutDisk({{0, ""}, {1, "one"}, {2, "two"}});
    fakeFail("fileRemove");
    Store.RestoreFile();
    EXPECT_EQ(Disk(), (disk{{0, ""}, {1, "one"}, {2, "two"}}));
}

TEST_F(settingsTextBackup, TakesABackupWhoseSizeCannotBeTold)
{
    PutDisk({{0, ""}, {1, ""}, {2, "two"}});
    fakeFail("fileSizeOf", {.Skip = 1});
    Store.RestoreFile();
    EXPECT_EQ(Disk(), (disk{{0, ""}, {2, "two"}}));
}

TEST_F(settingsTextBackup, LeavesAFileAloneWhoseSizeCannotBeTold)
{
    PutDisk({{0, ""}, {1, "one"}});
    fakeFail("fileSizeOf");
    Store.RestoreFile();
    EXPECT_EQ(Disk(), (disk{{0, ""}, {1, "one"}}));
}
