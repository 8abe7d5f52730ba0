#include "tests/forms/ubxPageTest.h"

#include <tuple>

namespace {

struct sizeRow {
    double Scale;
    int32_t Label;
    int32_t Edit;
    int32_t Left;
    int32_t Grid;
    int32_t Tabs;
    int32_t RateWidth;
    int32_t DutyWidth;
};

constexpr sizeRow sizesAt[] = {
    {1.0, 14, 18, 224, 205, 300, 75, 55},
    {1.5, 21, 27, 332, 308, 450, 113, 83},
    {2.0, 28, 36, 428, 410, 600, 150, 110},
};

// Rows of boxes, and how many rows the version stands below the usual place.
struct boxRows {
    unsigned Model;
    int32_t Rows;
    int32_t Further;
};

constexpr boxRows rowsOf[] = {{7, 2, 0},  {8, 3, 0},  {9, 3, 0},  {10, 3, 0},
                              {11, 4, 1}, {12, 3, 0}, {13, 3, 0}, {14, 5, 2}};

class gnssUBX_UILayoutTest : public ubxPageTest,
                             public testing::WithParamInterface<std::tuple<sizeRow, boxRows>>
{
protected:
    void SetUp() override
    {
        ubxPageTest::SetUp();
        ShownFor(Model.Model, Sizes.Scale);
    }

    int32_t EditTop(int32_t row) const { return row * (Sizes.Label + Sizes.Edit + 6) + Sizes.Label + 2; }
    int32_t Third() const { return (Sizes.Left - 8) / 3; }

    const sizeRow Sizes = std::get<0>(GetParam());
    const boxRows Model = std::get<1>(GetParam());
};

TEST_P(gnssUBX_UILayoutTest, LetsNothingOverlap)
{
    ExpectNothingOverlaps(Page);
    ExpectNothingOverlaps(Page->Tabs->Page(0));
    ExpectLabelsAreFree(Page, "PPS week");
    if (Page->Tabs->PageCount > 1) {
        SelectTab(1);
        ExpectNothingOverlaps(Page->Tabs->Page(1));
    }
}

TEST_P(gnssUBX_UILayoutTest, LinesItsColumnsUp)
{
    const int32_t quarter = (Sizes.Left - 12) / 4;
    const int32_t y0 = Sizes.Label + 3 * (Sizes.Label + Sizes.Edit);
    EXPECT_EQ(AreaOf(Page->TDOPBox),
              (rect{3 * (quarter + 4), y0 + 20, 3 * (quarter + 4) + quarter, y0 + 20 + Sizes.Edit}));
    EXPECT_EQ(Page->TDOPBox->Y(), Page->PDOPEdit->Y());
    const int32_t y1 = y0 + 26 + Sizes.Label + Sizes.Edit;
    int32_t x = 0;
    for (const ctrlEdit_Val* box : {Page->PPSWeekBox, Page->PPSTimeBox, Page->PPSErrorBox}) {
        EXPECT_EQ(AreaOf(box), (rect{x, y1, x + Third(), y1 + Sizes.Edit}));
        x += Third() + 4;
    }
    EXPECT_EQ(AreaOf(Page->PPSErrorBox).Right, Sizes.Left);
    const std::vector<pageDrawn> texts = Written(Page);
    for (const auto& [text, edit] : {std::pair<const char*, const ctrlWindow*>{"TDOP", Page->TDOPBox},
                                     {"PPS week", Page->PPSWeekBox},
                                     {"PPS time", Page->PPSTimeBox},
                                     {"PPS error", Page->PPSErrorBox}}) {
        const rect below = AreaOf(edit);
        EXPECT_EQ(Find(texts, text).Area,
                  (rect{below.Left, below.Top - 2 - Sizes.Label, below.Right, below.Top - 2}));
    }
    EXPECT_EQ(Find(texts, "Constellations").Area,
              (rect{0, EditTop(5) - 2 - Sizes.Label, Sizes.Left, EditTop(5) - 2}));
}

TEST_P(gnssUBX_UILayoutTest, LetsTheBoxesFlowInThreeColumns)
{
    const int32_t pitch = Sizes.Edit + 4;
    const int32_t y2 = Page->PPSWeekBox->Y() + Sizes.Label + 6 + Sizes.Edit;
    EXPECT_EQ(y2, EditTop(5));
    int32_t row = 0;
    int32_t column = 0;
    for (size_t at = 0; at < Page->SignalBoxes.size(); ++at) {
        const ctrlButton* box = Page->SignalBoxes[at];
        if (at == 13 && column > 0) {
            ++row;
            column = 0;
        }
        if (!box->HasState(stateVisible))
            continue;
        const int32_t x = column * (Third() + 4);
        const int32_t y = y2 + row * pitch;
        EXPECT_EQ(AreaOf(box), (rect{x, y, x + Third(), y + Sizes.Edit})) << box->Name();
        column = (column + 1) % 3;
        row += column == 0 ? 1 : 0;
    }
    EXPECT_EQ(row + (column > 0 ? 1 : 0), Model.Rows);
}

TEST_P(gnssUBX_UILayoutTest, WritesTheVersionBelowTheBoxes)
{
    const int32_t y = (8 + Model.Further) * Sizes.Edit + Model.Further * 4 + 2 * (3 * Sizes.Label + 22);
    const pageDrawn line = Find(Written(Page), "Protocol version 34.10");
    EXPECT_EQ(line.Area, (rect{0, y, Sizes.Left, y + Sizes.Label}));
    int32_t end = 0;
    for (const ctrlButton* box : Page->SignalBoxes) {
        if (box->HasState(stateVisible))
            end = std::max(end, AreaOf(box).Bottom);
    }
    EXPECT_GE(line.Area.Top, end + 4);
}

TEST_P(gnssUBX_UILayoutTest, HasTheSizeThatItsContentNeeds)
{
    const auto width = static_cast<uint32_t>(Sizes.Left + 8 + Sizes.Grid + Sizes.Tabs);
    const int32_t end = EditTop(5) + Model.Rows * (Sizes.Edit + 4);
    EXPECT_EQ(Page->Width(), width);
    EXPECT_EQ(Page->ClampWidth(1), width);
    EXPECT_EQ(Page->ClampWidth(9999), width);
    EXPECT_EQ(Page->ClampHeight(1), static_cast<uint32_t>(end + Sizes.Label + Sizes.Edit + 4));
    EXPECT_EQ(AreaOf(Page->VisSats),
              (rect{Sizes.Left + 4, 0, Sizes.Left + 4 + Sizes.Grid, static_cast<int32_t>(Page->Height())}));
    EXPECT_EQ(AreaOf(Page->Tabs), (rect{Sizes.Left + 8 + Sizes.Grid, 0, static_cast<int32_t>(width),
                                        static_cast<int32_t>(Page->Height())}));
}

TEST_P(gnssUBX_UILayoutTest, PutsRateAndDutyAlongTheBottomOfTheirTab)
{
    const ctrlWindow* tab = Page->Tabs->Page(0);
    const auto bottom = static_cast<int32_t>(tab->Height());
    const int32_t y = bottom - Sizes.Label - 4;
    for (const ctrlWindow* one : std::initializer_list<ctrlWindow*>{Page->RateLabel, Page->RateEdit,
                                                                    Page->DutyLabel, Page->DutyEdit}) {
        EXPECT_EQ(one->Y(), y);
        EXPECT_EQ(one->Height(), static_cast<uint32_t>(Sizes.Label));
    }
    EXPECT_EQ(Page->RateLabel->X(), 4);
    EXPECT_EQ(Page->RateEdit->X(), AreaOf(Page->RateLabel).Right + 5);
    EXPECT_EQ(Page->RateEdit->Width(), static_cast<uint32_t>(Sizes.RateWidth));
    EXPECT_EQ(Page->DutyLabel->X(), AreaOf(Page->RateEdit).Right + 1);
    EXPECT_EQ(Page->DutyEdit->X(), AreaOf(Page->DutyLabel).Right + 1);
    EXPECT_EQ(Page->DutyEdit->Width(), static_cast<uint32_t>(Sizes.DutyWidth));
    EXPECT_EQ(AreaOf(Page->PPSGraph), (rect{0, Sizes.Label + 8, static_cast<int32_t>(tab->Width()), y - 4}));
}

TEST_P(gnssUBX_UILayoutTest, GrowsDownwardsWithItsWindow)
{
    const uint32_t graph = Page->PPSGraph->Height();
    const int32_t rate = Page->RateEdit->Y();
    Host->Move(HostX, HostY, HostWidth, HostHeight + 50);
    Toolkit().PumpPending();
    EXPECT_EQ(Page->Tabs->Height(), Page->Height());
    EXPECT_EQ(Page->PPSGraph->Height(), graph + 50);
    EXPECT_EQ(Page->RateEdit->Y(), rate + 50);
    ExpectNothingOverlaps(Page->Tabs->Page(0));
    Page->Height(Page->Height() - 60);
    EXPECT_EQ(Page->PPSGraph->Height(), graph - 10) << "also where nobody asks for a layout";
    EXPECT_EQ(Page->RateEdit->Y(), rate - 10);
}

INSTANTIATE_TEST_SUITE_P(ScalesAndModels, gnssUBX_UILayoutTest,
                         testing::Combine(testing::ValuesIn(sizesAt), testing::ValuesIn(rowsOf)),
                         [](const auto& given) {
                             const auto percent = static_cast<int>(std::get<0>(given.param).Scale * 100);
                             return "Model" + std::to_string(std::get<1>(given.param).Model) + "At" +
                                    std::to_string(percent);
                         });

class gnssUBX_UISpectrumLayoutTest : public ubxPageTest
{
};

TEST_F(gnssUBX_UISpectrumLayoutTest, GivesTheTabToASingleSpectrum)
{
    ShownFor(10);
    SelectTab(1);
    const ctrlWindow* tab = Page->Tabs->Page(1);
    EXPECT_EQ(AreaOf(Page->SpectrumGraphs[0]),
              (rect{0, 0, static_cast<int32_t>(tab->Width()), static_cast<int32_t>(tab->Height())}));
    EXPECT_EQ(tab->Width(), 300U);
}

TEST_F(gnssUBX_UISpectrumLayoutTest, SharesTheTabBetweenTwoSpectraAndLetsTheUserChangeTheShares)
{
    ShownFor(14);
    SelectTab(1);
    const ctrlWindow* tab = Page->Tabs->Page(1);
    const ctrlGraphSpectrum* upper = Page->SpectrumGraphs[0];
    const ctrlGraphSpectrum* lower = Page->SpectrumGraphs[1];
    EXPECT_EQ(upper->Y(), 0);
    EXPECT_EQ(upper->Width(), tab->Width());
    EXPECT_EQ(lower->Width(), tab->Width());
    EXPECT_EQ(AreaOf(lower).Bottom, static_cast<int32_t>(tab->Height()));
    EXPECT_NEAR(upper->Height(), lower->Height(), 1);

    const uint32_t before = upper->Height();
    const auto [left, top] = CornerOf(upper);
    const int32_t gap = top + static_cast<int32_t>(before) + 1;
    fakeMouseMove(left + 50, gap);
    fakeMousePress();
    fakeMouseMove(left + 50, gap + 30);
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_EQ(upper->Height(), before + 30);
    EXPECT_EQ(AreaOf(lower).Bottom, static_cast<int32_t>(tab->Height()));
}

TEST_F(gnssUBX_UISpectrumLayoutTest, FollowsTheWindowWithItsSpectra)
{
    ShownFor(14);
    SelectTab(1);
    Host->Move(HostX, HostY, HostWidth, HostHeight + 100);
    Toolkit().PumpPending();
    ExpectNothingOverlaps(Page->Tabs->Page(1));
    EXPECT_EQ(AreaOf(Page->SpectrumGraphs[1]).Bottom, static_cast<int32_t>(Page->Tabs->Page(1)->Height()));
}

}  // namespace
