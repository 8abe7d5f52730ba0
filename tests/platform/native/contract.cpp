#include "tests/platform/contract.h"

#include "platform/clock.h"
#include "platform/process.h"
#include "platform/registry.h"
#include "platform/thread.h"

#include <filesystem>

namespace {

// A folder of this run alone, for several runs may go on at once. It ends with the program.
class scratchFolder
{
public:
    scratchFolder()
        : Path(
              std::filesystem::temp_directory_path() /
              ("skyreckoning contract " + std::to_string(threadId()) + " " + std::to_string(clockSteadyNs())))
    {}

    ~scratchFolder() { Remove(); }
    scratchFolder(const scratchFolder&) = delete;
    scratchFolder& operator=(const scratchFolder&) = delete;

    void MakeEmpty()
    {
        Remove();
        std::filesystem::create_directories(Path);
    }

    const std::filesystem::path Path;

private:
    void Remove()
    {
        std::error_code ignored;
        std::filesystem::remove_all(Path, ignored);
    }
};

scratchFolder& Scratch()
{
    static scratchFolder folder;
    return folder;
}

// A child is the same program, and so finds what its parent stored.
const std::string& KeyOfThisProgram()
{
    static const std::string key =
        "Software\\Vintermark\\Skyreckoning " + std::filesystem::path(processPath()).stem().string();
    return key;
}

}  // namespace

const char* const ContractKey = KeyOfThisProgram().c_str();

bool contractIsFake()
{
    return false;
}

void contractReset()
{
    Scratch().MakeEmpty();
    registryDeleteTree(ContractKey);
}

std::u16string contractFolder()
{
    return Scratch().Path.u16string();
}

void contractPassTime(int64_t)
{
    // It passes by itself.
}
