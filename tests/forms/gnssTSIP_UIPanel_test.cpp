#include "tests/forms/tsipPageTest.h"

#include <algorithm>

namespace {

using testing::ElementsAre;

class gnssTSIP_UIPanelTest : public tsipPageTest
{
protected:
    // What the page itself writes at the right of the table.
    std::vector<pageDrawn> PanelLines()
    {
        std::vector<pageDrawn> lines = Written(Page);
        const unsigned target = Find(lines, "Latitude").Target;
        const int32_t left = AreaOf(Page->VisSats).Right;
        std::erase_if(lines,
                      [&](const pageDrawn& one) { return one.Target != target || one.Area.Left < left; });
        return lines;
    }

    // How far the lines of flags stand in where the widest of them has this text.
    int32_t IndentFor(const char* widest) const
    {
        return std::clamp(170 - static_cast<int32_t>(Page->TextSize(widest).Width), 0, 10);
    }
};

TEST_F(gnssTSIP_UIPanelTest, PaintsItsFlagsCalmWhenAllAreClear)
{
    ShownPage();
    Feed(supplemental{});
    const std::vector<pageDrawn> lines = PanelLines();
    EXPECT_THAT(Words(lines),
                ElementsAre("Time flags:", "GPS aligned PPS", "Time not yet set from GPS",
                            "UTC offset information received", "Time from GPS",
                            "Status flags:", "Antenna open", "Antenna short", "Satellite tracking",
                            "Self-survey inactive", "Stored position", "Leap second pending", "Test mode",
                            "Position questionable", "EEPROM is corrupted", "Almanac", "PPS generated"));
    const int32_t left = AreaOf(Page->VisSats).Right + 4;
    const int32_t indent = IndentFor("UTC offset information received");
    int32_t y = 0;
    for (const pageDrawn& line : lines) {
        const bool heading = line.Text.ends_with("flags:");
        const bool status = y > 5 * 16;
        EXPECT_EQ(line.Area, (rect{left + (heading ? 0 : indent), y, left + 170, y + 14})) << line.Text;
        EXPECT_TRUE(line.Has(heading  ? "FFC000/1"
                             : status ? "00FF00/1"
                                      : "FFFFFF/1"))
            << line.Text << line.How;
        EXPECT_TRUE(line.Has("left centre")) << line.How;
        y += 16;
    }
}

TEST_F(gnssTSIP_UIPanelTest, PaintsItsFlagsAsAlarmsWhenTheyAreSet)
{
    ShownPage();
    Feed(std::string(primaryTiming({.Flags = 0x1F})) +
         std::string(supplemental{.Survey = 42, .Status = 0xFFFF}));
    const std::vector<pageDrawn> lines = PanelLines();
    EXPECT_THAT(Words(lines),
                ElementsAre("Time flags:", "UTC aligned PPS", "Time set from GPS",
                            "No UTC offset information", "Time from test mode generator",
                            "Status flags:", "Antenna open", "Antenna short", "Satellite tracking",
                            "Self-survey - 42%", "Stored position", "Leap second pending", "Test mode",
                            "Position questionable", "EEPROM is corrupted", "Almanac", "PPS generated"));
    for (size_t at = 6; at < lines.size(); ++at)
        EXPECT_TRUE(lines[at].Has("FFFF00/1")) << lines[at].Text << lines[at].How;
    for (size_t at = 1; at < 5; ++at)
        EXPECT_TRUE(lines[at].Has("FFFFFF/1")) << lines[at].Text << lines[at].How;
}

TEST_F(gnssTSIP_UIPanelTest, CutsNoFlagWhereTheFontIsWide)
{
    ShownPage();
    Feed(supplemental{});
    const int32_t left = AreaOf(Page->VisSats).Right + 4;
    for (const float size : {11.0F, 10.5F, 10.0F}) {
        SCOPED_TRACE(size);
        Page->FontSize(size);
        Page->Invalidate(true);
        const std::vector<pageDrawn> lines = PanelLines();
        const int32_t indent = IndentFor("UTC offset information received");
        EXPECT_EQ(indent > 0 && indent < 10, size == 10.5F) << indent;
        EXPECT_EQ(Find(lines, "Almanac").Area.Left, left + indent);
        EXPECT_EQ(Find(lines, "Antenna open").Area.Left, left + indent);
        EXPECT_EQ(Find(lines, "Status flags:").Area.Left, left);
    }
}

TEST_F(gnssTSIP_UIPanelTest, TellsEachStatusByItsOwnBit)
{
    ShownPage();
    const unsigned bits[] = {1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12};
    for (size_t at = 0; at < std::size(bits); ++at) {
        Feed(supplemental{.Status = 1U << bits[at]});
        const std::vector<pageDrawn> lines = PanelLines();
        ASSERT_EQ(lines.size(), 17U);
        for (size_t line = 0; line < std::size(bits); ++line)
            EXPECT_EQ(lines[6 + line].Has("FFFF00/1"), line == at) << lines[6 + line].Text;
    }
}

TEST_F(gnssTSIP_UIPanelTest, RepaintsItsPanelAtEachRefreshAndAsksTheDecoderForNothingMeanwhile)
{
    ShownPage();
    Feed(supplemental{});
    Toolkit().PumpPending();
    const unsigned before = Page->Paints;
    Page->Refresh();
    Toolkit().PumpPending();
    EXPECT_EQ(Page->Paints, before + 1);
    Receiver.Status = 0xFFFF;
    EXPECT_TRUE(Find(PanelLines(), "Antenna open").Has("00FF00/1")) << "as at the last refresh";
    Page->Source(nullptr);
    EXPECT_EQ(PanelLines().size(), 17U);
}

}  // namespace
