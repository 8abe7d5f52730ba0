#include "foundations/settings/settingsText.h"

#include "foundations/heap/mem.h"
#include "foundations/text/utfConvert.h"

#include <algorithm>

namespace {

std::u16string filePath(const std::string& root)
{
    std::u16string path;
    utfAppend16From8(path, root.data(), root.size());
    return path;
}

std::string sectionName(const std::string& section, const std::string& subsection)
{
    if (section.empty())
        return subsection.empty() ? "Main" : subsection;
    return subsection.empty() ? section : section + " - " + subsection;
}

bool isOpen(const fileLocked& file)
{
    return (file.State & fileLocked::IsOpen) != 0;
}

}  // namespace

// A writer's file stays in File also if it could not be opened: the store is then kept in memory alone, and
// Close finds nothing to write to.
bool settingsText::Open(bool write)
{
    if (OpenCount != 0) {
        ++OpenCount;
        return true;
    }
    Sections.clear();
    Current = nullptr;
    const std::u16string path = filePath(Root);
    if (!write && !fileExists(path))
        return false;
    auto file = std::make_unique<fileLocked>(path, write ? fileLocked::ModeWrite : fileLocked::ModeRead);
    ReadFile(*file);
    if (write)
        File = std::move(file);
    SectionName = sectionName(settings::Section, Subsection);
    Current = FindSection();
    if (Current == nullptr && !write) {
        Sections.clear();
        return false;
    }
    if (Current == nullptr)
        AddSection();
    ++OpenCount;
    return true;
}

void settingsText::Close(bool write)
{
    if (OpenCount == 0 || --OpenCount != 0)
        return;
    std::unique_ptr<fileLocked> file = std::move(File);
    if (write) {
        if (file == nullptr)
            file = std::make_unique<fileLocked>(filePath(Root), fileLocked::ModeWrite);
        WriteFile(*file);
    }
    Sections.clear();
    Current = nullptr;
}

void settingsText::DeleteValue(const char* key)
{
    if (!Open(true))
        return;
    if (const KeyValueRow* const row = FindRow(key))
        Current->Rows.erase(Current->Rows.begin() + (row - Current->Rows.data()));
    Close(true);
}

void settingsText::DeleteAll()
{
    if (!Open(true))
        return;
    if (Current != nullptr)
        Sections.erase(Sections.begin() + (Current - Sections.data()));
    Current = nullptr;
    Close(true);
}

void settingsText::ReadFile(fileLocked& file)
{
    Whole = false;
    if (!isOpen(file))
        return;
    const uint64_t size = file.Size;
    auto* const bytes = static_cast<char*>(memAlloc(size + 1, true));
    if (bytes == nullptr)
        return;
    // The byte asked for beyond the size finds a file whose size could not be told, which then counts as 0.
    Whole = file.Read(bytes, size + 1) == size;
    if (Whole) {
        bytes[size] = '\0';
        Sections = Parse({bytes, static_cast<size_t>(size)});
    }
    memFree(bytes);
}

// What could not be read whole is not replaced: it would lose all that was not seen. A file that cannot be
// cut is left alone too, as the new content could end in the tail of the old.
void settingsText::WriteFile(fileLocked& file) const
{
    if (!Whole || !isOpen(file))
        return;
    const std::string bytes = Compose(Sections);
    if (file.Seek(0, fileLocked::Origin::Start) && file.SetEnd())
        file.WriteString(bytes);
}

settingsText::Section* settingsText::FindSection()
{
    const auto found = std::find_if(Sections.begin(), Sections.end(),
                                    [this](const auto& section) { return section.Name == SectionName; });
    return found != Sections.end() ? &*found : nullptr;
}

void settingsText::AddSection()
{
    Sections.push_back({"[" + SectionName + "]", {}, SectionName});
    Current = &Sections.back();
}

settingsText::KeyValueRow* settingsText::FindRow(const std::string& key)
{
    if (Current == nullptr)
        return nullptr;
    std::vector<KeyValueRow>& rows = Current->Rows;
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&key](const auto& row) { return row.Key == key; });
    return found != rows.end() ? &*found : nullptr;
}

settingsText::KeyValueRow& settingsText::FindOrAddRow(const std::string& key)
{
    if (KeyValueRow* const row = FindRow(key))
        return *row;
    // DeleteAll in the same batch may have taken the section away.
    if (Current == nullptr)
        AddSection();
    KeyValueRow& row = Current->Rows.emplace_back();
    row.Key = key;
    return row;
}
