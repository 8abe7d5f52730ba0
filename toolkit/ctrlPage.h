// Pages behind tabs, of which one is shown.
//
// All on the interface thread.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class ctrlButton;

// Style bits of pages.
enum : uint32_t {
    stylePageSelect = 0x100,  // a press on a tab shows its page
    stylePageClose = 0x200,   // each tab has a button that closes its page
};

class ctrlPage : public ctrlWindow
{
public:
    static constexpr uint64_t None = ~uint64_t{0};

    // With as many blank pages.
    ctrlPage(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint64_t pageCount,
             uint32_t style);

    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    void Paint() override;
    void Layout() override;
    void Resize(uint32_t width, uint32_t height) override;

    // Inserts a child control of this one as a page, or a plain new one for null. The name is that of its
    // tab. The first page that comes is shown.
    void AddPage(uint64_t index, ctrlWindow* window, const std::string& name);

    // Destroys a page. When it is the one that is shown, its neighbour is shown then.
    void RemovePage(uint64_t index);

    // None shows no page. Notify(notifyPageChanged) follows a change.
    void SetCurrent(uint64_t index);
    void CloseButtonsUpdate();

    ctrlWindow* Page(uint64_t index) const;  // null beyond the last

    // The user closes a page. Without a handler it is removed.
    std::function<void(uint64_t index)> OnClose;

    std::vector<ctrlButton*> CloseButtons;
    std::vector<rect> TabBoxes;  // of the last paint
    uint64_t Current = None;
    uint64_t PageCount = 0;
    colour TabColour = theme::Face;
    colour ActiveColour = colourDefault;

private:
    uint32_t StripHeight();
    void PlacePage(ctrlWindow* page);
    void PlaceCloseButtons();
    void CloseClicked(const ctrlButton* button);
    void CountPages();
    void MeasureTabs();
    void PaintTab(uint64_t index, const rect& box);
    bool HasCloseButtons() const { return HasStyle(stylePageClose); }
};
