#include "platform/comm.h"

#include "platform/linux/commDevices.h"
#include "tests/platform/linux/openFiles.h"
#include "tests/platform/linux/serialLine.h"
#include "tests/platform/native/child.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

namespace {

class linuxComm : public testing::Test
{
protected:
    ~linuxComm() override { commClose(Port); }

    // What the far end sees of the line's settings.
    termios Seen() const
    {
        termios settings = {};
        EXPECT_EQ(tcgetattr(Line.FarEnd(), &settings), 0);
        return settings;
    }

    serialLine Line;
    commHandle Port = commNone;
};

TEST_F(linuxComm, FindsAVirtualPortByItsLink)
{
    Port = commOpen(Line.Name);
    EXPECT_NE(Port, commNone);
}

TEST(linuxCommLink, GoesBeforeADeviceOfTheSameName)
{
    serialLine line("null");
    const commHandle port = commOpen("null");
    ASSERT_NE(port, commNone);
    uint32_t done = 0;
    EXPECT_TRUE(commWrite(port, "here", 4, done));
    EXPECT_EQ(line.Received(), "here");
    commClose(port);
}

TEST_F(linuxComm, OpensNoLinkToWhatIsNoTerminal)
{
    const std::filesystem::path folder = Line.Runtime / "skyreckoning";
    std::filesystem::create_symlink("/dev/null", folder / "ttyNull");
    std::filesystem::create_symlink("/nowhere/at/all", folder / "ttyNowhere");
    std::filesystem::create_symlink(folder, folder / "ttyFolder");
    std::filesystem::create_symlink("ttyLoop", folder / "ttyLoop");
    for (const char* const name : {"ttyNull", "ttyNowhere", "ttyFolder", "ttyLoop"})
        EXPECT_EQ(commOpen(name), commNone) << name;
}

TEST_F(linuxComm, OpensNoDeviceInPlaceOfALinkThatIsNoGood)
{
    // Without the link there is a terminal of that name.
    const commHandle device = commOpen("ptmx");
    EXPECT_NE(device, commNone);
    commClose(device);
    std::filesystem::create_symlink(Line.Runtime, Line.Runtime / "skyreckoning" / "ptmx");
    EXPECT_EQ(commOpen("ptmx"), commNone);
}

TEST(linuxCommLink, HidesNoDeviceByAFolderThatCannotBeLookedInto)
{
    // As the folder of another person, which the environment may still name.
    const variableSet runtime("XDG_RUNTIME_DIR", "/dev/null");
    const commHandle device = commOpen("ptmx");
    EXPECT_NE(device, commNone);
    commClose(device);
}

TEST(linuxCommPlaces, AreTheUsersOwn)
{
    {
        const variableSet none("XDG_RUNTIME_DIR", nullptr);
        EXPECT_EQ(commSystemPlaces().Virtual, "");
    }
    {
        // One that depends on where the program was started is none.
        const variableSet relative("XDG_RUNTIME_DIR", "somewhere");
        EXPECT_EQ(commSystemPlaces().Virtual, "");
    }
    const variableSet usual("XDG_RUNTIME_DIR", "/run/user/1000");
    EXPECT_EQ(commSystemPlaces().Virtual, "/run/user/1000/skyreckoning");
}

TEST_F(linuxComm, ListsAVirtualPort)
{
    const std::vector<commDevice> devices = commDevices(0);
    const auto isOurs = [&](const commDevice& device) { return device.Port.Text == Line.Name; };
    const auto found = std::find_if(devices.begin(), devices.end(), isOurs);
    ASSERT_NE(found, devices.end());
    EXPECT_EQ(found->Description.Text, "Virtual port");
    EXPECT_EQ(found->FriendlyName.Text, "Virtual port (" + Line.Name + ")");
    EXPECT_TRUE(commDevices(1).empty());
    EXPECT_TRUE(commDevices(2).empty());
}

TEST_F(linuxComm, RespectsTheLockOfOthers)
{
    const int other = open(Line.Device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(commOpen(Line.Name), commNone);
    EXPECT_EQ(flock(other, LOCK_UN), 0);
    Port = commOpen(Line.Name);
    EXPECT_NE(Port, commNone);
    EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0);
    close(other);
}

CHILD_TEST(IsKeptOutOfThePort)
{
    const variableSet runtime("XDG_RUNTIME_DIR", childArguments().at(0).c_str());
    childEnd(commOpen(childArguments().at(1)) == commNone);
}

CHILD_TEST(OpensThePort)
{
    const variableSet runtime("XDG_RUNTIME_DIR", childArguments().at(0).c_str());
    childEnd(commOpen(childArguments().at(1)) != commNone);
}

TEST_F(linuxComm, KeepsAnotherProcessOut)
{
    const std::vector<std::string> where = {Line.Runtime.string(), Line.Name};
    Port = commOpen(Line.Name);
    ASSERT_NE(Port, commNone);
    EXPECT_EQ(childRun("IsKeptOutOfThePort", where), ChildGood);
    commClose(Port);
    EXPECT_EQ(childRun("OpensThePort", where), ChildGood);
    // It ended without closing, as one that crashes does.
    EXPECT_EQ(childRun("OpensThePort", where), ChildGood);
}

TEST_F(linuxComm, MakesTheLineRaw)
{
    EXPECT_NE(Seen().c_lflag & static_cast<tcflag_t>(ICANON | ECHO), 0u);
    Port = commOpen(Line.Name);
    ASSERT_NE(Port, commNone);
    EXPECT_EQ(Seen().c_lflag & static_cast<tcflag_t>(ICANON | ECHO | ISIG | IEXTEN), 0u);
    EXPECT_EQ(Seen().c_oflag & static_cast<tcflag_t>(OPOST), 0u);
    EXPECT_EQ(Seen().c_iflag & static_cast<tcflag_t>(ICRNL | INLCR | IGNCR | ISTRIP | IXON | IXOFF), 0u);
}

TEST_F(linuxComm, AppliesSettingsToTheLine)
{
    struct settingRow {
        commControl Control;
        tcflag_t Line;   // of these, which are on
        tcflag_t Input;  // of these, which are on
    };
    constexpr tcflag_t OfLine = PARODD | CSTOPB | CRTSCTS;
    constexpr tcflag_t OfInput = IXON | IXOFF | INPCK;
    // A virtual line has no parity and eight bits, but keeps the kind of parity.
    const settingRow rows[] = {
        {{9600, 0, 8, 0, 0}, 0, 0},
        {{9600, commFlag::Parity, 8, 1, 0}, PARODD, INPCK},
        {{9600, commFlag::Parity, 8, 2, 0}, 0, INPCK},
        {{9600, commFlag::Parity, 8, 3, 0}, PARODD, INPCK},
        {{9600, commFlag::Parity, 8, 4, 0}, 0, INPCK},
        {{9600, 0, 8, 0, 2}, CSTOPB, 0},
        {{9600, 0, 5, 0, 1}, CSTOPB, 0},
        {{9600, commFlag::OutX | commFlag::InX, 8, 0, 0}, 0, IXON | IXOFF},
        {{9600, commFlag::OutX, 8, 0, 0}, 0, IXON},
        {{9600, commFlag::InX, 8, 0, 0}, 0, IXOFF},
        {{9600, commFlag::OutCTS | commFlag::RTSHandshake, 8, 0, 0}, CRTSCTS, 0},
        // There is no such handshake here, and nothing else takes its place.
        {{9600, commFlag::OutDSR | commFlag::DTRHandshake, 8, 0, 0}, 0, 0},
    };
    Port = commOpen(Line.Name);
    ASSERT_NE(Port, commNone);
    for (const settingRow& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_TRUE(commSetControl(Port, row.Control));
        EXPECT_EQ(Seen().c_cflag & OfLine, row.Line);
        EXPECT_EQ(Seen().c_iflag & OfInput, row.Input);
    }
}

TEST_F(linuxComm, HasOneAndAHalfStopBitsWithFiveDataBitsAlone)
{
    Port = commOpen(Line.Name);
    ASSERT_NE(Port, commNone);
    EXPECT_FALSE(commSetControl(Port, {9600, 0, 8, 0, 1}));
    EXPECT_FALSE(commSetControl(Port, {9600, 0, 5, 0, 2}));
}

TEST_F(linuxComm, LeavesOutWhatTheSystemCannotDo)
{
    Port = commOpen(Line.Name);
    ASSERT_NE(Port, commNone);
    constexpr uint32_t Able = commFlag::Parity | commFlag::DTREnable | commFlag::OutX;
    constexpr uint32_t Unable = commFlag::OutDSR | commFlag::DTRHandshake | commFlag::DSRSensitivity;
    EXPECT_TRUE(commSetControl(Port, {9600, Able | Unable | 0x4001, 8, 0, 0}));
    commControl control;
    EXPECT_TRUE(commGetControl(Port, control));
    EXPECT_EQ(control.Flags, Able);
}

TEST_F(linuxComm, KeepsNoDescriptor)
{
    serialLine other("ttySKY1");
    const size_t before = openFiles().size();
    for (int turn = 0; turn < 20; ++turn) {
        const commHandle port = commOpen(other.Name);
        EXPECT_NE(port, commNone);
        EXPECT_EQ(commOpen(other.Name), commNone);
        EXPECT_EQ(commOpen("ttySKYmissing"), commNone);
        EXPECT_EQ(commOpen("null"), commNone);
        commClose(port);
        commDevices(0);
    }
    EXPECT_EQ(openFiles().size(), before);
}

TEST_F(linuxComm, TakesThePlaceOfNoStandardStream)
{
    const closedInput closed;
    Port = commOpen(Line.Name);
    EXPECT_NE(Port, commNone);
    EXPECT_FALSE(closed.IsTaken());
}

TEST_F(linuxComm, KeepsThePortFromProgramsThatItStarts)
{
    const std::vector<int> before = openFiles();
    Port = commOpen(Line.Name);
    ASSERT_NE(Port, commNone);
    EXPECT_GT(openFiles().size(), before.size());
    EXPECT_TRUE(openFilesToInherit(before).empty());
}

}  // namespace
