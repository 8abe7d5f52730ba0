// A registry store on a registry of memory.
#pragma once

#include "foundations/settings/settingsReg.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

class settingsRegFixture : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        Store.Root = Root;
    }

    // The value named "Key" as it stands in the registry.
    fakeValue Stored() const
    {
        const auto values = fakeRegistryValues(Root);
        const auto found = values.find("Key");
        return found != values.end() ? found->second : fakeValue{};
    }

    void Put(const fakeValue& value) { fakeRegistryPut(Root, "Key", value); }

    static fakeValue Dword(uint32_t value) { return {registryType::Dword, Bytes<uint32_t>({value})}; }
    static fakeValue Qword(uint64_t value) { return {registryType::Qword, Bytes<uint64_t>({value})}; }

    template <class T>
    static fakeValue Binary(const std::vector<T>& elements)
    {
        return {registryType::Binary, Bytes(elements)};
    }

    static fakeValue Text(std::u16string_view text, registryType type = registryType::Text)
    {
        std::vector<char16_t> units(text.begin(), text.end());
        units.push_back(u'\0');
        return {type, Bytes(units)};
    }

    template <class T>
    static std::vector<uint8_t> Bytes(const std::vector<T>& elements)
    {
        std::vector<uint8_t> bytes(elements.size() * sizeof(T));
        if (!bytes.empty())
            std::memcpy(bytes.data(), elements.data(), bytes.size());
        return bytes;
    }

    const std::string Root = "Software\\House";
    settingsReg Store;
};
