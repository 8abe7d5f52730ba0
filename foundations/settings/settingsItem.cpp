#include "foundations/settings/settingsItem.h"

#include <utility>

settingsItem::settingsItem(settingsList* list, const char* key) : Key(key)
{
    if (list != nullptr)
        list->Items.push_back(this);
}

settingsItemText::settingsItemText(settingsList* list, const char* key, std::string defaultValue)
    : settingsItem(list, key), Default(std::move(defaultValue))
{}

void settingsItemText::Load(settings& store)
{
    store.GetText(Key, &Value, 1);
}

void settingsItemText::Save(settings& store)
{
    store.SetText(Key, &Value, 1);
}

void settingsItemText::Reset()
{
    Value = Default;
}

settingsItemInt::settingsItemInt(settingsList* list, const char* key, int32_t defaultValue)
    : settingsItem(list, key), Default(defaultValue)
{}

void settingsItemInt::Load(settings& store)
{
    store.GetInt32(Key, &Value, 1);
}

void settingsItemInt::Save(settings& store)
{
    store.SetInt32(Key, &Value, 1);
}

void settingsItemInt::Reset()
{
    Value = Default;
}

settingsItemBool::settingsItemBool(settingsList* list, const char* key, bool defaultValue)
    : settingsItem(list, key), Default(defaultValue)
{}

void settingsItemBool::Load(settings& store)
{
    store.GetBool(Key, &Value, 1);
}

void settingsItemBool::Save(settings& store)
{
    store.SetBool(Key, &Value, 1);
}

void settingsItemBool::Reset()
{
    Value = Default;
}
