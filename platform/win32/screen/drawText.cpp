#include "platform/win32/screen/drawText.h"

#include <limits>
#include <string>

namespace {

// Replacement characters stand for bytes that are no text, and for NULs.
std::wstring wideText(std::string_view text)
{
    if (text.empty() || text.size() > static_cast<size_t>(std::numeric_limits<int>::max()))
        return {};
    const int bytes = static_cast<int>(text.size());
    const int units = MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0);
    std::wstring wide(static_cast<size_t>(std::max(units, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.data(), units);
    std::ranges::replace(wide, L'\0', L'\uFFFD');
    return wide;
}

constexpr wchar_t OwnFont[] = L"Segoe UI";

bool hasFont(const drawTools& tools, const std::wstring& font)
{
    UINT32 index = 0;
    BOOL exists = FALSE;
    return SUCCEEDED(tools.Fonts->FindFamilyName(font.c_str(), &index, &exists)) && exists != FALSE;
}

}  // namespace

std::shared_ptr<drawTextFormat> drawMakeFormat(const drawTools& tools, std::string_view font, bool bold,
                                               bool italic, float size)
{
    if (!(size > 0) || !std::isfinite(size))
        return nullptr;
    std::wstring name = wideText(font);
    if (!hasFont(tools, name))
        name = OwnFont;
    comPointer<IDWriteTextFormat> format;
    const HRESULT result = tools.Text->CreateTextFormat(
        name.c_str(), nullptr, bold ? DWRITE_FONT_WEIGHT_BOLD : DWRITE_FONT_WEIGHT_NORMAL,
        italic ? DWRITE_FONT_STYLE_ITALIC : DWRITE_FONT_STYLE_NORMAL, DWRITE_FONT_STRETCH_NORMAL, size, L"",
        format.Put());
    return SUCCEEDED(result) && format ? std::make_shared<directFormat>(std::move(format)) : nullptr;
}

std::unique_ptr<drawTextLayout> drawMakeLayout(const drawTools& tools, std::string_view text,
                                               const directFormat& format, float width, float height)
{
    if (!(width >= 0 && height >= 0))
        return nullptr;
    const std::wstring wide = wideText(text);
    comPointer<IDWriteTextLayout> layout;
    const HRESULT result = tools.Text->CreateTextLayout(wide.c_str(), static_cast<UINT32>(wide.size()),
                                                        format.Format.Get(), width, height, layout.Put());
    if (FAILED(result) || !layout)
        return nullptr;
    return std::make_unique<directText>(tools, std::move(layout), wide.empty());
}

void directText::SetAlign(drawAlign horizontal, drawAlign vertical)
{
    constexpr DWRITE_TEXT_ALIGNMENT Horizontals[] = {
        DWRITE_TEXT_ALIGNMENT_LEADING, DWRITE_TEXT_ALIGNMENT_TRAILING, DWRITE_TEXT_ALIGNMENT_CENTER};
    constexpr DWRITE_PARAGRAPH_ALIGNMENT Verticals[] = {
        DWRITE_PARAGRAPH_ALIGNMENT_NEAR, DWRITE_PARAGRAPH_ALIGNMENT_FAR, DWRITE_PARAGRAPH_ALIGNMENT_CENTER};
    Layout->SetTextAlignment(Horizontals[static_cast<uint8_t>(horizontal)]);
    Layout->SetParagraphAlignment(Verticals[static_cast<uint8_t>(vertical)]);
}

void directText::SetNoWrap()
{
    Layout->SetWordWrapping(DWRITE_WORD_WRAPPING_NO_WRAP);
}

void directText::SetTrimming(char delimiter)
{
    comPointer<IDWriteInlineObject> sign;
    if (FAILED(Text->CreateEllipsisTrimmingSign(Layout.Get(), sign.Put())))
        return;
    const DWRITE_TRIMMING trimming = {DWRITE_TRIMMING_GRANULARITY_CHARACTER,
                                      static_cast<unsigned char>(delimiter), 1};
    Layout->SetTrimming(&trimming, sign.Get());
}

drawTextSize directText::Size() const
{
    DWRITE_TEXT_METRICS metrics = {};
    if (IsEmpty || FAILED(Layout->GetMetrics(&metrics)))
        return {};
    return {metrics.widthIncludingTrailingWhitespace, metrics.height};
}
