// Tab goes from edit to edit of a sheet, and leaves none out.
#include "tests/toolkit/toolkitTest.h"
#include "tools/gallery/gallery.h"

#include <set>

namespace {

using galleryTabTest = toolkitTest;

TEST_F(galleryTabTest, TabReachesEveryEditThatTakesTheFocus)
{
    galleryStill(true);
    auto* form = new ctrlWindow(nullptr, 60, 60, 1000, 562, ctrlFramed | ctrlPerMonitor);
    galleryEdits(form);
    form->Show();
    Toolkit().Windows().SetFocus(form->Handle());
    Toolkit().PumpPending();
    for (const ctrlWindow* sheet = form->FirstChild(); sheet; sheet = sheet->NextSibling()) {
        std::set<const ctrlWindow*> stops;
        ctrlWindow* first = nullptr;
        for (ctrlWindow* one = sheet->FirstChild(); one; one = one->NextSibling()) {
            if (!one->HasStyle(styleFocusable) || !one->IsEnabled())
                continue;
            stops.insert(one);
            first = first ? first : one;
        }
        ASSERT_GT(stops.size(), 5U) << sheet->Name();
        first->Focus();
        Toolkit().PumpPending();
        std::set<const ctrlWindow*> reached{Toolkit().Focused};
        for (size_t step = 1; step < stops.size(); ++step) {
            fakeKeyPress(keyTab);
            Toolkit().PumpPending();
            reached.insert(Toolkit().Focused);
        }
        EXPECT_EQ(reached, stops) << sheet->Name();
        fakeKeyPress(keyTab);
        Toolkit().PumpPending();
        EXPECT_EQ(Toolkit().Focused, first) << "round again";
    }
    galleryStill(false);
}

}  // namespace
