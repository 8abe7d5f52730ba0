// Where the main form's controls stand, and how large it may be.
#include "forms/gnssComm_UI.h"

#include "forms/gnssUI.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlComboBox.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlLabel.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t gap = 4;       // from the edges, and between neighbours
constexpr int32_t nearGap = 1;   // from a label to what it names
constexpr int32_t wideGap = 18;  // before another subject
constexpr int32_t addressGap = 5;
constexpr int32_t buttonMargin = 8;
constexpr int32_t separatorHeight = 2;
constexpr int32_t pageGap = 6;  // from the separator's top

int32_t scaled(float size)
{
    return static_cast<int32_t>(std::ceil(size * Toolkit().Scale));
}

int32_t naturalWidth(const ctrlWindow* control)
{
    return static_cast<int32_t>(control->PreferredWidth());
}

void put(ctrlWindow* control, int32_t x, int32_t y, int32_t width, int32_t height)
{
    control->Move(x, y, static_cast<uint32_t>(std::max(width, 1)),
                  static_cast<uint32_t>(std::max(height, 1)));
}

}  // namespace

struct gnssComm::UI::place {
    int32_t Top;
    int32_t Height;
    int32_t Width;  // of the form
};

void gnssComm::UI::PlaceHead(const place& here)
{
    int32_t right = here.Width - gap;
    if (HelpButton) {
        put(HelpButton, right - here.Height, here.Top, here.Height, here.Height);
        right -= here.Height + gap;
    }
    if (AboutButton) {
        const int32_t width = naturalWidth(AboutButton) + buttonMargin;
        put(AboutButton, right - width, here.Top, width, here.Height);
        right -= width + gap;
    }
    int32_t x = gap;
    const auto next = [&x, &here](ctrlWindow* control, int32_t behind) {
        const int32_t width = naturalWidth(control);
        put(control, x, here.Top, width, here.Height);
        x += width + behind;
    };
    next(RoleLabel, nearGap);
    next(RoleBox, wideGap);
    next(ProtocolCaption, nearGap);
    put(ProtocolLabel, x, here.Top, right - x, here.Height);
}

void gnssComm::UI::PlaceSerial(const place& here)
{
    constexpr float editWidth = 40;
    int32_t x = gap;
    const auto next = [&x, &here](ctrlWindow* control, int32_t width, int32_t behind) {
        put(control, x, here.Top, width, here.Height);
        x += width + behind;
    };
    next(PortBox, naturalWidth(PortBox), gap);
    next(ServerButton, naturalWidth(ServerButton) + buttonMargin, gap);
    next(ServerPortLabel, naturalWidth(ServerPortLabel), nearGap);
    next(ServerPortEdit, scaled(editWidth), gap);
    put(ClientsLabel, x, here.Top, here.Width - gap - x, here.Height);
}

void gnssComm::UI::PlaceNetwork(const place& here)
{
    constexpr float buttonWidth = 64;
    put(AddressLabel, gap, here.Top, naturalWidth(AddressLabel), here.Height);
    const int32_t width = scaled(buttonWidth);
    const int32_t button = here.Width - gap - width;
    put(ConnectButton, button, here.Top, width, here.Height);
    const int32_t left = gap + naturalWidth(AddressLabel) + addressGap;
    if (button - gap - left >= 1)
        put(AddressEdit, left, here.Top, button - gap - left, here.Height);
}

void gnssComm::UI::Layout()
{
    constexpr float rowHeight = 18;
    constexpr float statusHeight = 14;
    const int32_t height = scaled(rowHeight);
    const auto width = static_cast<int32_t>(Width());
    PlaceHead({gap, height, width});
    const place second{height + 2 * gap, height, width};
    int32_t status = second.Top;
    if (PortBox->HasState(stateVisible))
        PlaceSerial(second);
    else if (AddressLabel->HasState(stateVisible))
        PlaceNetwork(second);
    if (PortBox->HasState(stateVisible) || AddressLabel->HasState(stateVisible))
        status += height + gap;
    put(StatusLabel, gap, status, width - 2 * gap, scaled(statusHeight));
    const int32_t separator = status + scaled(statusHeight) + gap;
    put(Separator, 0, separator, width, separatorHeight);
    const int32_t pageTop = separator + pageGap;
    if (Page) {
        Page->Layout();
        put(Page, gap, pageTop, width - 2 * gap, static_cast<int32_t>(Height()) - gap - pageTop);
        put(ResetButton, 0, static_cast<int32_t>(Page->Height()) - height,
            naturalWidth(ResetButton) + buttonMargin, height);
    }
    Limit(Page ? pageTop : separator);
}

// A form is as wide as its page asks for, and as high as its user likes.
void gnssComm::UI::Limit(int32_t top)
{
    constexpr float least = 330;
    int32_t width = scaled(least);
    for (const ctrlButton* one : {HelpButton, AboutButton}) {
        if (one)
            width += gap + static_cast<int32_t>(one->Width());
    }
    int32_t height = top;
    if (Page) {
        width = std::max(width, static_cast<int32_t>(Page->LeastWidth()) + 2 * gap);
        height += static_cast<int32_t>(Page->LeastHeight()) + gap;
    }
    const uint32_t formerWidth = Width();
    const uint32_t formerHeight = Height();
    if (HadPage && !Page)
        PageHeight = formerHeight;
    const bool gotPage = Page && !HadPage;
    HadPage = Page != nullptr;
    WidthRange(static_cast<uint32_t>(width), static_cast<uint32_t>(width));
    HeightRange(static_cast<uint32_t>(height), Page ? 0U : static_cast<uint32_t>(height));
    if (gotPage && PageHeight > Height())
        Move(X(), Y(), Width(), PageHeight);
    if (Width() > formerWidth || Height() > formerHeight)
        BackInSight();
}

// A page that comes must not push the form over the edge of its screen. Where the user has put it is his.
void gnssComm::UI::BackInSight()
{
    windowArea work;
    if (!Handle() || !Toolkit().Windows().WorkAreaOf(Handle(), work))
        return;
    const uint32_t height = std::min(Height(), static_cast<uint32_t>(std::max(work.Bottom - work.Top, 1)));
    const int32_t right = work.Right - static_cast<int32_t>(Width());
    const int32_t bottom = work.Bottom - static_cast<int32_t>(height);
    Move(std::max(std::min(X(), right), work.Left), std::max(std::min(Y(), bottom), work.Top), Width(),
         height);
}
