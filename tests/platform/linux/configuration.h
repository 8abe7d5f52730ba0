// A configuration folder of the test's own, to which the settings' store is bound while the object lives.
#pragma once

#include <filesystem>
#include <string>

// Sets a variable of the environment for the time of a block.
class variableSet
{
public:
    variableSet(const char* name, const char* value);  // null for none
    ~variableSet();
    variableSet(const variableSet&) = delete;
    variableSet& operator=(const variableSet&) = delete;

private:
    const char* const Name;
    bool WasThere;
    std::string Before;
};

class configurationFolder
{
public:
    configurationFolder();
    ~configurationFolder();
    configurationFolder(const configurationFolder&) = delete;
    configurationFolder& operator=(const configurationFolder&) = delete;

    std::filesystem::path Store() const { return Path / "skyreckoning" / "registry"; }
    std::string Content() const;  // of the store's file
    void Put(const std::string& content) const;

    const std::filesystem::path Path;

private:
    const variableSet Bound;
};
