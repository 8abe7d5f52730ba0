// The search for ports, shown a tree of the test's own.
#include "platform/linux/commDevices.h"

#include "platform/clock.h"
#include "platform/thread.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace {

using std::filesystem::path;

class linuxCommDevices : public testing::Test
{
protected:
    linuxCommDevices()
        : Root(
              std::filesystem::temp_directory_path() /
              ("skyreckoning devices " + std::to_string(threadId()) + " " + std::to_string(clockSteadyNs()))),
          Places{Root / "class", Root / "by-id", Root / "virtual"}
    {
        for (const char* const folder : {"class", "by-id", "virtual", "dev", "devices"})
            std::filesystem::create_directories(Root / folder);
    }

    ~linuxCommDevices() override { std::filesystem::remove_all(Root); }

    static void Put(const path& file, const std::string& text)
    {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }

    // A terminal in the class, which is a link to its place under the device that has it.
    path Terminal(const std::string& name, const path& device)
    {
        const path place = device / "tty" / name;
        std::filesystem::create_directories(place);
        std::filesystem::create_directory_symlink(device, place / "device");
        std::filesystem::create_directory_symlink(place, Root / "class" / name);
        Put(Root / "dev" / name, "");
        return place;
    }

    // A thing plugged into the bus; the folder of its first function.
    path Plugged(const std::string& name, const std::string& maker, const std::string& product)
    {
        const path thing = Root / "devices" / "bus" / name;
        Put(thing / "idVendor", "1546\n");
        if (!maker.empty())
            Put(thing / "manufacturer", maker);
        if (!product.empty())
            Put(thing / "product", product);
        return thing / (name + ":1.0");
    }

    // Every port as "name|description|friendly name", where "-" is none.
    std::vector<std::string> Found() const
    {
        std::vector<std::string> rows;
        const auto text = [](const commText& each) {
            EXPECT_EQ(each.Found, each.IsText);
            return each.Found ? each.Text : "-";
        };
        for (const commDevice& device : commDevicesIn(Places))
            rows.push_back(text(device.Port) + '|' + text(device.Description) + '|' +
                           text(device.FriendlyName));
        return rows;
    }

    const path Root;
    const commPlaces Places;
};

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST_F(linuxCommDevices, TellsWhatAThingSaysOfItself)
{
    Terminal("ttyACM0", Plugged("1-1", "u-blox AG\n", "GNSS receiver\n"));
    EXPECT_THAT(Found(), ElementsAre("ttyACM0|GNSS receiver|u-blox AG GNSS receiver (ttyACM0)"));
}

TEST_F(linuxCommDevices, MakesDoWithWhatThereIs)
{
    Terminal("ttyUSB0", Plugged("1-1", "", "Serial"));
    Terminal("ttyUSB1", Plugged("1-2", "Maker", ""));
    Terminal("ttyUSB2", Plugged("1-3", "", ""));
    EXPECT_THAT(Found(),
                UnorderedElementsAre("ttyUSB0|Serial|Serial (ttyUSB0)", "ttyUSB1|-|-", "ttyUSB2|-|-"));
}

TEST_F(linuxCommDevices, TakesTheNameOfTheLinkForWhatSaysNothing)
{
    Terminal("ttyUSB0", Plugged("1-1", "", ""));
    std::filesystem::create_symlink(Root / "dev" / "ttyUSB0", Root / "by-id" / "usb-1546_01a8-if00");
    EXPECT_THAT(Found(), ElementsAre("ttyUSB0|-|usb-1546_01a8-if00 (ttyUSB0)"));
}

TEST_F(linuxCommDevices, LooksNoFurtherThanTheFirstThing)
{
    const path inner = Plugged("1-1", "Hub maker", "Hub") / "1-1.4";
    Put(inner / "idVendor", "0403");
    Put(inner / "product", "Cable");
    Terminal("ttyUSB0", inner / "1-1.4:1.0" / "ttyUSB0");
    EXPECT_THAT(Found(), ElementsAre("ttyUSB0|Cable|Cable (ttyUSB0)"));
}

TEST_F(linuxCommDevices, ListsPortsOfTheBoardThatAreThere)
{
    Put(Terminal("ttyS0", Root / "devices" / "platform" / "00:04") / "type", "4\n");
    Put(Terminal("ttyS1", Root / "devices" / "platform" / "serial8250") / "type", "0\n");
    EXPECT_THAT(Found(), ElementsAre("ttyS0|-|-"));
}

TEST_F(linuxCommDevices, LeavesOutTerminalsWithoutHardware)
{
    std::filesystem::create_directories(Root / "class" / "tty0");
    std::filesystem::create_directories(Root / "class" / "console");
    Put(Root / "class" / "a file", "");
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(linuxCommDevices, CutsTextsAtTheirFirstLine)
{
    Terminal("ttyUSB0", Plugged("1-1", "Maker  \nmore\n", std::string(10'000, 'x')));
    const std::string product(4096, 'x');
    EXPECT_THAT(Found(), ElementsAre("ttyUSB0|" + product + "|Maker " + product + " (ttyUSB0)"));
}

TEST_F(linuxCommDevices, ListsVirtualPorts)
{
    std::filesystem::create_symlink("/dev/null", Root / "virtual" / "ttySKY0");
    EXPECT_THAT(Found(), ElementsAre("ttySKY0|Virtual port|Virtual port (ttySKY0)"));
}

TEST_F(linuxCommDevices, ListsNoOtherLinks)
{
    std::filesystem::create_symlink("/dev/null", Root / "virtual" / "gps0");
    std::filesystem::create_symlink("/nowhere", Root / "virtual" / "ttySKY0");
    std::filesystem::create_symlink(Root, Root / "virtual" / "ttySKY1");
    Put(Root / "virtual" / "ttySKY2", "a file");
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(linuxCommDevices, ListsAVirtualPortInPlaceOfTheDeviceThatItHides)
{
    Terminal("ttyACM0", Plugged("1-1", "Maker", "Receiver"));
    Terminal("ttyACM1", Plugged("1-2", "Maker", "Receiver"));
    std::filesystem::create_symlink("/dev/null", Root / "virtual" / "ttyACM0");
    EXPECT_THAT(Found(), UnorderedElementsAre("ttyACM0|Virtual port|Virtual port (ttyACM0)",
                                              "ttyACM1|Receiver|Maker Receiver (ttyACM1)"));
}

TEST_F(linuxCommDevices, FindsNothingWhereNothingIs)
{
    EXPECT_THAT(commDevicesIn({Root / "no", Root / "such", Root / "folders"}), IsEmpty());
    EXPECT_THAT(commDevicesIn({}), IsEmpty());
}

}  // namespace
