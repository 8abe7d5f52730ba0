// Text, whose lines are placed as the other systems place them.
#pragma once

#include "platform/linux/screen/drawFonts.h"

#include <memory>
#include <string>

class pangoText : public drawTextLayout
{
public:
    pangoText(std::string_view text, const pangoFormat& format, float width, float height);

    void SetAlign(drawAlign horizontal, drawAlign vertical) override;
    void SetNoWrap() override;
    void SetTrimming(char delimiter) override;
    drawTextSize Size() const override;

    void Draw(cairo_t* context, drawPoint origin) const;  // in the context's source

    // What drawing it at 0, 0 can reach.
    drawRect Reach() const;

private:
    void Arrange() const;
    std::shared_ptr<const textLines> Shape() const;
    void Trim(PangoLayout* layout) const;
    std::string Key() const;
    double LineLeft(const textLine& one) const;
    double TextTop() const;

    pangoFormat Format;
    std::string Text;
    float Width;
    float Height;
    drawAlign Horizontal = drawAlign::Near;
    drawAlign Vertical = drawAlign::Near;
    bool Wraps = true;
    bool Trims = false;
    char Delimiter = 0;

    mutable std::shared_ptr<const textLines> Arranged;  // null until it is wanted
};
