// A form of sixty labels, as the program's page is: few of them change at a time.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <cstdint>
#include <vector>

class sceneLabel final : public ctrlWindow
{
public:
    sceneLabel(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height);
    void Paint() override;

    int64_t LastPaintNs = 0;  // of the steady clock
};

class sceneForm final : public ctrlWindow
{
public:
    sceneForm();

    // Gives new texts to three labels, others each time.
    void Change(unsigned step);
    void MouseEvent(MouseEv event, unsigned keys, int delta) override;

    std::vector<sceneLabel*> Labels;
    std::vector<int64_t> Moves;  // when the mouse's arrival at each x was told, or 0

private:
    unsigned Next = 0;
};
