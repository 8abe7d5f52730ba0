// Small typed holders that tie a value to its key and its default.
#pragma once

#include "foundations/settings/settings.h"

#include <cstdint>
#include <string>
#include <vector>

class settingsItem;

// Items that are loaded and saved together, in order. The items belong to whoever holds them.
struct settingsList {
    std::vector<settingsItem*> Items;
};

class settingsItem
{
public:
    virtual void Load(settings& store) = 0;
    virtual void Save(settings& store) = 0;
    virtual void Reset() = 0;

    const char* const Key;  // not owned; outlives the item

    settingsItem(const settingsItem&) = delete;
    settingsItem& operator=(const settingsItem&) = delete;

protected:
    // Appends itself to `list`, if one is given; the list's user ends before the item does.
    settingsItem(settingsList* list, const char* key);
    ~settingsItem() = default;
};

class settingsItemText final : public settingsItem
{
public:
    settingsItemText(settingsList* list, const char* key, std::string defaultValue = {});

    void Load(settings& store) override;
    void Save(settings& store) override;
    void Reset() override;

    // Empty until the first Reset or Load.
    std::string Value;
    std::string Default;
};

class settingsItemInt final : public settingsItem
{
public:
    settingsItemInt(settingsList* list, const char* key, int32_t defaultValue = 0);

    void Load(settings& store) override;
    void Save(settings& store) override;
    void Reset() override;

    int32_t Value = 0;
    int32_t Default;
};

class settingsItemBool final : public settingsItem
{
public:
    settingsItemBool(settingsList* list, const char* key, bool defaultValue = false);

    void Load(settings& store) override;
    void Save(settings& store) override;
    void Reset() override;

    bool Value = false;
    bool Default;
};
