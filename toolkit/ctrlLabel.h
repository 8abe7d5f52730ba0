// Text that stands still, on the ground of its parent.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <cstdint>
#include <string>

// Style bits of labels.
enum : uint32_t {
    styleLabelWrap = 128,  // breaks its text between words
};

// Colours of labels that are the theme's; the default is that of labels.
constexpr colour labelFace = -4;       // text on faces
constexpr colour labelHighlight = -5;  // as labels are by default
constexpr colour labelSecond = -6;

class ctrlLabel : public ctrlWindow
{
public:
    // 10 by 10. `textFlags` are those of Canvas::Text.
    ctrlLabel(ctrlWindow* parent, const std::string& text, unsigned textFlags, uint32_t flags);

    void Paint() override;

    void TextColour(colour value);

private:
    std::string Wrapped(const std::string& text);
    uint32_t WidthOf(const std::string& text, size_t from, size_t to);

    unsigned TextFlags;
    colour TextColour_ = colourDefault;
};
