#include "link/serialPortList.h"
#include "tests/fakes/fakeLinks.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

commText text(const std::string& value)
{
    return {true, true, value};
}

constexpr const char* NoText = nullptr;

commDevice device(const char* port, const char* description, const char* friendly)
{
    commDevice made;
    if (port != NoText)
        made.Port = text(port);
    if (description != NoText)
        made.Description = text(description);
    if (friendly != NoText)
        made.FriendlyName = text(friendly);
    return made;
}

std::vector<std::string> names()
{
    std::vector<std::string> all;
    for (const serialPortInfo& each : serialPortList())
        all.push_back(each.port + "|" + each.description + "|" + each.friendlyName);
    return all;
}

class serialPortListTest : public testing::Test
{
protected:
    serialPortListTest() { fakeReset(); }
};

TEST_F(serialPortListTest, IsEmptyWithoutAnyDevice)
{
    EXPECT_TRUE(serialPortList().empty());
}

TEST_F(serialPortListTest, NeverListsADeviceOfAnotherKind)
{
    commDevice number = device("COM3", "a", "b");
    number.Port.IsText = false;
    fakeDevices(0, {device("LPT1", "Printer", "Printer (LPT1)"), device(NoText, "x", "y"), number,
                    device("CO", "short", "short"), device("", "empty", "empty")});
    EXPECT_TRUE(serialPortList().empty());
}

TEST_F(serialPortListTest, FillsWhatIsMissingWithTheNextBest)
{
    fakeDevices(0, {
                       device("COM1", "Bus", "Friendly"),
                       device("COM2", NoText, "Friendly"),
                       device("COM3", "Bus", NoText),
                       device("COM4", NoText, NoText),
                   });
    EXPECT_THAT(names(),
                ElementsAre("COM1|Bus|Friendly", "COM2|Friendly|Friendly", "COM3|Bus|Bus", "COM4|COM4|COM4"));
}

TEST_F(serialPortListTest, TakesADescriptionThatIsNoTextForMissing)
{
    commDevice odd = device("COM1", "seven", "eight");
    odd.Description.IsText = false;
    odd.FriendlyName.IsText = false;
    fakeDevices(0, {odd});
    EXPECT_THAT(names(), ElementsAre("COM1|COM1|COM1"));
}

TEST_F(serialPortListTest, SortsByTheBytesOfTheName)
{
    fakeDevices(0, {device("COM2", "b", "b"), device("COM1", "a", "a")});
    fakeDevices(2, {device("COM10", "c", "c")});
    EXPECT_THAT(names(), ElementsAre("COM1|a|a", "COM10|c|c", "COM2|b|b"));
}

TEST_F(serialPortListTest, ListsAPortTwiceThatTwoClassesReport)
{
    fakeDevices(0, {device("COM7", "a", "a")});
    fakeDevices(1, {device("COM7", "a", "a")});
    EXPECT_EQ(serialPortList().size(), 2U);
}

TEST_F(serialPortListTest, KnowsPortsByTheSystemsOwnNames)
{
    fakeNamePrefix("tty");
    fakeDevices(0, {device("ttyUSB0", "a", "a"), device("COM7", "b", "b")});
    EXPECT_THAT(names(), ElementsAre("ttyUSB0|a|a"));
}

}  // namespace
