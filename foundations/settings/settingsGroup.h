// Named lists of items, known process-wide, so that one file can fill them all.
#pragma once

#include "foundations/settings/settingsItem.h"

#include <string>

struct settingsGroup : settingsList {
    // Links the group at the head of the process-wide list; a second group of one name is a fatal fault.
    // Static objects and the interface thread only.
    explicit settingsGroup(const char* name);
    ~settingsGroup();
    settingsGroup(const settingsGroup&) = delete;
    settingsGroup& operator=(const settingsGroup&) = delete;

    // Loads every group from the section of its name in a text file; what the file lacks stands at its
    // default.
    static void LoadFile(const std::u16string& path);

    settingsGroup* Next = nullptr;
    const std::string Name;
};
