// The base of edits with a value that can be stepped: by arrows at the right end, by a vertical drag, and by
// the wheel over a digit.
#pragma once

#include "toolkit/ctrlEdit.h"

// Style bits of edits that step.
enum : uint32_t {
    styleSpinDrop = 0x200,     // an arrow that opens a list
    styleSpinArrows = 0x2000,  // an arrow up and an arrow down
};

// State bits of edits that step.
enum : uint32_t {
    stateSpinLower = 0x400000,  // the pointer is on this arrow
    stateSpinDrop = 0x800000,
    stateSpinUpper = 0x1000000,
    stateSpinDrag = 0x2000000,  // the pointer was dragged out above or below
};

class ctrlEdit_Spin : public ctrlEdit_Base
{
public:
    ctrlEdit_Spin(ctrlWindow* parent, uint32_t width, uint32_t height, uint32_t flags);

    void GestureEnd() override;
    void GesturePan(bool first, uint32_t id) override;
    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    void Paint() override;

    // Each may run OnChange, which may delete the edit.
    virtual void DoOnDropDown() {}
    virtual void DoOnMouseWheelSteps(int64_t steps) = 0;  // of the digit at the caret
    virtual void DoOnSpinSteps(int64_t steps) = 0;

    uint32_t DragPixels = 1;  // of a vertical drag for a step; 0 counts as 1
    uint32_t DragFactor = 1;  // steps for each of these

protected:
    // As in the base, behind the steps of the wheel, which need the text as it was drawn last. Behind it this
    // edit may be gone.
    void TextDraw(const std::string& text);

    bool IsShortened = false;  // the text loses its first digit when the value falls below it

private:
    uint32_t ArrowAt(int32_t x, int32_t y) const;

    bool IsHot() const { return HasState(stateSpinDrop | stateSpinUpper | stateSpinLower); }
    void MoveHot();
    void PressArrow();
    void Wheel(int delta);
    void WheelSteps(int64_t steps);
    void Drag(int32_t oldY);
    void DragEnd();
    void ArrowColour(uint32_t hot);
    void SpinArrows();

    int32_t Rest = 0;  // of the wheel's turns or of the drag's pixels, not used yet
};
