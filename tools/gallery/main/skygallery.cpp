// skygallery: everything that the toolkit can show.
//
//   skygallery [all]     what a canvas and a window can do
//   skygallery controls  buttons, labels, sliders, lists, pages, splits and grids
//   skygallery edits     edits of texts, values, dates, angles and times
//   skygallery graphs    graphs
//   skygallery empty     a form with nothing on it
//
// With --picture FILE behind these it writes what it shows to a BMP file and ends. What happens in it goes to
// standard output, a line each. With SKY_GALLERY_STILL in the environment nothing moves by itself, so that
// two pictures of it are the same.
#include "tools/gallery/gallery.h"
#include "tools/gallery/galleryPicture.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

class galleryForm final : public ctrlWindow
{
public:
    galleryForm(uint32_t width, uint32_t height)
        : ctrlWindow(nullptr, 60, 60, width, height, ctrlFramed | ctrlPerMonitor)
    {
        FrameStyle(frameClosable | frameMaximise | frameMinimise | frameResize, 0);
        WidthRange(400, 0);
        HeightRange(200, 0);
        Caption("Gallery");
    }

    ~galleryForm() override { galleryTell("form: gone"); }

    void Activated(bool active) override
    {
        ctrlWindow::Activated(active);
        galleryTell(active ? "form: active" : "form: inactive");
    }

    void Moved() override { galleryTell("form: at " + std::to_string(X()) + " " + std::to_string(Y())); }

    void StateChanged() override
    {
        std::string line = "form: " + std::to_string(Width()) + "x" + std::to_string(Height());
        if (HasState(stateMinimised))
            line += " minimised";
        if (HasState(stateMaximised))
            line += " maximised";
        line += IsVisible() ? " visible" : " hidden";
        galleryTell(line);
    }
};

void allSheets(ctrlWindow* form)
{
    galleryTexts(form, 10, 10);
    galleryShapes(form, 340, 10);
    galleryImages(form, 670, 10);
    galleryTree(form, 670, 180);
    galleryInput(form, 10, 350);
    galleryWindows(form, 500, 350);
}

struct galleryPage {
    std::string_view Name;
    uint32_t Width, Height;
    void (*Make)(ctrlWindow* form);
    bool Scaled;  // its places follow the screen's scale
};

constexpr galleryPage pages[] = {
    {"all", 1000, 500, allSheets, false},
    {"controls", 1000, 562, galleryControls, true},
    {"edits", 1000, 384, galleryEdits, true},
    {"graphs", 990, 500, galleryGraphs, true},
    {"empty", 1000, 500, [](ctrlWindow*) {}, false},
};

const galleryPage* pageNamed(std::string_view name)
{
    for (const galleryPage& one : pages) {
        if (one.Name == name)
            return &one;
    }
    return nullptr;
}

ctrlWindow* makeForm(const galleryPage& page)
{
    auto* form = new galleryForm(page.Width, page.Height);
    if (!form->Handle()) {
        delete form;
        return nullptr;
    }
    if (page.Scaled) {
        galleryScaleFor(*form);
        form->Move(form->X(), form->Y(),
                   static_cast<uint32_t>(galleryScaled(static_cast<int32_t>(page.Width))),
                   static_cast<uint32_t>(galleryScaled(static_cast<int32_t>(page.Height))));
    }
    page.Make(form);
    return form;
}

int usage()
{
    std::fprintf(stderr, "usage: skygallery [all | controls | edits | graphs | empty] [--picture FILE]\n");
    return 2;
}

}  // namespace

int main(int count, char** arguments)
{
    const std::vector<std::string_view> words(arguments + 1, arguments + count);
    const bool named = !words.empty() && words[0] != "--picture";
    const galleryPage* page = pageNamed(named ? words[0] : "all");
    const size_t rest = words.size() - (named ? 1 : 0);
    const bool pictured = rest == 2 && words[words.size() - 2] == "--picture";
    if (!page || (rest != 0 && !pictured))
        return usage();
    galleryStill(std::getenv("SKY_GALLERY_STILL") != nullptr);
    ctrlWindow* form = makeForm(*page);
    if (!form) {
        std::fprintf(stderr, "skygallery: there is no display\n");
        return 1;
    }
    if (pictured) {
        const bool done = galleryPicture(*form, arguments[count - 1]);
        if (!done)
            std::fprintf(stderr, "skygallery: no picture could be written to %s\n", arguments[count - 1]);
        delete form;
        return done ? 0 : 1;
    }
    form->Show();
    while (Toolkit().PumpOne(true)) {
    }
    return 0;
}
