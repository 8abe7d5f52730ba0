#include "tests/forms/ubxPageTest.h"

#include <map>

namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

class gnssUBX_UISignalsTest : public ubxPageTest
{
protected:
    std::vector<std::string> BoxesDisabled() const
    {
        std::vector<std::string> names;
        for (const ctrlButton* box : Page->SignalBoxes) {
            if (!box->IsEnabled())
                names.push_back(box->Name());
        }
        return names;
    }

    // A receiver that has these signals enabled and nothing else.
    template <class... Signals>
    void Enabled(Signals... signals)
    {
        Receiver.Select.Store(ubxSignalSet::Of(signals...));
        Page->Refresh();
    }
};

struct modelBoxes {
    unsigned Model;
    std::vector<std::string> Shown;
    size_t Spectra;
};

class gnssUBX_UIModelTest : public gnssUBX_UISignalsTest, public testing::WithParamInterface<modelBoxes>
{
};

TEST_P(gnssUBX_UIModelTest, ShowsTheBoxesThatTheModelHas)
{
    ShownFor(GetParam().Model);
    EXPECT_THAT(BoxesShown(), ElementsAreArray(GetParam().Shown));
    EXPECT_EQ(Page->SpectrumGraphs.size(), GetParam().Spectra);
    EXPECT_EQ(Page->Tabs->PageCount, GetParam().Spectra > 0 ? 2U : 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Models, gnssUBX_UIModelTest,
    testing::Values(
        modelBoxes{6, {"GPS L1C/A", "Galileo E1", "GLONASS L1", "BeiDou B1I", "SBAS", "QZSS L1C/A"}, 0},
        modelBoxes{7, {"GPS L1C/A", "GLONASS L1", "SBAS", "QZSS L1C/A"}, 0},
        modelBoxes{
            8, {"GPS L1C/A", "Galileo E1", "GLONASS L1", "BeiDou B1I", "SBAS", "QZSS L1C/A", "IMES"}, 0},
        modelBoxes{9, {"GPS L1C/A", "Galileo E1", "GLONASS L1", "BeiDou B1I", "SBAS", "QZSS L1C/A"}, 0},
        modelBoxes{10, {"GPS L1C/A", "Galileo E1", "GLONASS L1", "BeiDou B1I", "SBAS", "QZSS L1C/A"}, 1},
        modelBoxes{11,
                   {"GPS L1C/A", "GPS L2C", "Galileo E1", "Galileo E5b", "GLONASS L1", "GLONASS L2",
                    "BeiDou B1I", "BeiDou B2I", "SBAS", "QZSS L1C/A", "QZSS L2C"},
                   2},
        modelBoxes{12,
                   {"GPS L1C/A", "Galileo E1", "GLONASS L1", "BeiDou B1I", "BeiDou B1C", "SBAS", "QZSS L1C/A",
                    "QZSS L1S"},
                   1},
        modelBoxes{13,
                   {"GPS L1C/A", "Galileo E1", "GLONASS L1", "BeiDou B1I", "BeiDou B1C", "SBAS", "QZSS L1C/A",
                    "QZSS L1S"},
                   1},
        modelBoxes{14,
                   {"GPS L1C/A", "GPS L5", "Galileo E1", "Galileo E5a", "BeiDou B1C", "BeiDou B2a",
                    "NavIC L5", "SBAS", "QZSS L1C/A", "QZSS L1S", "QZSS L5"},
                   2}),
    [](const auto& given) { return "Model" + std::to_string(given.param.Model); });

TEST_F(gnssUBX_UISignalsTest, DisablesBoxesThatFollowOthers)
{
    const std::map<unsigned, std::vector<std::string>> disabled = {
        {7, {}}, {8, {"QZSS L1C/A"}}, {9, {}}, {10, {}}, {11, {"QZSS L1C/A", "QZSS L2C"}}, {12, {}}, {13, {}},
        {14, {}}};
    for (const auto& [model, names] : disabled) {
        Receiver.Model = 0;
        Identify(model);
        Page = Made<openUBXPage>();
        Receiver.Select.Store(ubxSignalSet(~0U));
        Page->Source(&Receiver);
        Page->Refresh();
        EXPECT_THAT(BoxesDisabled(), ElementsAreArray(names)) << model;
        delete Host;
    }
}

TEST_F(gnssUBX_UISignalsTest, CannotClickADisabledBox)
{
    ShownFor(8, 1.0, VersionClassic);
    Page->Refresh();
    Click(Box("QZSS L1C/A"));
    EXPECT_FALSE(Box("QZSS L1C/A")->Checked());
    Page->Refresh();
    EXPECT_EQ(Receiver.PendingGNSS, 0);
}

TEST_F(gnssUBX_UISignalsTest, ChecksTheBoxesOfWhatIsSelected)
{
    ShownFor(11);
    for (const ubxSignalRow& row : ubxSignalTable) {
        Receiver.Select.Store(ubxSignalSet::Of(row.Signal));
        Page->Refresh();
        for (const ctrlButton* box : Page->SignalBoxes)
            EXPECT_EQ(box->Checked(), box->Name() == row.Name) << box->Name();
    }
    EXPECT_EQ(Receiver.PendingGNSS, 0);
}

TEST_F(gnssUBX_UISignalsTest, SelectsWhatTheUserClicks)
{
    ShownFor(9);
    for (const char* name : {"GPS L1C/A", "Galileo E1", "GLONASS L1", "BeiDou B1I", "SBAS", "QZSS L1C/A"}) {
        Receiver.Select.Store({});
        Page->Refresh();
        Click(Box(name), 10, 10);
        EXPECT_TRUE(Box(name)->Checked());
        EXPECT_TRUE(Receiver.Select.Load() == ubxSignalSet{}) << "the refresh sends it, not the click";
        Page->Refresh();
        for (const ubxSignalRow& row : ubxSignalTable)
            EXPECT_EQ(Receiver.Select.Has(row.Signal), row.Name == name) << row.Name;
        EXPECT_EQ(Receiver.PendingGNSS, 1);
        Receiver.PendingGNSS = 0;
    }
}

TEST_F(gnssUBX_UISignalsTest, TellsTheReceiverOfAClick)
{
    ShownFor(9);
    Enabled(ubxSignal::GPSL1CA);
    EXPECT_THAT(Step(), IsEmpty());
    Click(Box("Galileo E1"));
    EXPECT_THAT(Step(), IsEmpty());
    Page->Refresh();
    const std::vector<ubxBytes> sent = Step();
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(sent[0][2], 0x06);
    EXPECT_EQ(sent[0][3], 0x8A);
    for (const ubxBytes& key : {ubxBytes{0x01, 0x00, 0x31, 0x10, 1}, ubxBytes{0x07, 0x00, 0x31, 0x10, 1},
                                ubxBytes{0x05, 0x00, 0x31, 0x10, 0}})
        EXPECT_NE(std::search(sent[0].begin(), sent[0].end(), key.begin(), key.end()), sent[0].end());
}

TEST_F(gnssUBX_UISignalsTest, DoesNotSetAClickedBoxBackBeforeTheReceiverAnswers)
{
    // A request that the model cannot meet shows the difference: the refresh of the click leaves the box as
    // the user left it, the next one shows the selection as the rules made it.
    ShownFor(12);
    Enabled(ubxSignal::GPSL1CA, ubxSignal::BeiDouB1I);
    Click(Box("BeiDou B1C"));
    Page->Refresh();
    EXPECT_TRUE(Box("BeiDou B1C")->Checked());
    EXPECT_TRUE(Box("BeiDou B1I")->Checked());
    EXPECT_FALSE(Receiver.Select.Has(ubxSignal::BeiDouB1I)) << "the two cannot run together";
    Page->Refresh();
    EXPECT_TRUE(Box("BeiDou B1C")->Checked());
    EXPECT_FALSE(Box("BeiDou B1I")->Checked());
}

TEST_F(gnssUBX_UISignalsTest, ShowsARefusedChangeByItsBoxes)
{
    ShownFor(9);
    Enabled(ubxSignal::GPSL1CA);
    Click(Box("Galileo E1"));
    Page->Refresh();
    EXPECT_EQ(Step().size(), 1U);
    Feed(ubxFrame(0x05, 0x00).u1(0x06).u1(0x8A));  // ACK-NAK, so the receiver is asked what it has
    Feed(ubxFrame(0x06, 0x8B)                      // CFG-VALGET
             .u1(1)
             .u1(0)
             .u2(0)
             .u4(0x10310001)
             .u1(1)
             .u4(0x1031001F)
             .u1(1)
             .u4(0x10310007)
             .u1(0)
             .u4(0x10310021)
             .u1(0));
    Page->Refresh();
    EXPECT_FALSE(Box("Galileo E1")->Checked());
    EXPECT_TRUE(Box("GPS L1C/A")->Checked());
}

TEST_F(gnssUBX_UISignalsTest, EnablesTheAidOfASignalWithThatSignal)
{
    ShownFor(11);
    Enabled(ubxSignal::BeiDouB1I);
    EXPECT_FALSE(Box("SBAS")->IsEnabled());
    Enabled(ubxSignal::GalileoE1);
    EXPECT_TRUE(Box("SBAS")->IsEnabled());
    Enabled(ubxSignal::GLONASSL1);
    EXPECT_FALSE(Box("SBAS")->IsEnabled());
    Enabled(ubxSignal::GPSL1CA);
    EXPECT_TRUE(Box("SBAS")->IsEnabled());
}

TEST_F(gnssUBX_UISignalsTest, EnablesTheRegionalSignalsOfTheF10WithTheOnesTheyNeed)
{
    ShownFor(14);
    struct row {
        ubxSignal Signal;
        bool NavIC;
        bool QZSS;
    };
    for (const row& one : {row{ubxSignal::SBAS, false, false},
                           {ubxSignal::GPSL1CA, true, true},
                           {ubxSignal::GalileoE1, true, false},
                           {ubxSignal::BeiDouB1C, true, false},
                           {ubxSignal::GPSL5, false, false}}) {
        Enabled(one.Signal);
        EXPECT_EQ(Box("NavIC L5")->IsEnabled(), one.NavIC);
        for (const char* name : {"QZSS L1C/A", "QZSS L1S", "QZSS L5"})
            EXPECT_EQ(Box(name)->IsEnabled(), one.QZSS) << name;
        EXPECT_TRUE(Box("SBAS")->IsEnabled());
    }
}

TEST_F(gnssUBX_UISignalsTest, KeepsItsBoxesWhenTheModelChangesLater)
{
    ShownFor(8, 1.0, VersionClassic);
    const std::vector<std::string> before = BoxesShown();
    Receiver.Restart();
    Page->Refresh();
    EXPECT_EQ(BoxesShown(), before);
}

TEST_F(gnssUBX_UISignalsTest, AddsItsSpectraOnce)
{
    ShownFor(11);
    Page->Source(nullptr);
    Page->Source(&Receiver);
    EXPECT_EQ(Page->SpectrumGraphs.size(), 2U);
    EXPECT_EQ(Page->Tabs->PageCount, 2U);
}

}  // namespace
