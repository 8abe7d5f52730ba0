// What tests may put into the fake platform and see of it: heaps, files and values.

#include "platform/heap.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>

#include <cstring>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class fakeState : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    static fileHandle Open(const std::u16string& path, const fileAccess& access)
    {
        fileHandle handle = fileNone;
        EXPECT_EQ(fileOpen(path, access, handle), fileStatus::Ok);
        return handle;
    }
};

TEST_F(fakeState, CountsHeapsAndTheirRegions)
{
    heapHandle* const heap = heapCreate(0);
    void* const region = heapAllocate(heap, 100);
    EXPECT_EQ(fakeHeapCount(), 1u);
    EXPECT_EQ(fakeHeapRegions(), 1u);
    EXPECT_EQ(heapSize(heap, region), 100u);
    heapFree(heap, region);
    EXPECT_EQ(fakeHeapRegions(), 0u);
    heapDestroy(heap);
    EXPECT_EQ(fakeHeapCount(), 0u);
}

TEST_F(fakeState, GivesMoreThanWasAskedForWhenToldTo)
{
    heapHandle* const heap = heapCreate(0);
    fakeHeapSlack(28);
    void* const region = heapAllocate(heap, 100);
    EXPECT_EQ(heapSize(heap, region), 128u);
    std::memset(region, 1, 128);
    heapDestroy(heap);
}

TEST_F(fakeState, RefusesWhatNoMachineHas)
{
    heapHandle* const heap = heapCreate(0);
    EXPECT_EQ(heapAllocate(heap, SIZE_MAX), nullptr);
    EXPECT_EQ(heapAllocate(heap, SIZE_MAX / 2), nullptr);
    heapDestroy(heap);
}

TEST_F(fakeState, LeavesAForgottenHeapToItsHolder)
{
    heapHandle* const heap = heapCreate(0);
    void* const region = heapAllocate(heap, 100);
    fakeReset();
    EXPECT_EQ(fakeHeapCount(), 0u);
    EXPECT_EQ(fakeHeapRegions(), 0u);
    std::memset(region, 1, 100);
    heapFree(heap, region);
    heapDestroy(heap);
}

TEST_F(fakeState, TakesEverySpellingOfAPath)
{
    fakeFilePut(u"C:\\folder\\file", "text");
    for (const char16_t* path : {u"C:/folder/file", u"C:\\folder/file", u"C:\\\\folder\\.\\file"}) {
        EXPECT_TRUE(fakeFileHas(path));
        EXPECT_EQ(fakeFileBytes(path), "text");
    }
    EXPECT_FALSE(fakeFileHas(u"C:\\Folder\\file"));
    EXPECT_TRUE(fakeFileHas(u"C:\\folder"));
    EXPECT_EQ(fakeFileBytes(u"C:\\missing"), "");
}

TEST_F(fakeState, ShowsHandlesAndLocks)
{
    fakeFilePut(u"/file", "text");
    const fileHandle handle = Open(u"/file", {});
    EXPECT_TRUE(fileLockRange(handle, 10, 20, false));
    EXPECT_EQ(fakeFileHandles(), 1u);
    ASSERT_EQ(fakeFileLocks(u"/file").size(), 1u);
    EXPECT_EQ(fakeFileLocks(u"/file")[0].Offset, 10u);
    EXPECT_EQ(fakeFileLocks(u"/file")[0].Length, 20u);
    fileClose(handle);
    EXPECT_EQ(fakeFileHandles(), 0u);
    EXPECT_THAT(fakeFileLocks(u"/file"), IsEmpty());
}

TEST_F(fakeState, ComesShortOnceWhenToldTo)
{
    fakeFilePut(u"/file", "text");
    const fileHandle handle = Open(u"/file", {.Write = true});
    char buffer[4] = {};
    uint32_t done = 0;
    fakeShort("fileRead", 1);
    EXPECT_EQ(fileRead(handle, 0, buffer, 4, done), fileStatus::Ok);
    EXPECT_EQ(done, 1u);
    fakeShort("fileWrite", 2);
    EXPECT_EQ(fileWrite(handle, 0, "abcd", 4, done), fileStatus::Ok);
    EXPECT_EQ(done, 2u);
    EXPECT_EQ(fileRead(handle, 0, buffer, 4, done), fileStatus::Ok);
    EXPECT_EQ(done, 4u);
    EXPECT_EQ(std::string(buffer, 4), "abxt");
    fileClose(handle);
}

TEST_F(fakeState, PretendsWithTheStatusOk)
{
    fakeFilePut(u"/file", "text");
    const fileHandle handle = Open(u"/file", {.Write = true});
    uint32_t done = 0;
    fakeFail("fileWrite", {.Status = fileStatus::Ok});
    EXPECT_EQ(fileWrite(handle, 0, nullptr, UINT32_MAX, done), fileStatus::Ok);
    EXPECT_EQ(done, UINT32_MAX);
    EXPECT_EQ(fakeFileBytes(u"/file"), "text");
    fileClose(handle);
}

TEST_F(fakeState, HasADiskWithAnEnd)
{
    fakeFilePut(u"/file", "text");
    const fileHandle handle = Open(u"/file", {.Write = true});
    uint32_t done = 1;
    EXPECT_EQ(fileWrite(handle, uint64_t{1} << 40, "a", 1, done), fileStatus::DiskFull);
    EXPECT_EQ(done, 0u);
    fileClose(handle);
}

TEST_F(fakeState, ForgetsOpenHandles)
{
    fakeFilePut(u"/file", "text");
    const fileHandle handle = Open(u"/file", {.Exclusive = true});
    registryKey* const key = registryCreate("Key");
    fakeReset();
    EXPECT_EQ(fakeFileHandles(), 0u);
    EXPECT_EQ(fakeRegistryHandles(), 0u);
    EXPECT_EQ(fileSize(handle), std::nullopt);
    EXPECT_FALSE(registrySet(key, "name", registryType::Text, nullptr, 0));
    fileClose(handle);
    registryClose(key);
}

TEST_F(fakeState, KeepsValuesUnderTheNameOfTheFirstWrite)
{
    fakeRegistryPut("Software\\Name", "Value", {registryType::Dword, {1, 0, 0, 0}});
    registryKey* const key = registryCreate("SOFTWARE\\name");
    EXPECT_TRUE(registrySet(key, "VALUE", registryType::Binary, "ab", 2));
    registryClose(key);
    const auto values = fakeRegistryValues("software\\NAME");
    ASSERT_EQ(values.size(), 1u);
    EXPECT_EQ(values.begin()->first, "Value");
    EXPECT_EQ(values.begin()->second.Type, registryType::Binary);
    EXPECT_THAT(values.begin()->second.Data, ElementsAre('a', 'b'));
    EXPECT_TRUE(fakeRegistryValues("Software\\Other").empty());
}

TEST_F(fakeState, CountsOpenKeys)
{
    registryKey* const written = registryCreate("One\\Two");
    registryKey* const read = registryOpen("One");
    EXPECT_EQ(fakeRegistryHandles(), 2u);
    registryClose(written);
    registryClose(read);
    EXPECT_EQ(fakeRegistryHandles(), 0u);
}

class fakeMisuse : public fakeState
{
protected:
    void SetUp() override
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        fakeState::SetUp();
    }
};

using fakeStateDeathTest = fakeMisuse;

TEST_F(fakeStateDeathTest, EndsATestThatFreesWhatIsNotTaken)
{
    heapHandle* const heap = heapCreate(0);
    heapHandle* const other = heapCreate(0);
    void* const region = heapAllocate(heap, 10);
    EXPECT_DEATH(heapFree(other, region), "misused");
    EXPECT_DEATH(heapSize(other, region), "misused");
    heapDestroy(heap);
    heapDestroy(other);
}

TEST_F(fakeStateDeathTest, EndsATestThatClosesAHandleTwice)
{
    fakeFilePut(u"/file", "text");
    const fileHandle handle = Open(u"/file", {});
    fileClose(handle);
    EXPECT_DEATH(fileClose(handle), "misused");
    registryKey* const key = registryCreate("Key");
    registryClose(key);
    EXPECT_DEATH(registryClose(key), "misused");
}

}  // namespace
