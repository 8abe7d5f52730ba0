// The sheets of the gallery: everything that the toolkit can show, on one page, for people and for tests.
#pragma once

#include "toolkit/ctrlLabel.h"
#include "toolkit/ctrlWindow.h"

#include <cstdint>
#include <functional>
#include <string>

// A sheet with a heading, on which others stand.
class gallerySheet : public ctrlWindow
{
public:
    gallerySheet(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                 const char* heading);
    void Paint() override;

protected:
    // Draws into what the heading leaves of PaintRect.
    virtual void PaintSheet() {}
};

// A plain area that shows its name in the middle.
class galleryTile : public ctrlWindow
{
public:
    galleryTile(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, colour back,
                const char* name);
    void Paint() override;
};

// Design pixels on the screen that the sheets are made for; 1 to 1 until that is told.
void galleryScaleFor(const ctrlWindow& form);
int32_t galleryScaled(int32_t pixels);

// Shows a control at a place in design pixels.
template <class control>
control* galleryPlaced(control* one, int32_t x, int32_t y, int32_t width, int32_t height)
{
    one->Move(galleryScaled(x), galleryScaled(y), static_cast<uint32_t>(galleryScaled(width)),
              static_cast<uint32_t>(galleryScaled(height)));
    one->Show();
    return one;
}

ctrlLabel* galleryLabel(ctrlWindow* parent, const char* text, int32_t x, int32_t y, int32_t width,
                        unsigned flags = textLeft);

// Says what happened: on standard output, unless something else listens.
void galleryTell(const std::string& line);
void galleryListener(std::function<void(const std::string& line)> listener);

// Whether nothing may move by itself.
bool galleryStill();
void galleryStill(bool still);

ctrlWindow* galleryTexts(ctrlWindow* parent, int32_t x, int32_t y);
ctrlWindow* galleryShapes(ctrlWindow* parent, int32_t x, int32_t y);
ctrlWindow* galleryImages(ctrlWindow* parent, int32_t x, int32_t y);
ctrlWindow* galleryTree(ctrlWindow* parent, int32_t x, int32_t y);
ctrlWindow* galleryInput(ctrlWindow* parent, int32_t x, int32_t y);
void galleryControls(ctrlWindow* parent);
void galleryEdits(ctrlWindow* parent);
void galleryGraphs(ctrlWindow* parent);
ctrlWindow* galleryWindows(ctrlWindow* parent, int32_t x, int32_t y);
