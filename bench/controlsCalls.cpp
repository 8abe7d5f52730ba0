// How many draws of each kind a paint of the controls asks for: lines of a name and the counts of texts,
// lines and figures, and fills, for controlsLoad to repeat without the controls.
#include "bench/controlsScene.h"
#include "tests/fakes/fakeDraws.h"
#include "tests/fakes/fakes.h"

#include <cstdio>

namespace {

void count(const char* name, ctrlWindow* control)
{
    Toolkit().PumpPending();
    control->Parent()->InvalidateTree(true);
    fakeClearDraws();
    Toolkit().PumpPending();
    std::printf("%s %zu %zu %zu\n", name, fakeDrawCount("text"),
                fakeDrawCount("line") + fakeDrawCount("figure"), fakeDrawCount("fill"));
}

}  // namespace

int main()
{
    fakeReset();
    for (const uint64_t rows : {uint64_t{40}, uint64_t{400}}) {
        auto* window = new sceneWindow(sceneGrid::Width, sceneGrid::Height);
        auto* grid = new sceneGrid(window, rows);
        window->Show();
        count(rows == 40 ? "grid40" : "grid400", grid);
        delete window;
    }
    for (const uint64_t samples : {uint64_t{256}, uint64_t{100'000}}) {
        auto* window = new sceneWindow(300, 280);
        auto* graph = sceneSpectrum(window, 0, samples);
        window->Show();
        count(samples == 256 ? "spectrum256" : "spectrum100000", graph);
        delete window;
    }
    return 0;
}
