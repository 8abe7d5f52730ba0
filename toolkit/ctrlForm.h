// The window that every dialog and the main window are: framed, with a close box, a maximise and a minimise
// box.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <atomic>
#include <cstdint>

class ctrlForm : public ctrlWindow
{
public:
    ctrlForm(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t flags);
    ctrlForm(ctrlWindow* parent, uint32_t flags);  // 100 by 100 at the origin
    ~ctrlForm() override;

    int64_t WindowProc(uint32_t message, uint64_t first, int64_t second) override;

    // Counts: what was disabled twice is enabled by the second call that enables.
    void Enable(bool on) override;

    // A form that could not be seen where it stands is centred first.
    void Show() override;

    // The picture of the form in lists of windows, 0 for none. It belongs to whoever made it.
    void Icon(iconId icon);
    iconId Icon() const { return Icon_; }

private:
    bool IsOutOfReach() const;

    std::atomic<uint32_t> Disabled{0};
    iconId Icon_ = 0;
};
