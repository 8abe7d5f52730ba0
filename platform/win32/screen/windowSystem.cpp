#include "platform/win32/screen/windowSystem.h"

#include "foundations/text/utfConvert.h"
#include "platform/win32/text.h"

#include <cstddef>
#include <vector>

// The class of our windows, their life, and what they are asked about themselves.

// Messages that point at a structure are handed on as they are.
static_assert(sizeof(windowPlacing) == sizeof(WINDOWPOS));
static_assert(offsetof(windowPlacing, After) == offsetof(WINDOWPOS, hwndInsertAfter));
static_assert(offsetof(windowPlacing, X) == offsetof(WINDOWPOS, x));
static_assert(offsetof(windowPlacing, Height) == offsetof(WINDOWPOS, cy));
static_assert(offsetof(windowPlacing, Flags) == offsetof(WINDOWPOS, flags));
static_assert(sizeof(windowEdges) == sizeof(RECT) && offsetof(windowEdges, Bottom) == offsetof(RECT, bottom));
static_assert(sizeof(windowExtent) == sizeof(SIZE) && offsetof(windowExtent, Height) == offsetof(SIZE, cy));
static_assert(sizeof(windowSizeLimits) == sizeof(MINMAXINFO));
static_assert(offsetof(windowSizeLimits, MaximisedSize) == offsetof(MINMAXINFO, ptMaxSize));
static_assert(offsetof(windowSizeLimits, MaximumTrack) == offsetof(MINMAXINFO, ptMaxTrackSize));

static_assert(msgPaint == WM_PAINT && msgSizing == WM_SIZING && msgApp == WM_APP);
static_assert(placeKeepSize == SWP_NOSIZE && placeKeepPosition == SWP_NOMOVE);
static_assert(placeKeepOrder == SWP_NOZORDER && placeNoActivate == SWP_NOACTIVATE);
static_assert(placeFrameChanged == SWP_FRAMECHANGED);
static_assert(stylePopup == WS_POPUP && styleSystemMenu == WS_SYSMENU && styleResizable == WS_THICKFRAME);

namespace {

// The receiver in the extra bytes of a window.
constexpr int receiverAt = 0;

windowReceiver receiverOf(HWND window)
{
    return reinterpret_cast<windowReceiver>(GetWindowLongPtrW(window, receiverAt));
}

LRESULT CALLBACK procedure(HWND window, UINT number, WPARAM first, LPARAM second)
{
    if (number == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(second);
        SetWindowLongPtrW(window, receiverAt, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    const windowReceiver receiver = receiverOf(window);
    // Helpers of disabled people ask for objects at any time; the system has answers of its own.
    if (!receiver || number == WM_GETOBJECT)
        return DefWindowProcW(window, number, first, second);
    const DWORD mouse = GetMessagePos();
    return receiver({.Window = systemWindowId(window),
                     .Number = number,
                     .First = first,
                     .Second = second,
                     .Time = static_cast<uint32_t>(GetMessageTime()),
                     .ScreenX = windowPointX(mouse),
                     .ScreenY = windowPointY(mouse)});
}

ATOM registerClass(const std::u16string& name, HINSTANCE instance)
{
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.style = CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS;
    description.lpfnWndProc = procedure;
    description.cbWndExtra = sizeof(windowReceiver);
    description.hInstance = instance;
    description.lpszClassName = textUnits(name);
    return RegisterClassExW(&description);
}

// While it lives, new windows are aware of the scale of the monitor that they are on.
class perMonitorScale
{
public:
    explicit perMonitorScale(bool wanted) : Before(wanted ? SetThreadDpiAwarenessContext(Best()) : nullptr) {}
    ~perMonitorScale()
    {
        if (Before)
            SetThreadDpiAwarenessContext(Before);
    }
    perMonitorScale(const perMonitorScale&) = delete;
    perMonitorScale& operator=(const perMonitorScale&) = delete;

private:
    static DPI_AWARENESS_CONTEXT Best()
    {
        // The second version scales frames too; the first releases of Windows 10 lack it.
        const bool knowsSecond =
            IsValidDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2) != FALSE;
        return knowsSecond ? DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2
                           : DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE;
    }

    const DPI_AWARENESS_CONTEXT Before;
};

BOOL CALLBACK collect(HWND window, LPARAM found)
{
    reinterpret_cast<std::vector<HWND>*>(found)->push_back(window);
    return TRUE;
}

}  // namespace

std::u16string systemText(std::string_view text)
{
    std::u16string units;
    utfAppend16From8(units, text.data(), text.size());
    return units;
}

systemWindows::systemWindows(std::string_view className, windowReceiver receiver)
    : ClassName(systemText(className)),
      Receiver(receiver),
      Instance(GetModuleHandleW(nullptr)),
      Class(registerClass(ClassName, Instance))
{}

systemWindows::~systemWindows()
{
    std::vector<HWND> windows;
    EnumThreadWindows(GetCurrentThreadId(), collect, reinterpret_cast<LPARAM>(&windows));
    std::erase_if(windows, [&](HWND window) { return GetClassLongPtrW(window, GCW_ATOM) != Class; });
    for (HWND window : windows)
        SetWindowLongPtrW(window, receiverAt, 0);
    for (HWND window : windows)
        DestroyWindow(window);
    UnregisterClassW(textUnits(ClassName), Instance);
}

windowId systemWindows::Create(const windowCreate& create, uint32_t& error)
{
    const perMonitorScale scale(create.PerMonitor);
    HWND window =
        CreateWindowExW(create.StyleExtended, textUnits(ClassName), L"Untitled", create.Style, 0, 0, 0, 0,
                        systemWindow(create.Owner), nullptr, Instance, reinterpret_cast<void*>(Receiver));
    error = window ? 0 : GetLastError();
    return systemWindowId(window);
}

void systemWindows::Destroy(windowId window)
{
    DestroyWindow(systemWindow(window));
}

void* systemWindows::Object(windowId window)
{
    return reinterpret_cast<void*>(GetWindowLongPtrW(systemWindow(window), GWLP_USERDATA));
}

void systemWindows::SetObject(windowId window, void* object)
{
    SetWindowLongPtrW(systemWindow(window), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(object));
}

uint32_t systemWindows::Style(windowId window)
{
    return static_cast<uint32_t>(GetWindowLongPtrW(systemWindow(window), GWL_STYLE));
}

void systemWindows::SetStyle(windowId window, uint32_t style)
{
    SetWindowLongPtrW(systemWindow(window), GWL_STYLE, style);
}

void systemWindows::SetSizeRange(windowId, const windowExtent&, const windowExtent&)
{
    // The system asks by msgSizeLimits and msgSizing.
}

void systemWindows::SetTitle(windowId window, std::string_view title)
{
    SetWindowTextW(systemWindow(window), textUnits(systemText(title)));
}

uint32_t systemWindows::DPI(windowId window)
{
    const DPI_AWARENESS_CONTEXT context = GetWindowDpiAwarenessContext(systemWindow(window));
    const bool isPerMonitor = GetAwarenessFromDpiAwarenessContext(context) == DPI_AWARENESS_PER_MONITOR_AWARE;
    const UINT dpi = isPerMonitor ? GetDpiForWindow(systemWindow(window)) : 0;
    return dpi != 0 ? dpi : USER_DEFAULT_SCREEN_DPI;
}

std::unique_ptr<windowSystem> windowSystemMake(std::string_view className, windowReceiver receiver)
{
    return std::make_unique<systemWindows>(className, receiver);
}
