// What targets bear here that other systems call a failure, and what they leave behind.
#include "tests/await.h"
#include "tests/platform/screen/drawCanvas.h"
#include "tests/platform/screen/windowTest.h"

#include <fstream>
#include <sstream>
#include <string>

#include <unistd.h>

namespace {

class drawLeftOver : public drawPixelTest
{
};
DRAW_ON_ALL_CANVASES(drawLeftOver);

TEST_P(drawLeftOver, AClipEndsWithThePaintInWhichItWasPushed)
{
    drawCanvas canvas(GetParam(), 20, 20);
    canvas->PushClip({5, 5, 10, 10});
    canvas->PushClip({6, 6, 8, 8});
    canvas.Finish();
    canvas.Resume();
    canvas.Fill({0, 0, 20, 20}, Red);
    // Nor is there anything left to pop.
    canvas->PopClip();
    canvas.Finish();
    for (const auto& [x, y] : {std::pair(0, 0), {7, 7}, {9, 9}, {19, 19}})
        EXPECT_EQ(canvas.At(x, y), Red) << x << ',' << y;
}

// How many pieces of shared memory this program has made that are still there.
size_t sharedPieces()
{
    std::ifstream table("/proc/sysvipc/shm");
    std::string line;
    std::getline(table, line);
    size_t pieces = 0;
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        int64_t key = 0;
        int64_t id = 0;
        std::string rights;
        int64_t size = 0;
        int64_t maker = 0;
        fields >> key >> id >> rights >> size >> maker;
        pieces += maker == getpid() ? 1u : 0u;
    }
    return pieces;
}

class drawMemory : public windowTest
{
};

TEST_F(drawMemory, GoesWithATargetThatOutlivesItsWindow)
{
    const windowId window = OpenAt({100, 100, 300, 200});
    const size_t before = sharedPieces();
    uint32_t error = 0;
    std::unique_ptr<drawTarget> target =
        drawContractSystem().MakeWindowTarget(window, 200, 100, false, error);
    ASSERT_NE(target, nullptr) << error;
    if (sharedPieces() == before)
        GTEST_SKIP() << "no memory is shared with this display";
    System->Destroy(window);
    target.reset();
    EXPECT_TRUE(Until([&] { return sharedPieces() == before; }));
}

TEST_F(drawMemory, GoesWithATargetThatOutlivesTheDisplay)
{
    const windowId window = OpenAt({100, 100, 300, 200});
    uint32_t error = 0;
    std::unique_ptr<drawTarget> target =
        drawContractSystem().MakeWindowTarget(window, 200, 100, false, error);
    ASSERT_NE(target, nullptr) << error;
    System.reset();
    target.reset();
    // The display takes its time over a connection that has ended.
    EXPECT_TRUE(await([] { return sharedPieces() == 0; }));
}

}  // namespace
