// A value on a track: a slider, and the scroll bar of lists, grids and pages.
//
// All on the interface thread. Positions on the track count from the left, or in a vertical one from the
// bottom; who wants the top first counts in negative numbers.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <cstdint>
#include <functional>

class ctrlButton;

// Style bits of sliders.
enum : uint32_t {
    styleSliderArrows = 0x100,
    styleSliderHorizontal = 0x200,
};

// State bits of sliders.
enum : uint32_t {
    stateSliderPaging = 0x8000,    // a press beside the thumb repeats
    stateSliderDragged = 0x10000,  // the thumb is held
    stateSliderHot = 0x20000,      // the pointer is over the thumb
};

class ctrlSlider : public ctrlWindow
{
public:
    // `style` is that of sliders; it stays.
    ctrlSlider(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t style);
    ~ctrlSlider() override;

    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    void Paint() override;

    // In either order; the value is moved inside. What is no number is ignored.
    void SetRange(double a, double b);
    void SetValue(double value);  // kept in the range

    // Cut so that it and three borders fit across; 0 draws no groove.
    void SetTrackWidth(uint32_t pixels);

    ctrlButton* ButtonLow = nullptr;   // towards the minimum; with arrows
    ctrlButton* ButtonHigh = nullptr;  // towards the maximum

    double Page = 1.0;  // of a press beside the thumb
    double Maximum = 100.0;
    double Minimum = 0.0;
    double Value = 50.0;
    double Step = 1.0;  // of an arrow, and of a notch of the wheel

    std::function<void()> OnChange;  // the user has changed the value
    colour ThumbColour = colourDefault;
    float Ratio = 0.1F;  // the thumb's length, of the usable track
    uint32_t TrackWidth = 4;

private:
    // Along the track, in pixels from the left or the top of the control.
    struct span {
        int32_t Start = 0, End = 0;
        int32_t Length() const { return End - Start; }
    };

    bool IsHorizontal() const { return HasStyle(styleSliderHorizontal); }
    int32_t Pointer() const;  // along the track
    bool PointerOnThumb() const;
    span Thumb() const;
    rect ThumbBox() const;
    rect AlongTrack(const span& part, int32_t across, int32_t acrossEnd) const;

    void MakeArrow(ctrlButton*& button, double direction);
    void PlaceArrows();
    void PaintGroove();
    void PaintThumb();

    void Change(double value);
    void Changed();
    void Hover();
    void Drag();
    void PressAt();
    void PageStep();
    void Release();
    void Turn(int delta);

    span Track;              // of the last paint
    int32_t GrabOffset = 0;  // from the thumb's start to the pointer that holds it
    int WheelRest = 0;
    bool OwnsTimer = false;
};
