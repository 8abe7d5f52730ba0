#include "tools/gallery/gallery.h"

#include <cmath>
#include <cstdio>

namespace {

constexpr int32_t headingHeight = 20;
constexpr float headingSize = 12.0F;

}  // namespace

gallerySheet::gallerySheet(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                           const char* heading)
    : ctrlWindow(parent, x, y, width, height, 0)
{
    Caption(heading);
    BorderStyle(ctrlBorder::Flat);
    Show();
}

void gallerySheet::Paint()
{
    ctrlWindow::Paint();
    rect heading = PaintRect;
    heading.Left += 6;
    heading.Bottom = heading.Top + headingHeight;
    const float size = FontSize();
    FontSize(headingSize);
    FontStyle(fontBold);
    Colour(theme::LabelText);
    Text(heading, Name().c_str(), textLeft);
    FontSize(size);
    FontStyle(0);
    PaintRect.Top += headingHeight;
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
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}
