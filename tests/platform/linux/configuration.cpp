#include "tests/platform/linux/configuration.h"

#include "platform/clock.h"
#include "platform/thread.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

std::filesystem::path NewFolder()
{
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("skyreckoning configuration " + std::to_string(threadId()) + " " + std::to_string(clockSteadyNs()));
    std::filesystem::create_directories(path);
    return path;
}

}  // namespace

variableSet::variableSet(const char* name, const char* value) : Name(name)
{
    const char* const before = std::getenv(name);
    WasThere = before != nullptr;
    Before = WasThere ? before : "";
    if (value != nullptr)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

variableSet::~variableSet()
{
    if (WasThere)
        setenv(Name, Before.c_str(), 1);
    else
        unsetenv(Name);
}

configurationFolder::configurationFolder() : Path(NewFolder()), Bound("XDG_CONFIG_HOME", Path.c_str()) {}

configurationFolder::~configurationFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(Path, ignored);
}

std::string configurationFolder::Content() const
{
    std::ostringstream content;
    content << std::ifstream(Store(), std::ios::binary).rdbuf();
    return content.str();
}

void configurationFolder::Put(const std::string& content) const
{
    std::filesystem::create_directories(Store().parent_path());
    std::ofstream(Store(), std::ios::binary) << content;
}
