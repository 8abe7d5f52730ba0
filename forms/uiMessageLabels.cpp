#include "forms/uiMessageLabels.h"

#include "foundations/settings/settingsGroup.h"

#include <array>

namespace {

// The items of a file stand in the order of the alphabet.
struct labels {
    settingsGroup Group{"uiMessage"};
    settingsItemText Abort{&Group, "Abort", "Abort"};
    settingsItemText Cancel{&Group, "Cancel", "Cancel"};
    settingsItemText Ignore{&Group, "Ignore", "Ignore"};
    settingsItemText No{&Group, "No", "No"};
    settingsItemText OK{&Group, "OK", "OK"};
    settingsItemText Retry{&Group, "Retry", "Retry"};
    settingsItemText Yes{&Group, "Yes", "Yes"};
    std::u16string File;
};

labels theLabels;

// In the order of the buttons.
constexpr std::array<const settingsItemText*, uiMessageLabelCount> byButton{
    &theLabels.OK,    &theLabels.Yes,   &theLabels.No,    &theLabels.Cancel,
    &theLabels.Abort, &theLabels.Retry, &theLabels.Ignore};

}  // namespace

const std::string& uiMessageLabel(size_t index)
{
    // Before the first load every value is empty, defaults too.
    if (theLabels.Abort.Value.empty())
        settingsGroup::LoadFile(theLabels.File);
    return byButton[index]->Value;
}

void uiMessageLabelFile(const std::u16string& path)
{
    theLabels.File = path;
    theLabels.Abort.Value.clear();
}
