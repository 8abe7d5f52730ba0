#include "tests/platform/screen/drawContract.h"

#include <windows.h>

// Wine does what is asked without saying that it leaves these out.
const char* drawContractLacks(drawAbility ability)
{
    static const bool isWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    if (!isWine)
        return nullptr;
    switch (ability) {
    case drawAbility::EmptyClips:
        return "Wine clips to nothing in particular when clips do not meet";
    case drawAbility::ScreenPixels:
        return nullptr;
    case drawAbility::SourceEdges:
        return "Wine scales with what is beside the source";
    case drawAbility::SmoothEdges:
        return "Wine draws figures without smooth edges";
    case drawAbility::Dashes:
        return "Wine draws dashed lines solid";
    case drawAbility::PathTrimming:
        return "Wine trims at the end, whatever the delimiter";
    case drawAbility::WordCutting:
        return "Wine lets long words stand out of their box";
    }
    return nullptr;
}

std::optional<uint32_t> drawContractScreen(int32_t x, int32_t y)
{
    const HDC screen = GetDC(nullptr);
    const COLORREF colour = GetPixel(screen, x, y);
    ReleaseDC(nullptr, screen);
    if (colour == CLR_INVALID)
        return std::nullopt;
    return uint32_t{GetRValue(colour)} << 16 | uint32_t{GetGValue(colour)} << 8 | GetBValue(colour);
}
