#include "platform/file.h"

#include "foundations/text/utfConvert.h"
#include "tests/platform/contract.h"
#include "tests/platform/native/child.h"

namespace {

constexpr fileAccess Write{.Write = true};
constexpr fileAccess WriteAlone{.Write = true, .Exclusive = true};

using fileNative = contractTest;

std::string Narrow(const std::u16string& text)
{
    std::string result;
    return utfAppend8From16(result, text.c_str());
}

std::u16string GivenPath()
{
    std::u16string result;
    return utfAppend16From8(result, childArguments().at(0).c_str());
}

fileStatus Open(const std::u16string& path, const fileAccess& access, fileHandle& handle)
{
    handle = fileNone;
    return fileOpen(path, access, handle);
}

CHILD_TEST(IsKeptOutOfTheFile)
{
    fileHandle handle = fileNone;
    childEnd(fileOpen(GivenPath(), {}, handle) == fileStatus::Sharing &&
             fileOpen(GivenPath(), WriteAlone, handle) == fileStatus::Sharing && !fileRemove(GivenPath()));
}

CHILD_TEST(OpensTheFile)
{
    fileHandle handle = fileNone;
    childEnd(fileOpen(GivenPath(), WriteAlone, handle) == fileStatus::Ok);
}

TEST_F(fileNative, KeepsAnotherProcessOutOfAFileThatIsOpenAlone)
{
    const std::u16string path = contractFolder() + u"/file";
    fileHandle handle = fileNone;
    ASSERT_EQ(fileCreate(path, WriteAlone, handle), fileStatus::Ok);
    EXPECT_EQ(childRun("IsKeptOutOfTheFile", {Narrow(path)}), ChildGood);
    fileClose(handle);
    EXPECT_EQ(childRun("OpensTheFile", {Narrow(path)}), ChildGood);
}

CHILD_TEST(StaysWithTheFileAlone)
{
    fileHandle handle = fileNone;
    fileHandle ready = fileNone;
    if (fileOpen(GivenPath(), WriteAlone, handle) == fileStatus::Ok)
        fileCreate(GivenPath() + u" is open", Write, ready);
    childStay();
}

TEST_F(fileNative, LetsAFileGoWithTheProcessThatHadIt)
{
    const std::u16string path = contractFolder() + u"/file";
    fileHandle handle = fileNone;
    ASSERT_EQ(fileCreate(path, Write, handle), fileStatus::Ok);
    fileClose(handle);
    processHandle* const child = childStart("StaysWithTheFileAlone", {Narrow(path)});
    ASSERT_NE(child, nullptr);
    EXPECT_TRUE(contractAwait([&] { return fileExists(path + u" is open"); }));
    EXPECT_EQ(Open(path, Write, handle), fileStatus::Sharing);
    processKill(child);
    processWait(child);
    EXPECT_TRUE(contractAwait([&] { return Open(path, WriteAlone, handle) == fileStatus::Ok; }));
    fileClose(handle);
}

CHILD_TEST(StaysWithALock)
{
    fileHandle handle = fileNone;
    fileHandle ready = fileNone;
    if (fileOpen(GivenPath(), Write, handle) == fileStatus::Ok && fileLockRange(handle, 0, 100, true))
        fileCreate(GivenPath() + u" is locked", Write, ready);
    childStay();
}

TEST_F(fileNative, LocksARangeAgainstAnotherProcess)
{
    const std::u16string path = contractFolder() + u"/file";
    fileHandle handle = fileNone;
    ASSERT_EQ(fileCreate(path, Write, handle), fileStatus::Ok);
    processHandle* const child = childStart("StaysWithALock", {Narrow(path)});
    ASSERT_NE(child, nullptr);
    EXPECT_TRUE(contractAwait([&] { return fileExists(path + u" is locked"); }));
    EXPECT_FALSE(fileLockRange(handle, 50, 1, false));
    EXPECT_TRUE(fileLockRange(handle, 100, 1, false));
    processKill(child);
    processWait(child);
    EXPECT_TRUE(contractAwait([&] { return fileLockRange(handle, 0, 100, false); }));
    fileClose(handle);
}

CHILD_TEST(StaysWithoutAnything)
{
    fileHandle ready = fileNone;
    fileCreate(GivenPath() + u" is known", Write, ready);
    childStay();
}

TEST_F(fileNative, HandsNoFileToAProcessThatIsStarted)
{
    const std::u16string path = contractFolder() + u"/file";
    fileHandle handle = fileNone;
    ASSERT_EQ(fileCreate(path, WriteAlone, handle), fileStatus::Ok);
    ASSERT_TRUE(fileLockRange(handle, 0, 100, false));
    processHandle* const child = childStart("StaysWithoutAnything", {Narrow(path)});
    ASSERT_NE(child, nullptr);
    EXPECT_TRUE(contractAwait([&] { return fileExists(path + u" is known"); }));
    fileClose(handle);
    // Had the child the file as well, it would stay taken.
    EXPECT_EQ(Open(path, WriteAlone, handle), fileStatus::Ok);
    EXPECT_TRUE(fileLockRange(handle, 0, 100, false));
    fileClose(handle);
    processKill(child);
    processWait(child);
}

}  // namespace
