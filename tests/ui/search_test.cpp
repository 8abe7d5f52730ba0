// The search for a receiver on a line that carries only what it is set to, and what a pulled cable does.
#include "tests/ui/pageInside.h"
#include "tests/ui/uiTest.h"

namespace {

class searchUi : public uiTest
{
};

struct lineCase {
    const char* Test;
    simModel Simulated;
    simLine Line;
    const char* Name;
    const char* Protocol;
};

class lineUi : public searchUi, public testing::WithParamInterface<lineCase>
{
};

TEST_P(lineUi, IsFoundBehindTheSettingsThatAreTriedBefore)
{
    simOptions options;
    options.Model = GetParam().Simulated;
    options.Line = GetParam().Line;
    Device.emplace(options, 0, lineSense::Matching);
    if (!Device->SeesLine())
        GTEST_SKIP() << "what the program sets on the line cannot be seen here";
    Program.OpenAt(Device->Port());
    EXPECT_TRUE(comes([&] { return Program.Status() == "Waiting for device reply (4800N1 8 bits)..."; }));
    EXPECT_TRUE(comes([&] { return Program.Shows(GetParam().Name, GetParam().Protocol); }))
        << Program.Status() << ", " << Program.Protocol();
}

INSTANTIATE_TEST_SUITE_P(
    Receivers, lineUi,
    testing::Values(lineCase{"Odd", simModel::Acutime, {9600, 'O', 1}, "Trimble® Acutime™ Gold", "TSIP"},
                    lineCase{"Plain", simModel::M8, {9600, 'N', 1}, "u-blox 8/M8", "UBX"}),
    [](const auto& one) { return std::string(one.param.Test); });

TEST_F(searchUi, APulledCableIsSilenceAndThePortIsChosenAnew)
{
    Device.emplace(simModel::M9);
    Program.OpenAt(Device->Port());
    ASSERT_TRUE(comes([&] { return Program.Shows("u-blox 9/M9", "UBX"); })) << Program.Status();
    Device->Unplug();
    for (int turn = 0; turn < 100; ++turn)
        letPass();
    EXPECT_TRUE(Program.Shows("u-blox 9/M9", "UBX")) << "what was told last stays";
    Device->Plug();
    Program.ChoosePort(Device->Port());
    EXPECT_EQ(Program.Form->Page, nullptr);
    EXPECT_TRUE(comes([&] { return Program.Shows("u-blox 9/M9", "UBX"); })) << Program.Status();
}

TEST_F(searchUi, ThePortIsChosenWithTheMouse)
{
    Device.emplace(simModel::M9);
    Program.Open();
    if (Program.Form->PortBox->RowFind(Device->Port()) == Program.Form->PortBox->Rows.size())
        GTEST_SKIP() << "this system does not list the ports that tests have";
    ASSERT_TRUE(chooseRow(Program.Form->PortBox, Program.Form->PortBox->RowFind(Device->Port())));
    EXPECT_EQ(Program.Form->PortBox->Name(), Device->Port());
    EXPECT_TRUE(comes([&] { return Program.Shows("u-blox 9/M9", "UBX"); })) << Program.Status();
}

}  // namespace
