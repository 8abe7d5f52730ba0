#include "tools/gallery/gallery.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace {

constexpr int32_t headingHeight = 20;
constexpr float headingSize = 12.0F;
constexpr int32_t labelHeight = 18;
constexpr float normalDPI = 96.0F;

float scale = 1.0F;
bool isStill = false;
std::function<void(const std::string& line)> listening;

}  // namespace

void galleryScaleFor(const ctrlWindow& form)
{
    scale = static_cast<float>(Toolkit().Windows().DPI(form.Handle())) / normalDPI;
}

int32_t galleryScaled(int32_t pixels)
{
    return static_cast<int32_t>(std::lround(static_cast<float>(pixels) * scale));
}

bool galleryStill()
{
    return isStill;
}

void galleryStill(bool still)
{
    isStill = still;
}

ctrlLabel* galleryLabel(ctrlWindow* parent, const char* text, int32_t x, int32_t y, int32_t width,
                        unsigned flags)
{
    return galleryPlaced(new ctrlLabel(parent, text, flags, 0), x, y, width, labelHeight);
}

gallerySheet::gallerySheet(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                           const char* heading)
    : ctrlWindow(parent, 0)
{
    galleryPlaced(this, x, y, static_cast<int32_t>(width), static_cast<int32_t>(height));
    Caption(heading);
    BorderStyle(ctrlBorder::Flat);
}

void gallerySheet::Paint()
{
    ctrlWindow::Paint();
    rect heading = PaintRect;
    heading.Left += 6;
    heading.Bottom = heading.Top + galleryScaled(headingHeight);
    const float size = FontSize();
    FontSize(headingSize);
    FontStyle(fontBold);
    Colour(theme::LabelText);
    Text(heading, Name().c_str(), textLeft);
    FontSize(size);
    FontStyle(0);
    PaintRect.Top += galleryScaled(headingHeight);
    PaintSheet();
}

galleryTile::galleryTile(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                         colour back, const char* name)
    : ctrlWindow(parent, x, y, width, height, 0)
{
    SetBackColour(back);
    Caption(name);
    Show();
}

void galleryTile::Paint()
{
    ctrlWindow::Paint();
    ColourEnabled(theme::FaceText, true);
    Text(PaintRect, Name().c_str(), 0);
}

void galleryTell(const std::string& line)
{
    if (listening) {
        listening(line);
        return;
    }
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void galleryListener(std::function<void(const std::string& line)> listener)
{
    listening = std::move(listener);
}
