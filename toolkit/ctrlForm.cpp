#include "toolkit/ctrlForm.h"

namespace {

constexpr uint32_t ownSize = 100;
constexpr uint8_t ownFrame = frameClosable | frameMaximise | frameMaximiseToo | frameMinimise | frameSpare;

}  // namespace

ctrlForm::ctrlForm(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t flags)
    : ctrlWindow(parent, x, y, width, height, flags | ctrlFramed)
{
    FrameStyle(ownFrame, 0);
}

ctrlForm::ctrlForm(ctrlWindow* parent, uint32_t flags) : ctrlForm(parent, 0, 0, ownSize, ownSize, flags) {}

ctrlForm::~ctrlForm()
{
    Icon(0);
}

void ctrlForm::Icon(iconId icon)
{
    if (Icon_ == icon)
        return;
    Icon_ = icon;
    if (Handle())
        Toolkit().Windows().SetIcon(Handle(), icon);
}

int64_t ctrlForm::WindowProc(uint32_t message, uint64_t first, int64_t second)
{
    if (message == msgGetIcon && Icon_)
        return static_cast<int64_t>(Icon_);
    return ctrlWindow::WindowProc(message, first, second);
}

void ctrlForm::Enable(bool on)
{
    if (!on) {
        ++Disabled;
        ctrlWindow::Enable(false);
        return;
    }
    uint32_t count = Disabled.load();
    while (count > 0 && !Disabled.compare_exchange_weak(count, count - 1)) {
    }
    if (count <= 1)
        ctrlWindow::Enable(true);
}

bool ctrlForm::IsOutOfReach() const
{
    if (Handle()) {
        windowArea area;
        return !Toolkit().Windows().WorkAreaOf(Handle(), area);
    }
    if (!Parent())
        return false;
    const rect own{X(), Y(), X() + static_cast<int32_t>(Width()), Y() + static_cast<int32_t>(Height())};
    const rect there{0, 0, static_cast<int32_t>(Parent()->Width()), static_cast<int32_t>(Parent()->Height())};
    return !rectMeet(own, there);
}

void ctrlForm::Show()
{
    const ctrlLife life(this);
    if (IsOutOfReach())
        Centre();
    if (life)
        ctrlWindow::Show();
}
