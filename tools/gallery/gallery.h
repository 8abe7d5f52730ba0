// The sheets of the gallery: everything that the toolkit can show, on one page, for people and for tests.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <cstdint>
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

// Says what happened, on standard output, where tests read it.
void galleryTell(const std::string& line);

ctrlWindow* galleryTexts(ctrlWindow* parent, int32_t x, int32_t y);
ctrlWindow* galleryShapes(ctrlWindow* parent, int32_t x, int32_t y);
ctrlWindow* galleryImages(ctrlWindow* parent, int32_t x, int32_t y);
ctrlWindow* galleryTree(ctrlWindow* parent, int32_t x, int32_t y);
ctrlWindow* galleryInput(ctrlWindow* parent, int32_t x, int32_t y);
void galleryControls(ctrlWindow* parent);
ctrlWindow* galleryWindows(ctrlWindow* parent, int32_t x, int32_t y);
