#include "forms/uiAbout.h"

#include "platform/shell.h"
#include "resources/aboutPicture.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

constexpr uint32_t startWidth = 500;
constexpr uint32_t startHeight = 120;
constexpr int32_t imageBits = 32;
constexpr int32_t margin = 8;
constexpr int32_t gap = 4;  // between the rows of the column
constexpr int32_t buttonMargin = 8;
constexpr float rowHeight = 18;
constexpr colour titleColour = 0x2040FF;
constexpr float titleSize = 18;
constexpr float versionSize = 14;
constexpr unsigned labelText = textLeft | textRight | textTop;

std::string textOf(const char* text)
{
    return text ? text : "";
}

int32_t scaledRow()
{
    return static_cast<int32_t>(std::ceil(rowHeight * Toolkit().Scale));
}

// How wide an image is at this height.
int32_t widthAt(const pixmap& image, int32_t height)
{
    if (image.Height == 0 || height <= 0)
        return 0;
    return static_cast<int32_t>(int64_t{image.Width} * height / image.Height);
}

}  // namespace

uiAbout::uiAbout(ctrlWindow* parent, const char* name, const char* version, const char* linkText,
                 const char* link, const char* mailText, const char* note)
    : ctrlForm(parent, 0, 0, startWidth, startHeight, ctrlFloating | ctrlPerMonitor), Link(textOf(link))
{
    // What follows sends messages, behind which an owner that is to go would take this form with it.
    StateSet(stateInMessage);
    Caption("About");
    Centre();
    Image.Bits = imageBits;
    Image = aboutPicture;
    FrameStyle(0, frameMaximise | frameMaximiseToo | frameMinimise);
    Title = AddLabel(textOf(name), titleSize);
    Title->TextColour(titleColour);
    Version = AddLabel("Version " + textOf(version), versionSize);
    Version->TextColour(theme::LabelTextSecond);
    Note = AddLabel(textOf(note), canvasFontSize);
    LinkButton = AddButton(textOf(linkText));
    LinkButton->OnClick = [this] { Open(Link); };
    MailButton = AddButton(textOf(mailText));
    MailButton->OnClick = [this] { Open("mailto:" + MailButton->Name()); };
    StateClear(stateInMessage);
}

ctrlLabel* uiAbout::AddLabel(const std::string& text, float fontSize)
{
    auto* label = new ctrlLabel(this, text, labelText, ctrlMeasure);
    label->FontSize(fontSize);
    label->Show();
    return label;
}

ctrlButton* uiAbout::AddButton(const std::string& text)
{
    auto* button = new ctrlButton(this, text, ctrlMeasure);
    button->Show();
    return button;
}

// A user without a program for it sees that for himself.
void uiAbout::Open(const std::string& target)
{
    shellOpen(target);
    ModalResult(-1);
}

void uiAbout::SecondImage(const pixmap& image)
{
    Image2.Bits = imageBits;
    pixmap none;
    none.Bits = imageBits;
    Image2 = image.Width > 0 && image.Height > 0 ? image : none;
    InvalidateLayout();
}

void uiAbout::Paint()
{
    ctrlForm::Paint();
    const int32_t height = static_cast<int32_t>(Height()) - 2 * margin;
    int32_t x = margin;
    for (const pixmapDyn* image : {&Image, &Image2}) {
        const int32_t width = widthAt(*image, height);
        if (width > 0)
            PixmapDraw(*image, static_cast<float>(x), margin, static_cast<float>(width),
                       static_cast<float>(height), 0, 0, static_cast<float>(image->Width),
                       static_cast<float>(image->Height), true);
        x += width + margin;
    }
}

int32_t uiAbout::ColumnHeight() const
{
    constexpr int32_t gaps = 4 * gap;
    const uint32_t labels = Title->PreferredHeight() + Version->PreferredHeight() + Note->PreferredHeight();
    return static_cast<int32_t>(labels) + gaps + 2 * scaledRow();
}

int32_t uiAbout::ColumnLeft(int32_t height) const
{
    const int32_t second = widthAt(Image2, height);
    return widthAt(Image, height) + 2 * margin + (second > 0 ? margin + second : 0);
}

int32_t uiAbout::ColumnWidth() const
{
    uint32_t widest = 0;
    for (const ctrlWindow* control :
         std::initializer_list<const ctrlWindow*>{Title, Version, Note, LinkButton, MailButton})
        widest = std::max(widest, control->PreferredWidth());
    return static_cast<int32_t>(widest) + buttonMargin;
}

void uiAbout::Layout()
{
    const int32_t height = ColumnHeight();
    const int32_t left = ColumnLeft(height);
    const int32_t width = ColumnWidth();
    int32_t y = margin;
    const auto place = [&](ctrlWindow* control, int32_t rowTall) {
        control->Move(left, y, static_cast<uint32_t>(width), static_cast<uint32_t>(rowTall));
        y += rowTall + gap;
    };
    for (ctrlLabel* label : {Title, Version, Note})
        place(label, static_cast<int32_t>(label->PreferredHeight()));
    for (ctrlButton* button : {LinkButton, MailButton})
        place(button, scaledRow());
    const int32_t formWidth = left + width + margin;
    const int32_t formHeight = height + 2 * margin;
    Move(X() - (formWidth - static_cast<int32_t>(Width())) / 2,
         Y() - (formHeight - static_cast<int32_t>(Height())) / 2, static_cast<uint32_t>(formWidth),
         static_cast<uint32_t>(formHeight));
}
