#include "tests/forms/pageTest.h"

#include <cmath>

namespace {

using basePage = openPage<gnss::UI>;

// The sizes of a page, worked out for each scale by hand.
struct pageSizes {
    double Scale;
    int32_t Label;  // height of a label
    int32_t Edit;   // height of an edit
    int32_t Left;   // width of the left block
    int32_t Grid;   // width of the table with one signal
    int32_t GridRow;
};

class gnssUILayoutTest : public pageTest, public testing::WithParamInterface<pageSizes>
{
protected:
    static rect Box(int32_t x, int32_t y, int32_t width, int32_t height)
    {
        return {x, y, x + width, y + height};
    }
};

TEST_P(gnssUILayoutTest, PutsEditsInColumnsThatLineUp)
{
    const pageSizes& sizes = GetParam();
    auto* page = Shown<basePage>(sizes.Scale);
    const int32_t pitch = sizes.Label + sizes.Edit + 6;
    const int32_t half = (sizes.Left - 4) / 2;
    const int32_t quarter = (sizes.Left - 12) / 4;
    const auto edit = [&](int32_t row, int32_t index, int32_t width) {
        return Box(index * (width + 4), row * pitch + sizes.Label + 2, width, sizes.Edit);
    };
    EXPECT_EQ(AreaOf(page->DateLabel), Box(0, 0, half, sizes.Label));
    EXPECT_EQ(AreaOf(page->TimeLabel), Box(half + 4, 0, half, sizes.Label));
    EXPECT_EQ(AreaOf(page->DateEdit), edit(0, 0, half));
    EXPECT_EQ(AreaOf(page->TimeEdit), edit(0, 1, half));
    EXPECT_EQ(AreaOf(page->LatitudeEdit), edit(1, 0, half));
    EXPECT_EQ(AreaOf(page->LongitudeEdit), edit(1, 1, half));
    EXPECT_EQ(AreaOf(page->AltitudeEdit), edit(2, 0, quarter));
    EXPECT_EQ(AreaOf(page->SeaLevelEdit), edit(2, 1, quarter));
    EXPECT_EQ(AreaOf(page->SpeedEdit), edit(2, 2, quarter));
    EXPECT_EQ(AreaOf(page->TrackEdit), edit(2, 3, quarter));
    EXPECT_EQ(AreaOf(page->HDOPEdit), edit(3, 0, quarter));
    EXPECT_EQ(AreaOf(page->VDOPEdit), edit(3, 1, quarter));
    EXPECT_EQ(AreaOf(page->PDOPEdit), edit(3, 2, quarter));
    EXPECT_EQ(AreaOf(page->TrackEdit).Right, sizes.Left) << "the columns end with the block";
    EXPECT_EQ(AreaOf(page->TimeEdit).Right, sizes.Left);
    ExpectNothingOverlaps(page);
    ExpectLabelsAreFree(page, "Latitude");
}

TEST_P(gnssUILayoutTest, PaintsEachLabelAboveItsEdit)
{
    const pageSizes& sizes = GetParam();
    auto* page = Shown<basePage>(sizes.Scale);
    const std::vector<pageDrawn> texts = Written(page);
    struct row {
        const char* Text;
        const ctrlWindow* Edit;
    };
    for (const row& one : {row{"Latitude", page->LatitudeEdit},
                           {"Longitude", page->LongitudeEdit},
                           {"Altitude", page->AltitudeEdit},
                           {"Sea level", page->SeaLevelEdit},
                           {"Speed", page->SpeedEdit},
                           {"Track", page->TrackEdit},
                           {"HDOP", page->HDOPEdit},
                           {"VDOP", page->VDOPEdit},
                           {"PDOP", page->PDOPEdit}}) {
        const rect edit = AreaOf(one.Edit);
        const rect above{edit.Left, edit.Top - 2 - sizes.Label, edit.Right, edit.Top - 2};
        EXPECT_EQ(Find(texts, one.Text).Area, above) << one.Text;
    }
}

TEST_P(gnssUILayoutTest, HasTheSizeThatItsContentNeeds)
{
    const pageSizes& sizes = GetParam();
    auto* page = Shown<basePage>(sizes.Scale);
    const auto width = static_cast<uint32_t>(sizes.Left + 4 + sizes.Grid);
    const auto least =
        static_cast<uint32_t>(3 * (sizes.Label + sizes.Edit + 6) + sizes.Label + 2 + sizes.Edit);
    EXPECT_EQ(page->Width(), width);
    EXPECT_EQ(page->ClampWidth(1), width);
    EXPECT_EQ(page->ClampWidth(5000), width);
    EXPECT_EQ(page->ClampHeight(1), least);
    EXPECT_EQ(page->ClampHeight(5000), 5000U);
    EXPECT_EQ(AreaOf(page->VisSats),
              Box(sizes.Left + 4, 0, sizes.Grid, static_cast<int32_t>(page->Height())));
}

TEST_P(gnssUILayoutTest, GivesTheTableColumnsAndRowsOfOneHeight)
{
    const pageSizes& sizes = GetParam();
    auto* page = Made<basePage>(sizes.Scale);
    gnss model;
    model.Sats.resize(3);
    Show(page);
    page->Source(&model);
    Toolkit().PumpPending();
    Host->InvalidateLayout();
    Toolkit().PumpPending();
    const ctrlGrid& grid = *page->VisSats;
    ASSERT_EQ(grid.Columns.size(), 5U);
    const auto scaled = [&](int pixels) { return static_cast<uint32_t>(std::ceil(pixels * sizes.Scale)); };
    uint32_t total = 0;
    for (const auto& [column, pixels] : {std::pair(0U, 35), {1U, 36}, {2U, 36}, {3U, 35}}) {
        EXPECT_EQ(grid.Columns[column].Width, scaled(pixels));
        EXPECT_FALSE(grid.Columns[column].Auto);
        total += scaled(pixels);
    }
    EXPECT_TRUE(grid.Columns[4].Auto);
    EXPECT_EQ(grid.Columns[4].Width, static_cast<uint32_t>(sizes.Grid) - total);
    EXPECT_THAT(grid.RowHeights,
                testing::AllOf(testing::SizeIs(4), testing::Each(static_cast<uint32_t>(sizes.GridRow))));
    EXPECT_EQ(grid.RowHeightDefault, static_cast<uint32_t>(sizes.GridRow));
    page->Source(nullptr);
}

TEST_P(gnssUILayoutTest, GrowsDownwardsWithItsWindow)
{
    auto* page = Shown<basePage>(GetParam().Scale);
    const uint32_t before = page->Height();
    Host->Move(HostX, HostY, HostWidth, HostHeight + 50);
    Toolkit().PumpPending();
    EXPECT_EQ(page->Height(), before + 50);
    EXPECT_EQ(page->VisSats->Height(), page->Height());
    page->Height(before + 70);
    EXPECT_EQ(page->VisSats->Height(), before + 70) << "also where nobody asks for a layout";
}

INSTANTIATE_TEST_SUITE_P(Scales, gnssUILayoutTest,
                         testing::Values(pageSizes{1.0, 14, 18, 224, 205, 15},
                                         pageSizes{1.5, 21, 27, 332, 308, 23},
                                         pageSizes{2.0, 28, 36, 428, 410, 30}),
                         [](const auto& given) {
                             return "At" + std::to_string(static_cast<int>(given.param.Scale * 100));
                         });

}  // namespace
