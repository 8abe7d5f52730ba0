#include "foundations/settings/settingsGroup.h"

#include "foundations/fatal/crashFatal.h"
#include "foundations/settings/settingsText.h"
#include "foundations/text/utfConvert.h"

namespace {

// Groups are static objects of many files, so the list must be there before the first of them.
constinit settingsGroup* First = nullptr;

}  // namespace

settingsGroup::settingsGroup(const char* name) : Name(name)
{
    for (const settingsGroup* group = First; group != nullptr; group = group->Next)
        if (group->Name == Name)
            crashFatal("Two settings groups bear the same name.");
    Next = First;
    First = this;
}

settingsGroup::~settingsGroup()
{
    settingsGroup** link = &First;
    while (*link != nullptr && *link != this)
        link = &(*link)->Next;
    if (*link == this)
        *link = Next;
}

void settingsGroup::LoadFile(const std::u16string& path)
{
    settingsText store;
    utfAppend8From16(store.Root, path.data(), path.size());
    for (const settingsGroup* group = First; group != nullptr; group = group->Next) {
        store.settings::Section = group->Name;
        store.LoadList(*group);
    }
}
