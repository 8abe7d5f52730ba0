// Text by DirectWrite.
#pragma once

#include "platform/win32/screen/drawTools.h"

class directFormat : public drawTextFormat
{
public:
    explicit directFormat(comPointer<IDWriteTextFormat> format) : Format(std::move(format)) {}
    const comPointer<IDWriteTextFormat> Format;
};

class directText : public drawTextLayout
{
public:
    directText(const drawTools& tools, comPointer<IDWriteTextLayout> layout, bool isEmpty)
        : Text(tools.Text), Layout(std::move(layout)), IsEmpty(isEmpty)
    {}

    void SetAlign(drawAlign horizontal, drawAlign vertical) override;
    void SetNoWrap() override;
    void SetTrimming(char delimiter) override;
    drawTextSize Size() const override;

    IDWriteTextLayout* Get() const { return Layout.Get(); }

private:
    comPointer<IDWriteFactory> Text;
    comPointer<IDWriteTextLayout> Layout;
    bool IsEmpty;
};

std::shared_ptr<drawTextFormat> drawMakeFormat(const drawTools& tools, std::string_view font, bool bold,
                                               bool italic, float size);
std::unique_ptr<drawTextLayout> drawMakeLayout(const drawTools& tools, std::string_view text,
                                               const directFormat& format, float width, float height);
