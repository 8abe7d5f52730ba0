// What the program is, in which version, and where to ask its makers.
//
// Interface thread. Shown with Modal, which deletes it; a click on one of its buttons ends it too.
#pragma once

#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlForm.h"
#include "toolkit/ctrlLabel.h"
#include "toolkit/pixmapDyn.h"

#include <cstdint>
#include <string>

// The makers' own values.
constexpr char uiAboutWeb[] = "https://skyreckoning.example";
constexpr char uiAboutMail[] = "hello@skyreckoning.example";

class uiAbout final : public ctrlForm
{
public:
    // Texts are UTF-8; a null one is empty. `link` is what the button with `linkText` opens; `mailText` is
    // the mail address itself.
    uiAbout(ctrlWindow* parent, const char* name, const char* version, const char* linkText, const char* link,
            const char* mailText, const char* note);

    // Another picture, to the right of the program's own; an empty one takes it away. It is copied. Its depth
    // is one that pixmapDyn takes.
    void SecondImage(const pixmap& image);

    void Paint() override;
    void Layout() override;

private:
    ctrlLabel* AddLabel(const std::string& text, float fontSize);
    ctrlButton* AddButton(const std::string& text);
    void Open(const std::string& target);
    int32_t ColumnHeight() const;
    int32_t ColumnLeft(int32_t height) const;
    int32_t ColumnWidth() const;

    pixmapDyn Image;
    pixmapDyn Image2;  // empty unless set
    std::string Link;
    ctrlLabel* Title;
    ctrlLabel* Version;
    ctrlLabel* Note;
    ctrlButton* LinkButton;
    ctrlButton* MailButton;
};
