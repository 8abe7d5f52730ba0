#include "platform/crash.h"
#include "platform/thread.h"
#include "tests/platform/contract.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// Found by its name in this file's own table of symbols.
extern "C" __attribute__((noinline, used)) void crashLinuxTestWaits(const std::atomic<bool>* stop,
                                                                    std::atomic<bool>* begun)
{
    *begun = true;
    while (!*stop)
        threadSleep(1);
}

namespace {

volatile uintptr_t Nothing = 0;
volatile int Zero = 0;

void ReadNull(void*)
{
    Zero = *reinterpret_cast<volatile int*>(Nothing);
}

void Divide(void*)
{
    Zero = 7 / Zero;
}

void CountUp(void* count)
{
    ++*static_cast<int*>(count);
}

// Signals are watched while it lives, and nothing is made of them.
class watched
{
public:
    watched()
    {
        crashWatch([](const crashEvent&) { ++Reported; });
    }
    ~watched() { crashUnwatch(); }
    watched(const watched&) = delete;
    watched& operator=(const watched&) = delete;

    static inline std::atomic<int> Reported{0};
};

std::string Folder()
{
    return std::filesystem::path(contractFolder()).string();
}

void Write(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

using crashLinux = contractTest;

std::unique_ptr<crashSnapshot> Snapshot()
{
    auto snapshot = std::make_unique<crashSnapshot>();
    EXPECT_EQ(crashSnapshotTake(*snapshot), 0u);
    return snapshot;
}

const crashModule* ModuleAt(const crashSnapshot& snapshot, const void* address)
{
    for (unsigned i = 0; i < snapshot.ModuleCount; ++i) {
        if (snapshot.Modules[i].Range.Has(reinterpret_cast<uint64_t>(address)))
            return &snapshot.Modules[i];
    }
    return nullptr;
}

}  // namespace

// --- Guards

TEST_F(crashLinux, AGuardEndsAStepThatFaults)
{
    const watched watch;
    crashRecord fault;
    EXPECT_FALSE(crashGuarded(ReadNull, nullptr, fault));
    EXPECT_EQ(fault.Code, 0xC0000005u);
    EXPECT_EQ(fault.Flags, 1u);
    EXPECT_EQ(fault.ParameterCount, 2u);
    EXPECT_EQ(fault.Parameters[1], 0u);
    EXPECT_FALSE(crashGuarded(Divide, nullptr, fault));
    EXPECT_EQ(fault.Code, 0xC0000094u);
    EXPECT_EQ(watched::Reported, 0);
}

TEST_F(crashLinux, AGuardLetsASoundStepRun)
{
    const watched watch;
    crashRecord fault;
    int count = 0;
    EXPECT_TRUE(crashGuarded(CountUp, &count, fault));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(fault.Code, 0u);
}

TEST_F(crashLinux, GuardsNest)
{
    const watched watch;
    int state = 0;
    const auto outer = [](void* held) {
        int& at = *static_cast<int*>(held);
        crashRecord inner;
        at = crashGuarded(ReadNull, nullptr, inner) ? -1 : 1;
        ReadNull(nullptr);
        at = 2;
    };
    crashRecord fault;
    EXPECT_FALSE(crashGuarded(outer, &state, fault));
    EXPECT_EQ(state, 1);
}

TEST_F(crashLinux, EachThreadHasItsOwnGuard)
{
    const watched watch;
    crashRecord fault;
    const auto step = [](void*) {
        std::thread([] {
            crashRecord other;
            EXPECT_FALSE(crashGuarded(ReadNull, nullptr, other));
        }).join();
    };
    EXPECT_TRUE(crashGuarded(step, nullptr, fault));
}

TEST_F(crashLinux, ABreakIsAtItsInstruction)
{
    static std::atomic<uint64_t> address;
    crashWatch([](const crashEvent& event) {
        crashRecord record;
        crashRecordOf(event, 0, record);
        address = record.Address;
    });
    crashBreak();
    crashUnwatch();
    constexpr unsigned char breakpoint = 0xCC;
    ASSERT_NE(address, 0u);
    EXPECT_EQ(*reinterpret_cast<const unsigned char*>(address.load()), breakpoint);
}

TEST_F(crashLinux, ABreakIsReportedAndReturns)
{
    watched::Reported = 0;
    {
        const watched watch;
        crashBreak();
        EXPECT_EQ(watched::Reported, 1);
    }
    crashBreak();
    EXPECT_EQ(watched::Reported, 1);
}

// --- The program

TEST_F(crashLinux, KnowsItsOwnFile)
{
    const auto snapshot = Snapshot();
    const crashModule* own = ModuleAt(*snapshot, reinterpret_cast<void*>(ReadNull));
    ASSERT_NE(own, nullptr);
    EXPECT_STREQ(own->Name, "platform_test");
    EXPECT_TRUE(crashProgram().Has(reinterpret_cast<uint64_t>(ReadNull)));
    EXPECT_TRUE(crashProgram().Has(reinterpret_cast<uint64_t>(&Zero)));
    EXPECT_FALSE(crashProgram().Has(reinterpret_cast<uint64_t>(dlsym(RTLD_DEFAULT, "strlen"))));
    char path[crashPathRoom];
    EXPECT_GT(crashModulePath(*own, path, sizeof path), 0u);
    char program[crashPathRoom];
    EXPECT_EQ(crashProgramPath(program, sizeof program), std::strlen(path));
    EXPECT_STREQ(path, program);
}

TEST_F(crashLinux, ListsEachModuleOnce)
{
    const auto snapshot = Snapshot();
    const crashModule* library = ModuleAt(*snapshot, dlsym(RTLD_DEFAULT, "malloc_trim"));
    ASSERT_NE(library, nullptr);
    EXPECT_THAT(library->Name, StartsWith("libc.so"));
    for (unsigned i = 1; i < snapshot->ModuleCount; ++i)
        EXPECT_STRNE(snapshot->Modules[i].Name, snapshot->Modules[i - 1].Name);
}

TEST_F(crashLinux, AFileWithoutCodeIsNoModule)
{
    Write(Folder() + "/data", std::string(5000, 'x'));
    const int file = open((Folder() + "/data").c_str(), O_RDONLY);
    void* const view = mmap(nullptr, 5000, PROT_READ, MAP_PRIVATE, file, 0);
    ASSERT_NE(view, MAP_FAILED);
    EXPECT_EQ(ModuleAt(*Snapshot(), view), nullptr);
    munmap(view, 5000);
    close(file);
}

TEST_F(crashLinux, NamesFunctions)
{
    const auto snapshot = Snapshot();
    crashSymbol symbol;
    const auto address = reinterpret_cast<uint64_t>(crashLinuxTestWaits);
    ASSERT_TRUE(crashSymbolAt(*snapshot, address + 3, symbol));
    EXPECT_STREQ(symbol.Name, "crashLinuxTestWaits");
    EXPECT_EQ(symbol.Displacement, 3u);
    EXPECT_FALSE(crashSymbolAt(*snapshot, 0x10, symbol));
    EXPECT_FALSE(crashSymbolAt(*snapshot, reinterpret_cast<uint64_t>(&Zero), symbol));
    // A library is named by what it offers to others.
    ASSERT_TRUE(
        crashSymbolAt(*snapshot, reinterpret_cast<uint64_t>(dlsym(RTLD_DEFAULT, "malloc_trim")), symbol));
    EXPECT_STREQ(symbol.Name, "malloc_trim");
}

TEST_F(crashLinux, SeesWhereAnotherThreadIs)
{
    const watched watch;
    std::atomic<bool> stop{false}, begun{false};
    std::atomic<uint32_t> id{0};
    std::thread waiting([&] {
        id = static_cast<uint32_t>(threadId());
        crashLinuxTestWaits(&stop, &begun);
    });
    ASSERT_TRUE(contractAwait([&] { return begun.load(); }));
    crashContext context;
    EXPECT_TRUE(crashThreadContext(id, context));
    EXPECT_TRUE(context.HasControl);
    EXPECT_NE(context.StackPointer, 0u);
    const auto snapshot = Snapshot();
    const bool listed = std::any_of(snapshot->Threads, snapshot->Threads + snapshot->ThreadCount,
                                    [&](const crashThread& thread) { return thread.Id == id; });
    EXPECT_TRUE(listed);
    bool named = false;
    for (unsigned i = 0; i < context.FrameCount; ++i) {
        crashSymbol symbol;
        named = named || (crashSymbolAt(*snapshot, context.Frames[i] - 1, symbol) &&
                          std::string(symbol.Name) == "crashLinuxTestWaits");
    }
    EXPECT_TRUE(named);
    stop = true;
    waiting.join();
    EXPECT_FALSE(crashThreadContext(id, context)) << "it has gone";
}

TEST_F(crashLinux, GivesUpOnAThreadThatDoesNotAnswerButAsksOthersAgain)
{
    const watched watch;
    std::atomic<bool> stop{false}, begun{false};
    std::atomic<uint32_t> id{0};
    std::thread deaf([&] {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        id = static_cast<uint32_t>(threadId());
        crashLinuxTestWaits(&stop, &begun);
        // The late answers come here, and find that nobody waits for them.
        pthread_sigmask(SIG_UNBLOCK, &all, nullptr);
    });
    ASSERT_TRUE(contractAwait([&] { return begun.load(); }));
    crashContext context;
    for (int i = 0; i < 6; ++i)
        EXPECT_FALSE(crashThreadContext(id, context));
    stop = true;
    deaf.join();

    std::atomic<bool> end{false}, heard{false};
    std::thread good([&] {
        id = static_cast<uint32_t>(threadId());
        crashLinuxTestWaits(&end, &heard);
    });
    ASSERT_TRUE(contractAwait([&] { return heard.load(); }));
    EXPECT_TRUE(crashThreadContext(id, context));
    end = true;
    good.join();
}
