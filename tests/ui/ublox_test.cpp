// A u-blox receiver at the port: what the user changes on its page reaches it, and comes back.
#include "tests/link/native/machine.h"
#include "tests/ui/pageInside.h"
#include "tests/ui/uiTest.h"
#include "tools/simulator/simUbxKeys.h"

#include <bit>

namespace {

constexpr uint8_t Monitor = 0x0A;
constexpr uint8_t MonitorSpan = 0x31;
constexpr uint8_t Config = 0x06;
constexpr uint8_t ConfigReset = 0x04;

class ubloxUi : public uiTest
{
protected:
    // A receiver that is recognised, configured, and has told something since.
    void Begin(simModel model, std::string_view name)
    {
        Device.emplace(model);
        Program.OpenAt(Device->Port());
        ASSERT_TRUE(comes([&] { return Program.Shows(name, "UBX"); })) << Program.Status();
        ASSERT_TRUE(comes([&] { return IsIdle(); }));
    }
    bool IsIdle()
    {
        const thrSpinHold hold(Program.Form->Comm.Lock);
        const gnssUBX* ubx = Program.Form->Comm.UBX.get();
        return ubx && ubx->ConfigState == gnssUBX::State::Idle && ubx->PPSWeek != 0 &&
               ubx->PendingGNSS == 0 && ubx->PendingPPS == 0;
    }
    gnss::UI* Page() const { return Program.Form->Page; }

    // A click with the mouse on a box, and whether the receiver and the box followed.
    void ClickBox(const std::string& name, uint32_t key)
    {
        ctrlButton* box = ubxParts::BoxOf(Page(), name);
        ASSERT_NE(box, nullptr) << name;
        const bool before = Device->Key(key) != 0;
        ASSERT_TRUE(comes([&] { return IsIdle() && box->Checked() == before; })) << name;
        ASSERT_TRUE(clickUntil(box, [&] { return (Device->Key(key) != 0) != before; })) << name;
        EXPECT_TRUE(comes([&] { return IsIdle() && box->Checked() != before; })) << name;
    }

    // As a user replaces what stands in an edit.
    static void TypeInto(ctrlEdit_Base* edit, std::string_view text)
    {
        ASSERT_TRUE(clickUntil(edit, [&] { return edit->HasFocus(); }));
        constexpr int Longest = 12;
        pressKey(keyEnd);
        for (int count = 0; count < Longest; ++count)
            pressKey(keyBackspace);
        typeText(text);
        pressKey(keyEnter);
    }

    void ShowTab(size_t index)
    {
        ctrlPage* tabs = ubxParts::TabsOf(Page());
        ASSERT_TRUE(comes([&] { return tabs->TabBoxes.size() > index; }));
        const rect box = tabs->TabBoxes[index];
        const auto clickTab = [&] {
            return clickAt(tabs, (box.Left + box.Right) / 2, (box.Top + box.Bottom) / 2);
        };
        ASSERT_TRUE(doUntil(clickTab, [&] { return tabs->Current == index; }));
    }

    uint64_t PulsesShown() const
    {
        ctrlGraphWave* graph = ubxParts::PPSGraphOf(Page());
        const thrSpinHold hold(graph->Lock);
        return graph->Traces[0]->Count;
    }
};

TEST_F(ubloxUi, BoxesOfConstellationsAreClickedAndAReceiverWithKeysObeys)
{
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::NeoM9N, "u-blox Neo-M9N"));
    ASSERT_NO_FATAL_FAILURE(ClickBox("GLONASS L1", simUbxKey::GloL1));
    ASSERT_NO_FATAL_FAILURE(ClickBox("GLONASS L1", simUbxKey::GloL1));
    ASSERT_NO_FATAL_FAILURE(ClickBox("SBAS", simUbxKey::SbasL1CA));
}

TEST_F(ubloxUi, BoxesOfConstellationsAreClickedAndAReceiverOfOldObeys)
{
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::M8, "u-blox 8/M8"));
    ASSERT_NO_FATAL_FAILURE(ClickBox("GLONASS L1", simUbxKey::GlonassOn));
    ASSERT_NO_FATAL_FAILURE(ClickBox("Galileo E1", simUbxKey::GalileoOn));
}

TEST_F(ubloxUi, ABoxThatCannotGoWithAnotherLetsItGo)
{
    // This radio hears BeiDou only without GLONASS.
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::M8, "u-blox 8/M8"));
    ASSERT_NO_FATAL_FAILURE(ClickBox("BeiDou B1I", simUbxKey::BeiDouOn));
    EXPECT_TRUE(comes([&] { return Device->Key(simUbxKey::GlonassOn) == 0; }));
    EXPECT_TRUE(comes([&] { return !ubxParts::BoxOf(Page(), "GLONASS L1")->Checked(); }));
}

TEST_F(ubloxUi, TheRateAndTheDutyOfThePulseAreTyped)
{
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::NeoM9N, "u-blox Neo-M9N"));
    ASSERT_NO_FATAL_FAILURE(TypeInto(ubxParts::RateOf(Page()), "10"));
    EXPECT_TRUE(comes([&] { return Device->Key(simUbxKey::PulseFrequency) == 10; }));
    ASSERT_TRUE(comes([&] { return IsIdle(); }));
    EXPECT_DOUBLE_EQ(ubxParts::RateOf(Page())->ValueGetF(), 10);
    ASSERT_NO_FATAL_FAILURE(TypeInto(ubxParts::DutyOf(Page()), "25"));
    EXPECT_TRUE(comes([&] { return std::bit_cast<double>(Device->Key(simUbxKey::PulseDuty)) == 0.25; }));
}

TEST_F(ubloxUi, ASlowPulseGoesToAReceiverOfOldAsItsPeriod)
{
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::M8, "u-blox 8/M8"));
    ASSERT_NO_FATAL_FAILURE(TypeInto(ubxParts::RateOf(Page()), "0.5"));
    EXPECT_TRUE(comes([&] { return Device->Key(simUbxKey::PulsePeriod) == 2'000'000; }))
        << Device->Key(simUbxKey::PulsePeriod);
    EXPECT_EQ(Device->Key(simUbxKey::PulseIsFrequency), 0U);
}

TEST_F(ubloxUi, ARateBelowTheLeastBecomesTheLeast)
{
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::M8, "u-blox 8/M8"));
    ASSERT_NO_FATAL_FAILURE(TypeInto(ubxParts::RateOf(Page()), "0.1"));
    EXPECT_TRUE(comes([&] { return Device->Key(simUbxKey::PulsePeriod) == 4'000'000; }))
        << Device->Key(simUbxKey::PulsePeriod);
}

TEST_F(ubloxUi, TheSpectrumIsAskedForOnlyWhileItsTabShows)
{
    if (!road::BearsHaste())
        GTEST_SKIP() << "painting takes too long here for data that come so fast";
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::NeoM9N, "u-blox Neo-M9N"));
    const auto asked = [&] { return Device->Asked(Monitor, MonitorSpan); };
    const auto epochs = [&] { return Device->Truth().UtcNs / 1'000'000'000; };
    Device->Hasten(4);
    const int64_t begun = epochs();
    ASSERT_TRUE(comes([&] { return epochs() >= begun + 4; }));
    EXPECT_EQ(asked(), 0U);

    ASSERT_NO_FATAL_FAILURE(ShowTab(1));
    EXPECT_TRUE(comes([&] { return asked() >= 4; }));
    ASSERT_EQ(ubxParts::SpectraOf(Page()).size(), 1U);
    ctrlGraphSpectrum* graph = ubxParts::SpectraOf(Page())[0];
    const auto samples = [&] {
        const thrSpinHold hold(graph->Lock);
        return graph->Traces[0]->Count;
    };
    EXPECT_TRUE(comes([&] { return samples() == 256; })) << samples();

    ASSERT_NO_FATAL_FAILURE(ShowTab(0));
    int64_t quiet = epochs();
    unsigned before = asked();
    // What was asked before the tab went may still be under way.
    EXPECT_TRUE(comes([&] {
        if (asked() != before) {
            before = asked();
            quiet = epochs();
        }
        return epochs() >= quiet + 4;
    }));
    EXPECT_EQ(asked(), before);
}

TEST_F(ubloxUi, AModelWithoutASpectrumHasNoTabForIt)
{
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::M9, "u-blox 9/M9"));
    EXPECT_EQ(ubxParts::TabsOf(Page())->PageCount, 1U);
    EXPECT_TRUE(ubxParts::SpectraOf(Page()).empty());
}

TEST_F(ubloxUi, TheHistoryOfThePulseGrowsWhilePulsesComeAndKeepsThreeHundred)
{
    if (!road::BearsHaste())
        GTEST_SKIP() << "painting takes too long here for data that come so fast";
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::M8, "u-blox 8/M8"));
    ASSERT_TRUE(comes([&] { return PulsesShown() >= 2; }));
    const uint64_t before = PulsesShown();
    EXPECT_TRUE(comes([&] { return PulsesShown() > before; }));
    Device->Hasten(60);
    ASSERT_TRUE(comes([&] { return PulsesShown() >= 300; }, std::chrono::seconds(30)));
    const int64_t reached = Device->Truth().UtcNs;
    ASSERT_TRUE(comes([&] { return Device->Truth().UtcNs > reached + 20'000'000'000; }));
    EXPECT_EQ(PulsesShown(), 300U);
}

TEST_F(ubloxUi, ResetStartsTheReceiverAnewAndRecognisesItAgain)
{
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::M9, "u-blox 9/M9"));
    ASSERT_TRUE(clickUntil(Program.Form->ResetButton, [&] { return Program.Form->Page == nullptr; }));
    EXPECT_EQ(Program.Protocol(), "---");
    EXPECT_EQ(Device->Asked(Config, ConfigReset), 1U);
    EXPECT_TRUE(comes([&] { return Program.Shows("u-blox 9/M9", "UBX"); })) << Program.Status();
}

TEST_F(ubloxUi, ResetMayBePressedAgainByAHandThatRests)
{
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::M9, "u-blox 9/M9"));
    const auto place = [this] {
        const windowArea area = areaOnScreen(Program.Form->ResetButton);
        return std::pair(area.Left, area.Top);
    };
    const std::pair<int32_t, int32_t> before = place();
    ASSERT_TRUE(clickUntil(Program.Form->ResetButton, [&] { return Program.Form->Page == nullptr; }));
    ASSERT_TRUE(comes([&] { return Program.Form->ResetButton && place() == before; }));
    ASSERT_TRUE(comes([&] { return Program.Shows("u-blox 9/M9", "UBX"); })) << Program.Status();
    const auto press = [] {
        screenPress(screenButton::Left);
        screenRelease(screenButton::Left);
        return true;
    };
    EXPECT_TRUE(doUntil(press, [&] { return Program.Form->Page == nullptr; }));
}

TEST_F(ubloxUi, ResetWaitsForASendQueueThatDoesNotDrainOnlyForAMoment)
{
    ASSERT_NO_FATAL_FAILURE(Begin(simModel::M9, "u-blox 9/M9"));
    Device->Block();
    const std::vector<uint8_t> much(256 * 1024);
    Program.Form->Comm.Write(much.data(), much.size());
    ASSERT_FALSE(Program.Form->Comm.WaitSent(false));
    program::Press(Program.Form->ResetButton);
    const int64_t spent = msOf([&] { EXPECT_TRUE(comes([&] { return Program.Form->Page == nullptr; })); });
    EXPECT_GE(spent, 250);
    EXPECT_LE(spent, 5000) << "the queue would never drain";
}

TEST_F(ubloxUi, AReceiverThatTalksNMEAIsMadeToSpeakItsOwnProtocol)
{
    simOptions options;
    options.Model = simModel::M8;
    options.NMEA = true;
    Device.emplace(options);
    Program.OpenAt(Device->Port());
    EXPECT_TRUE(comes([&] { return Program.Shows("u-blox 8/M8", "UBX"); })) << Program.Status();
    EXPECT_TRUE(comes([&] { return Device->Key(simUbxKey::OutNmea + simUbxKey::PortStep) == 0; }));
}

}  // namespace
