// The content of the settings' store: a text for people, in lines.
//
//     # A line that begins with # or ; is a comment.
//     [Software\Vintermark\Skyreckoning]
//     "Server port" = dword 4003
//
// A key is a section, and exists from the first header that names it or one below it. A value is a line of
// the form that registryValue.h describes. Of two lines for one value the first counts. Lines that are none
// of these keep their place and are not touched. Any bytes at all make a valid content.
#pragma once

#include "platform/linux/registryValue.h"

#include <optional>
#include <string>
#include <string_view>

class registryText
{
public:
    explicit registryText(std::string bytes) : Bytes_(std::move(bytes)) {}

    const std::string& Bytes() const { return Bytes_; }

    bool HasKey(std::string_view path) const;
    std::optional<registryValue> Find(std::string_view path, std::string_view name) const;

    // These leave a content alone that says so already.
    void AddKey(const std::string& path);
    void Set(const std::string& path, const std::string& name, const registryValue& value);

    // These are false, with nothing changed, when there is no such value or key. What is above a removed key
    // stays.
    bool Remove(std::string_view path, std::string_view name);
    bool RemoveTree(std::string_view path);

private:
    std::string WithKnownCase(const std::string& path) const;
    void AppendSection(const std::string& path);

    std::string Bytes_;
};

// Whether the text may be a key's path: parts that are not empty, in well-formed UTF-8, without control
// characters.
bool registryIsPath(std::string_view path);
