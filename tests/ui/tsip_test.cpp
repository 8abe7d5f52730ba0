// What only the page of a TSIP receiver has: the panel of its flags.
#include "tests/platform/screen/screenPixels.h"
#include "tests/ui/pageInside.h"
#include "tests/ui/uiTest.h"

#include <algorithm>
#include <span>

namespace {

// The colours of text, of which each edge is mixed with the ground.
struct ink {
    bool Red, Green, Blue;

    bool Is(uint32_t pixel) const
    {
        return Matches(pixel >> 16 & 255, Red) && Matches(pixel >> 8 & 255, Green) &&
               Matches(pixel & 255, Blue);
    }

private:
    static bool Matches(uint32_t part, bool on)
    {
        constexpr uint32_t Bright = 195;
        constexpr uint32_t Dim = 60;
        return on ? part >= Bright : part <= Dim;
    }
};

constexpr ink White = {true, true, true};
constexpr ink Green = {false, true, false};
constexpr ink Yellow = {true, true, false};

class tsipUi : public uiTest
{
protected:
    // How many lines of text of a colour stand in the panel, to the right of the satellites.
    unsigned Lines(const ink& shade) const
    {
        constexpr size_t Between = 3;  // rows of pixels without any ink
        Program.Form->Page->Invalidate(true);
        letPass();
        windowArea area = areaOnScreen(Program.Form->Page);
        area.Left = areaOnScreen(pageParts::SatsOf(Program.Form->Page)).Right;
        const std::vector<uint32_t> pixels = screenPixels(area);
        const auto width = static_cast<size_t>(area.Right - area.Left);
        unsigned lines = 0;
        size_t blank = Between;
        for (size_t start = 0; start + width <= pixels.size(); start += width) {
            const auto row = std::span(pixels).subspan(start, width);
            if (std::ranges::none_of(row, [&](uint32_t pixel) { return shade.Is(pixel); })) {
                ++blank;
                continue;
            }
            lines += blank >= Between ? 1 : 0;
            blank = 0;
        }
        return lines;
    }
    void Recognise(simModel model, std::string_view name)
    {
        Device.emplace(model);
        Program.OpenAt(Device->Port());
        ASSERT_TRUE(comes([&] { return Program.Shows(name, "TSIP"); })) << Program.Status();
    }
};

TEST_F(tsipUi, AReceiverThatTellsOfNoAlarmHasAGreenPanel)
{
    ASSERT_NO_FATAL_FAILURE(Recognise(simModel::Lassen, "Trimble® Lassen-SK8™"));
    EXPECT_TRUE(comes([&] { return Lines(Green) == 11 && Lines(Yellow) == 0 && Lines(White) == 4; }))
        << Lines(Green) << " green, " << Lines(Yellow) << " yellow, " << Lines(White) << " white";
    EXPECT_EQ(tsipParts::RXModeOf(Program.Form->Page)->Name(), "Unknown") << "it tells none";
}

TEST_F(tsipUi, ASurveyIsAYellowLineUntilItIsOver)
{
    if (!road::BearsHaste())
        GTEST_SKIP() << "painting takes too long here for data that come so fast";
    ASSERT_NO_FATAL_FAILURE(Recognise(simModel::Resolution, "Trimble® Resolution T®"));
    EXPECT_TRUE(comes([&] { return Lines(Yellow) == 1 && Lines(Green) == 10; }))
        << Lines(Green) << " green, " << Lines(Yellow) << " yellow";
    EXPECT_EQ(tsipParts::RXModeOf(Program.Form->Page)->Name(), "Full position (3D)");
    EXPECT_EQ(tsipParts::DecodeStatusOf(Program.Form->Page)->Name(), "Doing Fixes");
    Device->Hasten(20);
    EXPECT_TRUE(comes([&] { return Lines(Yellow) == 0 && Lines(Green) == 11; }));
}

}  // namespace
