#include "foundations/settings/settings.h"

#include "foundations/settings/settingsItem.h"

void settings::LoadList(const settingsList& list)
{
    for (settingsItem* const item : list.Items)
        item->Reset();
    if (!Open(false))
        return;
    for (settingsItem* const item : list.Items)
        item->Load(*this);
    Close(false);
}

void settings::SaveList(const settingsList& list)
{
    if (list.Items.empty() || !Open(true))
        return;
    for (settingsItem* const item : list.Items)
        item->Save(*this);
    Close(true);
}
