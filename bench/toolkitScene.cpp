#include "bench/toolkitScene.h"

#include "platform/clock.h"

#include <string>

namespace {

constexpr int32_t columns = 6;
constexpr int32_t rows = 10;
constexpr uint32_t labelWidth = 96;
constexpr uint32_t labelHeight = 24;
constexpr int32_t gap = 4;

constexpr uint32_t formWidth = columns * (labelWidth + gap) + gap;
constexpr uint32_t formHeight = rows * (labelHeight + gap) + gap;

}  // namespace

sceneLabel::sceneLabel(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height)
    : ctrlWindow(parent, x, y, width, height, 0)
{
    SetBackColour(theme::ListBackground);
    BorderStyle(ctrlBorder::Flat);
    Enable(false);  // the mouse belongs to the form
    Show();
}

void sceneLabel::Paint()
{
    ctrlWindow::Paint();
    Colour(theme::LabelText);
    Text(PaintRect, Name().c_str(), textRight | textTrim);
    LastPaintNs = clockSteadyNs();
}

sceneForm::sceneForm() : ctrlWindow(nullptr, 40, 40, formWidth, formHeight, ctrlFramed), Moves(formWidth)
{
    Caption("Load");
    for (int32_t row = 0; row < rows; ++row) {
        for (int32_t column = 0; column < columns; ++column) {
            const int32_t x = gap + column * (static_cast<int32_t>(labelWidth) + gap);
            const int32_t y = gap + row * (static_cast<int32_t>(labelHeight) + gap);
            Labels.push_back(new sceneLabel(this, x, y, labelWidth, labelHeight));
        }
    }
    Show();
}

void sceneForm::Change(unsigned step)
{
    constexpr unsigned changed = 3;
    for (unsigned i = 0; i < changed; ++i) {
        Labels[Next]->Caption(std::to_string(step) + "." + std::to_string(i) + " ns");
        Next = (Next + 1) % static_cast<unsigned>(Labels.size());
    }
}

void sceneForm::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    const auto x = static_cast<size_t>(Toolkit().MouseX);
    if (event == MouseEv::Move && x < Moves.size())
        Moves[x] = clockSteadyNs();
    ctrlWindow::MouseEvent(event, keys, delta);
}
