#include "foundations/text/utfConvert.h"
#include "platform/win32/screen/windowSystem.h"
#include "platform/win32/text.h"

#include <cstdio>
#include <cstring>

// Texts that leave the program: the clipboard and the system's own box.

namespace {

// The clipboard, open while this lives. Another program may have it for a moment.
class openClipboard
{
public:
    explicit openClipboard(windowId window) : IsOpen(Open(systemWindow(window))) {}
    ~openClipboard()
    {
        if (IsOpen)
            CloseClipboard();
    }
    openClipboard(const openClipboard&) = delete;
    openClipboard& operator=(const openClipboard&) = delete;

    explicit operator bool() const { return IsOpen; }

private:
    static bool Open(HWND window)
    {
        constexpr int Tries = 50;
        constexpr DWORD PauseMs = 20;
        for (int attempt = 0; attempt < Tries; ++attempt) {
            if (OpenClipboard(window) != FALSE)
                return true;
            if (GetLastError() == ERROR_INVALID_WINDOW_HANDLE)
                return false;
            Sleep(PauseMs);
        }
        return false;
    }

    const bool IsOpen;
};

// Memory in the way in which the clipboard has it, and what it holds as text.
std::string textIn(HGLOBAL memory)
{
    std::string text;
    const auto* units = static_cast<const char16_t*>(GlobalLock(memory));
    if (units) {
        utfAppend8From16(text, units, GlobalSize(memory) / sizeof(char16_t));
        GlobalUnlock(memory);
    }
    return text;
}

HGLOBAL memoryOf(const std::u16string& units)
{
    const size_t size = (units.size() + 1) * sizeof(char16_t);
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    void* target = memory ? GlobalLock(memory) : nullptr;
    if (!target) {
        GlobalFree(memory);
        return nullptr;
    }
    std::memcpy(target, units.c_str(), size);
    GlobalUnlock(memory);
    return memory;
}

}  // namespace

std::optional<std::string> systemWindows::ClipboardText(windowId window)
{
    if (IsClipboardFormatAvailable(CF_UNICODETEXT) == FALSE)
        return std::nullopt;
    const openClipboard clipboard(window);
    HANDLE memory = clipboard ? GetClipboardData(CF_UNICODETEXT) : nullptr;
    if (!memory)
        return std::nullopt;
    return textIn(memory);
}

bool systemWindows::SetClipboardText(windowId window, std::string_view text)
{
    const openClipboard clipboard(window);
    if (!clipboard || EmptyClipboard() == FALSE)
        return false;
    HGLOBAL memory = memoryOf(systemText(text));
    if (!memory)
        return false;
    if (SetClipboardData(CF_UNICODETEXT, memory))
        return true;
    GlobalFree(memory);
    return false;
}

void systemWindows::Alert(const std::string& title, const std::string& text)
{
    const bool wasRead = MessageBoxW(nullptr, textUnits(systemText(text)), textUnits(systemText(title)),
                                     MB_OK | MB_ICONEXCLAMATION) != 0;
    if (!wasRead)
        std::fprintf(stderr, "%s\n%s\n", title.c_str(), text.c_str());
}
