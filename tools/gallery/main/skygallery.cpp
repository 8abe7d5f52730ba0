// skygallery: everything that the toolkit can show.
//
//   skygallery           all sheets
//   skygallery controls  the controls
//   skygallery empty     a form with nothing on it
//
// What happens in it goes to standard output, a line each. With SKY_GALLERY_STILL in the environment nothing
// moves by itself, so that two pictures of it are the same.
#include "tools/gallery/gallery.h"

#include <cstdio>
#include <string_view>

namespace {

constexpr uint32_t pageWidth = 1000;
constexpr uint32_t pageHeight = 500;
constexpr uint32_t controlsHeight = 562;

class galleryForm final : public ctrlWindow
{
public:
    explicit galleryForm(uint32_t height)
        : ctrlWindow(nullptr, 60, 60, pageWidth, height, ctrlFramed | ctrlPerMonitor)
    {
        FrameStyle(frameClosable | frameMaximise | frameMinimise | frameResize, 0);
        WidthRange(400, 0);
        HeightRange(200, 0);
        Caption("Gallery");
    }

    ~galleryForm() override { galleryTell("form: gone"); }

    void MakeSheets()
    {
        galleryTexts(this, 10, 10);
        galleryShapes(this, 340, 10);
        galleryImages(this, 670, 10);
        galleryTree(this, 670, 180);
        galleryInput(this, 10, 350);
        galleryWindows(this, 500, 350);
    }

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

}  // namespace

int main(int count, char** arguments)
{
    const std::string_view what = count > 1 ? arguments[1] : "all";
    if (count > 2 || (what != "all" && what != "controls" && what != "empty")) {
        std::fprintf(stderr, "usage: skygallery [controls | empty]\n");
        return 2;
    }
    auto* form = new galleryForm(what == "controls" ? controlsHeight : pageHeight);
    if (!form->Handle()) {
        std::fprintf(stderr, "skygallery: there is no display\n");
        delete form;
        return 1;
    }
    if (what == "all")
        form->MakeSheets();
    if (what == "controls")
        galleryControls(form);
    form->Show();
    while (Toolkit().PumpOne(true)) {
    }
    return 0;
}
