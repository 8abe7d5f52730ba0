// Controls in controls: nested, moving, translucent, faded and disabled.
#include "tools/gallery/gallery.h"

namespace {

constexpr uint32_t stepMs = 40;
constexpr int32_t trackWidth = 300;

class treeSheet final : public gallerySheet
{
public:
    treeSheet(ctrlWindow* parent, int32_t x, int32_t y)
        : gallerySheet(parent, x, y, 320, 160, "Controls in controls")
    {
        MakeNest();
        MakeTranslucent();
        auto* faded = new galleryTile(this, 236, 26, 76, 24, theme::Face, "faded");
        faded->Fade(60);
        auto* disabled = new galleryTile(this, 236, 54, 76, 24, theme::Face, "disabled");
        disabled->Enable(false);
        Runner = new galleryTile(this, 8, 130, 40, 22, theme::SelectionBackground, "moves");
    }

    void Step()
    {
        const int32_t place = (Runner->X() + 2 - 8) % (trackWidth - 40);
        Runner->Move(8 + place, Runner->Y(), Runner->Width(), Runner->Height());
    }

private:
    void MakeNest()
    {
        constexpr colour colours[] = {0x803030, 0x307030, 0x303080, 0x706030};
        ctrlWindow* inside = this;
        int32_t x = 8;
        int32_t y = 26;
        uint32_t width = 108;
        uint32_t height = 96;
        for (const colour back : colours) {
            inside = new galleryTile(inside, x, y, width, height, back, "");
            inside->BorderStyle(ctrlBorder::Raised);
            x = 10;
            y = 10;
            width -= 24;
            height -= 22;
        }
        // Reaches out of its parent, where it is cut.
        new galleryTile(inside, 16, 12, 60, 60, 0x0000C0, "");
    }

    void MakeTranslucent()
    {
        auto* below = new galleryTile(this, 126, 26, 100, 96, theme::ListBackground, "");
        new galleryTile(below, 10, 10, 46, 46, 0x00A000, "");
        auto* above = new galleryTile(below, 30, 30, 60, 56, 0x0000FF, "half");
        above->Transparency(0.5F);
        // The oldest child is on top; the half-transparent one is to be.
        below->ChildOrder(above, 1);
    }

    galleryTile* Runner = nullptr;
};

}  // namespace

ctrlWindow* galleryTree(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new treeSheet(parent, x, y);
    if (galleryStill())
        return sheet;
    Toolkit().TimerTake(stepMs, [life = ctrlLife(sheet)] {
        Toolkit().Post(
            [life] {
                if (life)
                    static_cast<treeSheet*>(life.Window())->Step();
            },
            true);
    });
    return sheet;
}
