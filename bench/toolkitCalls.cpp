// How many draws the toolkit asks for: for the whole form of toolkitLoad, and for one changed label.
#include "bench/toolkitScene.h"
#include "tests/fakes/fakeDraws.h"
#include "tests/fakes/fakes.h"

#include <cstdio>

namespace {

size_t drawsOf()
{
    fakeClearDraws();
    Toolkit().PumpPending();
    return fakeDraws().size();
}

}  // namespace

int main()
{
    fakeReset();
    auto* form = new sceneForm;
    const size_t first = drawsOf();
    std::printf("first paint: %zu draws, %zu brushes, %zu text formats\n", first, fakeBrushesMade(),
                fakeFormatsMade());
    form->InvalidateTree(true);
    const size_t whole = drawsOf();
    form->Labels.front()->Caption("1");
    const size_t one = drawsOf();
    std::printf("draws for one changed label: %.3g x those of a whole repaint, %zu of %zu\n",
                static_cast<double>(one) / static_cast<double>(whole), one, whole);
    delete form;
    return 0;
}
