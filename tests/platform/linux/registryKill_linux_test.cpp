#include "platform/linux/registryStore.h"
#include "platform/registry.h"
#include "platform/thread.h"
#include "tests/platform/linux/configuration.h"
#include "tests/platform/native/child.h"

#include <gtest/gtest.h>

#include <charconv>
#include <chrono>
#include <random>
#include <sstream>

namespace {

constexpr char Key[] = "Software\\Vintermark\\Skyreckoning";
constexpr unsigned Names = 8;

// Long enough that a file takes several writes to the disk, and recognisable: every value says its name and
// its number as often as there is room.
std::string ValueOf(unsigned name, unsigned number)
{
    constexpr size_t Length = 6000;
    std::string value;
    while (value.size() < Length)
        value += "value " + std::to_string(name) + " number " + std::to_string(number) + "; ";
    return value;
}

bool IsWhole(const std::vector<uint8_t>& data, unsigned name)
{
    const std::string value(data.begin(), data.end());
    const std::string beginning = "value " + std::to_string(name) + " number ";
    if (!value.starts_with(beginning))
        return false;
    unsigned number = 0;
    std::from_chars(value.data() + beginning.size(), value.data() + value.size(), number);
    return value == ValueOf(name, number);
}

CHILD_TEST(WritesUntilItIsKilled)
{
    registryKey* const key = registryCreate(Key);
    for (unsigned number = static_cast<unsigned>(std::stoul(childArguments().at(0)));; number++) {
        const unsigned name = number % Names;
        const std::string value = ValueOf(name, number);
        if (!registrySet(key, "Value " + std::to_string(name), registryType::Binary, value.data(),
                         static_cast<uint32_t>(value.size())))
            childEnd(false);
        if (number % 50 == 49)
            registryDelete(key, "Value " + std::to_string(name));
    }
}

// The lines of the file that are none of those that the store understands.
std::vector<std::string> StrangeLines(const std::string& content)
{
    std::vector<std::string> strange;
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
        const size_t equals = line.rfind(" = ", line.find(" = "));
        const bool known = line.empty() || line[0] == '#' || line[0] == '[' ||
                           (equals != std::string::npos && registryParse(line.substr(equals + 3)));
        if (!known)
            strange.push_back(line.substr(0, 100));
    }
    return strange;
}

constexpr char Bystander[] = "# a stranger's comment\n"
                             "[Software\\Other]\n"
                             "\"Text\" = text \"kept\"\n"
                             "\"Number\" = dword 77\n";

class registryKill : public testing::Test
{
protected:
    // Starts a writer, lets it write for a while, and ends it in the middle of whatever it does.
    void Kill(unsigned firstNumber, std::chrono::microseconds delay) const
    {
        const std::string before = Configuration.Content();
        processHandle* const child = childStart("WritesUntilItIsKilled", {std::to_string(firstNumber)});
        ASSERT_NE(child, nullptr);
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (Configuration.Content() == before && std::chrono::steady_clock::now() < limit)
            threadYield();
        const auto end = std::chrono::steady_clock::now() + delay;
        while (std::chrono::steady_clock::now() < end)
            threadYield();
        processKill(child);
        EXPECT_EQ(processWait(child), -1);
        EXPECT_NE(Configuration.Content(), before);
    }

    void ExpectWhole() const
    {
        const std::string content = Configuration.Content();
        EXPECT_EQ(content.substr(0, sizeof(Bystander) - 1), Bystander);
        EXPECT_TRUE(content.ends_with('\n'));
        EXPECT_EQ(StrangeLines(content), std::vector<std::string>());
        const registryText text(content);
        for (unsigned name = 0; name < Names; name++) {
            const std::optional<registryValue> value = text.Find(Key, "Value " + std::to_string(name));
            EXPECT_TRUE(!value || IsWhole(value->Data, name)) << name;
        }
    }

    const configurationFolder Configuration;
};

TEST_F(registryKill, LeavesAWholeFileWheneverTheProcessEnds)
{
    constexpr unsigned Kills = 120;
    constexpr unsigned LongestDelay = 10'000;
    Configuration.Put(Bystander);
    std::mt19937 random(std::random_device{}());
    for (unsigned kill = 0; kill < Kills && !HasFailure(); kill++) {
        const std::chrono::microseconds delay(static_cast<unsigned>(random()) % LongestDelay);
        SCOPED_TRACE(testing::Message() << "kill " << kill << " after " << delay.count() << " us");
        Kill(kill * 1000, delay);
        ExpectWhole();
    }
}

}  // namespace
