// A text store on a disk of memory.
#pragma once

#include "foundations/settings/settingsText.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

class settingsTextFixture : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        Store.Root = "/house/labels.txt";
    }

    // The file on the disk.
    void Put(const std::string& bytes) { fakeFilePut(Path, bytes); }
    std::string Bytes() const { return fakeFileBytes(Path); }

    std::string Text(const char* key, const std::string& otherwise = "untouched")
    {
        std::string value = otherwise;
        Store.GetText(key, &value, 1);
        return value;
    }

    void SetText(const char* key, const std::string& value) { Store.SetText(key, &value, 1); }

    const std::u16string Path = u"/house/labels.txt";
    settingsText Store;
};
