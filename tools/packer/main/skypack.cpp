// skypack: turns a picture into an image that is stored in the program, and back.
#include "tools/packer/packPng.h"
#include "tools/packer/packSource.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace {

constexpr int ExitFault = 2;

constexpr char Usage[] =
    "usage: skypack PICTURE.png FOLDER/NAME\n"
    "       skypack --back FOLDER/NAME.cpp PICTURE.png\n"
    "Writes FOLDER/NAME.h and FOLDER/NAME.cpp, which hold the picture compressed, in a record called NAME;\n"
    "FOLDER is the path from the root of the tree. With --back, turns such a source into the picture "
    "again.\n";

int Complain(const std::string& reason)
{
    std::fprintf(stderr, "skypack: %s\n", reason.c_str());
    return ExitFault;
}

using openFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

bool ReadFile(const std::string& name, std::string& text)
{
    const openFile file(std::fopen(name.c_str(), "rb"), std::fclose);
    if (!file)
        return false;
    char bytes[4096];
    size_t count = 0;
    while ((count = std::fread(bytes, 1, sizeof bytes, file.get())) > 0)
        text.append(bytes, count);
    return std::ferror(file.get()) == 0;
}

bool WriteFile(const std::string& name, const std::string& text)
{
    openFile file(std::fopen(name.c_str(), "wb"), std::fclose);
    if (!file)
        return false;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    return std::fclose(file.release()) == 0 && isWritten;
}

bool IsName(std::string_view name)
{
    constexpr std::string_view Letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    return !name.empty() && Letters.find(name.front()) != std::string_view::npos &&
           name.find_first_not_of(std::string(Letters) + "0123456789_") == std::string_view::npos;
}

std::string_view LastPart(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

int Pack(const std::string& file, const std::string& target)
{
    const std::string_view name = LastPart(target);
    if (name.size() == target.size() || !IsName(name))
        return Complain("\"" + target + "\" is not FOLDER/NAME with a name that C++ can have");
    std::string fault;
    const std::optional<packPicture> picture = packReadPng(file, fault);
    if (!picture)
        return Complain("cannot take " + file + ": " + fault);
    const std::string_view folder = std::string_view(target).substr(0, target.size() - name.size() - 1);
    const packTexts texts = packSourceOf(*picture, name, folder, LastPart(file));
    if (!WriteFile(target + ".h", texts.Header) || !WriteFile(target + ".cpp", texts.Source))
        return Complain("cannot write " + target + ".h and .cpp: " + std::strerror(errno));
    return 0;
}

int Unpack(const std::string& file, const std::string& target)
{
    std::string text;
    if (!ReadFile(file, text))
        return Complain("cannot read " + file + ": " + std::strerror(errno));
    const std::optional<packPicture> picture = packPictureOf(text);
    if (!picture)
        return Complain(file + " holds no whole picture that was packed by this program");
    std::string fault;
    if (!packWritePng(target, *picture, fault))
        return Complain("cannot write " + target + ": " + fault);
    return 0;
}

}  // namespace

int main(int count, char** arguments)
{
    const std::span<char*> all(arguments, static_cast<size_t>(count));
    if (count == 2 && std::string_view(all[1]) == "--help")
        return std::fputs(Usage, stdout) < 0 ? ExitFault : 0;
    if (count == 3 && all[1][0] != '-')
        return Pack(all[1], all[2]);
    if (count == 4 && std::string_view(all[1]) == "--back")
        return Unpack(all[2], all[3]);
    return Complain("wrong arguments; skypack --help tells the right ones");
}
