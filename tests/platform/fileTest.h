// What the suites of files have in common: files in the scratch folder, which are closed at a test's end.
#pragma once

#include "platform/file.h"
#include "tests/platform/contract.h"

#include <string>
#include <vector>

constexpr fileAccess Read{};
constexpr fileAccess Write{.Write = true};
constexpr fileAccess Alone{.Exclusive = true};
constexpr fileAccess WriteAlone{.Write = true, .Exclusive = true};

class fileTest : public contractTest
{
protected:
    void TearDown() override
    {
        for (const fileHandle handle : Handles)
            fileClose(handle);
    }

    static std::u16string Path(const std::u16string& name) { return contractFolder() + u'/' + name; }

    // A handle that the test's end closes; none unless the status is as expected.
    fileHandle Open(const std::u16string& name, const fileAccess& access,
                    fileStatus expected = fileStatus::Ok)
    {
        fileHandle handle = fileNone;
        EXPECT_EQ(fileOpen(Path(name), access, handle), expected);
        return Kept(handle);
    }

    fileHandle Create(const std::u16string& name, const fileAccess& access = Write,
                      fileStatus expected = fileStatus::Ok)
    {
        fileHandle handle = fileNone;
        EXPECT_EQ(fileCreate(Path(name), access, handle), expected);
        return Kept(handle);
    }

    void Close(fileHandle handle)
    {
        std::erase(Handles, handle);
        fileClose(handle);
    }

    void Put(const std::u16string& name, const std::string& bytes)
    {
        const fileHandle handle = Create(name);
        EXPECT_EQ(WriteAt(handle, 0, bytes), bytes.size());
        Close(handle);
    }

    std::string Content(const std::u16string& name)
    {
        const fileHandle handle = Open(name, Read);
        const std::string bytes = ReadAt(handle, 0, 1'000'000);
        Close(handle);
        return bytes;
    }

    static uint32_t WriteAt(fileHandle handle, uint64_t offset, const std::string& bytes)
    {
        uint32_t done = 0;
        EXPECT_EQ(fileWrite(handle, offset, bytes.data(), static_cast<uint32_t>(bytes.size()), done),
                  fileStatus::Ok);
        return done;
    }

    static std::string ReadAt(fileHandle handle, uint64_t offset, uint32_t count)
    {
        std::string bytes(count, '?');
        uint32_t done = 0;
        EXPECT_EQ(fileRead(handle, offset, bytes.data(), count, done), fileStatus::Ok);
        bytes.resize(done);
        return bytes;
    }

private:
    fileHandle Kept(fileHandle handle)
    {
        if (handle != fileNone)
            Handles.push_back(handle);
        return handle;
    }

    std::vector<fileHandle> Handles;
};
