// Backups stand beside the file: ".1" is the newest, ".9" the oldest.
#include "foundations/settings/settingsText.h"
#include "foundations/text/utfConvert.h"

#include <optional>

namespace {

constexpr char16_t Backups = 9;

// The file itself is backup 0.
std::u16string backupPath(const std::u16string& path, char16_t number)
{
    if (number == 0)
        return path;
    return path + u'.' + static_cast<char16_t>(u'0' + number);
}

}  // namespace

void settingsText::RotateFiles()
{
    std::u16string path;
    utfAppend16From8(path, Root.data(), Root.size());
    for (char16_t number = Backups; number > 0; --number) {
        const std::u16string source = backupPath(path, static_cast<char16_t>(number - 1));
        const std::u16string target = backupPath(path, number);
        if (!fileExists(source) || (fileExists(target) && !fileRemove(target)))
            continue;
        if (number == 1)
            fileCopy(source, target);
        else
            fileRename(source, target);
    }
}

// A crash between cutting the file and writing it leaves it empty.
void settingsText::RestoreFile()
{
    if (OpenCount != 0)
        return;
    std::u16string path;
    utfAppend16From8(path, Root.data(), Root.size());
    if (!fileExists(path) || fileSizeOf(path) != uint64_t{0})
        return;
    for (char16_t number = 1; number <= Backups; ++number) {
        const std::u16string backup = backupPath(path, number);
        if (!fileExists(backup) || fileSizeOf(backup) == uint64_t{0})
            continue;
        fileRemove(path);
        fileRename(backup, path);
        return;
    }
}
