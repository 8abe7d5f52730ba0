#include "foundations/file/fileLocked.h"

#include "platform/thread.h"
#include "tests/await.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <thread>

namespace {

using testing::ElementsAre;

const std::u16string Path = u"/a.txt";
constexpr uint32_t Mode = fileLocked::ModeWrite | fileLocked::Background;

class fileLockedWriter : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    // Holds the writer inside its nth write until it is let go.
    void HoldWrite(unsigned nth)
    {
        fakeOnCall("fileWrite", nth, [this] {
            Held = true;
            EXPECT_TRUE(await([this] { return LetGo.load(); }));
        });
    }
    bool AwaitHeld() const
    {
        return await([this] { return Held.load(); });
    }

    static std::string Read(fileLocked& file, uint64_t count)
    {
        std::string text(count, '?');
        text.resize(file.Read(text.data(), count));
        return text;
    }

    std::atomic<bool> Held{false};
    std::atomic<bool> LetGo{false};
};

TEST_F(fileLockedWriter, RunsFromTheStartUnderAName)
{
    const fileLocked file(Path, Mode);
    EXPECT_TRUE(file.State & fileLocked::WriterRuns);
    EXPECT_EQ(fakeCallCount("threadName file writer"), 1u);
}

TEST_F(fileLockedWriter, DoesNotRunForAFileThatIsNotOpen)
{
    const fileLocked file(Path, fileLocked::Background);
    EXPECT_EQ(file.State, fileLocked::Background);
    EXPECT_EQ(fakeCallCount("threadName"), 0u);
}

TEST_F(fileLockedWriter, IsNotFooledByBitsOfTheStateInTheMode)
{
    fileLocked file(Path, Mode | fileLocked::StopRequested | fileLocked::WriterRuns);
    EXPECT_FALSE(file.State & fileLocked::StopRequested);
    EXPECT_EQ(file.WriteString("abc"), 3u);
    EXPECT_EQ(Read(file, 10), "abc");
}

TEST_F(fileLockedWriter, WritesAllThatWasAcceptedBeforeTheObjectGoes)
{
    std::string expected;
    {
        fileLocked file(Path, Mode);
        for (int line = 0; line < 200; ++line) {
            const std::string text = "line " + std::to_string(line) + "\n";
            EXPECT_EQ(file.WriteString(text), text.size());
            expected += text;
        }
        EXPECT_EQ(file.WritePos, expected.size());
        EXPECT_EQ(file.Size, expected.size());
    }
    EXPECT_EQ(fakeFileBytes(Path), expected);
    EXPECT_EQ(fakeFileHandles(), 0u);
}

TEST_F(fileLockedWriter, AcceptsWithoutWaitingForTheDiskAndWritesInOrder)
{
    HoldWrite(1);
    {
        fileLocked file(Path, Mode);
        fakeClearCalls();
        EXPECT_EQ(file.WriteString("one"), 3u);
        ASSERT_TRUE(AwaitHeld());
        EXPECT_EQ(file.WriteString("second"), 6u);
        EXPECT_EQ(file.WriteString("3"), 1u);
        EXPECT_EQ(file.WritePos, 10u);
        EXPECT_EQ(file.Size, 10u);
        EXPECT_EQ(fakeFileBytes(Path), "");
        LetGo = true;
    }
    EXPECT_EQ(fakeFileBytes(Path), "onesecond3");
    std::vector<std::string> calls = fakeCalls();
    std::erase_if(calls, [](const std::string& call) { return call.starts_with("heap"); });
    EXPECT_THAT(calls, ElementsAre("fileWrite /a.txt 0 3", "fileWrite /a.txt 3 6", "fileWrite /a.txt 9 1",
                                   "fileUnlockRange /a.txt 0 100", "fileClose /a.txt"));
}

TEST_F(fileLockedWriter, WritesWhereSeekHasMoved)
{
    {
        fileLocked file(Path, Mode);
        file.WriteString("0123456789");
        EXPECT_TRUE(file.Seek(3, fileLocked::Origin::Start));
        file.WriteString("abc");
        EXPECT_EQ(file.Size, 10u);
    }
    EXPECT_EQ(fakeFileBytes(Path), "012abc6789");
}

TEST_F(fileLockedWriter, AppendsInTheBackground)
{
    fakeFilePut(Path, "01234");
    {
        fileLocked file(Path, Mode | fileLocked::Append);
        file.WriteString("56789");
    }
    EXPECT_EQ(fakeFileBytes(Path), "0123456789");
}

TEST_F(fileLockedWriter, LetsAReaderSeeEverythingWrittenBefore)
{
    fileLocked file(Path, Mode);
    for (int round = 0; round < 100; ++round) {
        const std::string text = "round " + std::to_string(round);
        file.WriteString(text);
        ASSERT_EQ(Read(file, 100), text);
    }
}

TEST_F(fileLockedWriter, KeepsAReaderUntilTheQueueIsEmpty)
{
    HoldWrite(2);
    fileLocked file(Path, Mode);
    file.WriteString("one ");
    file.WriteString("two ");
    file.WriteString("three");
    ASSERT_TRUE(AwaitHeld());
    std::atomic<bool> done{false};
    std::string seen;
    std::jthread reader([&] {
        seen = Read(file, 100);
        done = true;
    });
    letOthersRun();
    EXPECT_FALSE(done);
    LetGo = true;
    ASSERT_TRUE(await([&] { return done.load(); }));
    EXPECT_EQ(seen, "one two three");
}

TEST_F(fileLockedWriter, EndsTheFileOnlyWhenQueuedWritesAreDone)
{
    HoldWrite(1);
    fileLocked file(Path, Mode);
    file.WriteString("0123456789");
    EXPECT_TRUE(file.Seek(4, fileLocked::Origin::Start));
    ASSERT_TRUE(AwaitHeld());
    std::atomic<bool> done{false};
    std::jthread ender([&] {
        EXPECT_TRUE(file.SetEnd());
        done = true;
    });
    letOthersRun();
    EXPECT_FALSE(done);
    LetGo = true;
    ASSERT_TRUE(await([&] { return done.load(); }));
    EXPECT_EQ(fakeFileBytes(Path), "0123");
    EXPECT_EQ(file.Size, 4u);
}

TEST_F(fileLockedWriter, AcceptsNothingWithoutMemory)
{
    const std::string large(64 << 20, 'x');
    fileLocked file(Path, Mode);
    fakeFail("heapCreate", {.Times = 100});
    fakeFail("heapAllocate", {.Times = 100});
    EXPECT_EQ(file.WriteString(large), 0u);
    EXPECT_EQ(file.WritePos, 0u);
    EXPECT_EQ(file.Size, 0u);
    EXPECT_EQ(fakeCallCount("fileWrite"), 0u);
    EXPECT_FALSE(file.State & fileLocked::WriteFailed);
}

TEST_F(fileLockedWriter, TellsOfAFailureOnItsOwnThreadAndGoesOn)
{
    std::atomic<int> errors{0};
    std::atomic<uint64_t> thread{0};
    fakeFail("fileWrite");
    {
        fileLocked file(Path, Mode);
        file.OnError = [&] {
            ++errors;
            thread = threadId();
        };
        EXPECT_EQ(file.WriteString("lost"), 4u);
        EXPECT_EQ(file.WriteString("kept"), 4u);
        ASSERT_TRUE(await([&] { return errors == 1; }));
        EXPECT_TRUE(file.State & fileLocked::WriteFailed);
        EXPECT_FALSE(file.State & fileLocked::ReadOnly);
        EXPECT_EQ(file.WritePos, 8u);
    }
    EXPECT_NE(thread, threadId());
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(fakeFileBytes(Path), std::string(4, '\0') + "kept");
}

TEST_F(fileLockedWriter, DropsWhatIsQueuedWhenTheDiskIsFull)
{
    HoldWrite(1);
    fakeFail("fileWrite", {.Status = fileStatus::DiskFull});
    std::atomic<int> errors{0};
    {
        fileLocked file(Path, Mode);
        file.OnError = [&] { ++errors; };
        file.WriteString("one");
        ASSERT_TRUE(AwaitHeld());
        EXPECT_EQ(file.WriteString("two"), 3u);
        EXPECT_EQ(file.WriteString("three"), 5u);
        LetGo = true;
        ASSERT_TRUE(await([&] { return errors == 1; }));
        EXPECT_EQ(file.State & 0x860, 0x860u);
        EXPECT_EQ(file.WriteString("four"), 0u);
    }
    EXPECT_EQ(fakeCallCount("fileWrite"), 1u);
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(fakeFileBytes(Path), "");
}

TEST_F(fileLockedWriter, LetsAnotherThreadWriteElsewhereAtTheSameTime)
{
    {
        fileLocked file(Path, Mode);
        std::jthread other([&] {
            for (uint64_t index = 0; index < 100; ++index)
                EXPECT_EQ(file.WriteAt(1000 + index, "b", 1, false), 1u);
        });
        for (int index = 0; index < 100; ++index)
            EXPECT_EQ(file.WriteString("a"), 1u);
    }
    const std::string bytes = fakeFileBytes(Path);
    EXPECT_EQ(bytes.substr(0, 100), std::string(100, 'a'));
    EXPECT_EQ(bytes.substr(1000), std::string(100, 'b'));
}

}  // namespace
