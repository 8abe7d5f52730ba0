#include "tests/forms/pageTest.h"

#include <cstdio>

namespace {

using basePage = openPage<gnss::UI>;

class gnssUIGridTest : public pageTest
{
protected:
    void SetUp() override
    {
        pageTest::SetUp();
        Page = Shown<basePage>();
        Page->Source(&Model);
    }

    // So many satellites, numbered from 1.
    void Show(uint8_t count)
    {
        Model.Sats.clear();
        for (uint8_t id = 1; id <= count; ++id) {
            SatInfo satellite;
            satellite.Source = gnss::Source::GPS;
            satellite.SvId = id;
            satellite.Signals[0] = 31;
            Model.Sats.push_back(satellite);
        }
        Page->Refresh();
    }

    // The first text below the header.
    std::string FirstId() { return Written(Page->VisSats).at(5).Text; }

    gnss Model;
    basePage* Page = nullptr;
};

TEST_F(gnssUIGridTest, DrawsLinesBetweenRowsAndColumns)
{
    Show(1);
    EXPECT_TRUE(Page->VisSats->HasStyle(styleGridLinesH));
    EXPECT_TRUE(Page->VisSats->HasStyle(styleGridLinesV));
    Toolkit().PumpPending();
    Page->VisSats->Invalidate(true);
    bool across = false;
    bool down = false;
    for (const std::string& line : Drawn({"fill"})) {
        unsigned target = 0;
        float left = 0, top = 0, right = 0, bottom = 0;
        if (std::sscanf(line.c_str(), "fill %u %f,%f,%f,%f", &target, &left, &top, &right, &bottom) != 5 ||
            line.find("8080C0/1") == std::string::npos || top < 15)
            continue;
        across = across || (bottom - top == 1 && right - left > 1);
        down = down || (right - left == 1 && bottom - top > 1);
    }
    EXPECT_TRUE(across);
    EXPECT_TRUE(down);
}

TEST_F(gnssUIGridTest, ScrollsDownwardsWhenTheRowsDoNotFitAndNeverAcross)
{
    Show(10);
    Toolkit().PumpPending();
    EXPECT_EQ(Page->VisSats->ScrollV, nullptr);
    Show(100);
    Toolkit().PumpPending();
    EXPECT_NE(Page->VisSats->ScrollV, nullptr);
    EXPECT_EQ(Page->VisSats->ScrollH, nullptr);
    EXPECT_EQ(FirstId(), "G1 ");
    Turn(Page->VisSats, -240);
    EXPECT_EQ(FirstId(), "G3 ");
    EXPECT_EQ(Written(Page->VisSats).front().Text, "ID") << "the header stays";

    EXPECT_FALSE(Page->VisSats->HasStyle(styleGridBarH | styleGridBarHNeeded));
}

}  // namespace
