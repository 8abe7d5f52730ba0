// Any bytes are a settings file: every getter lives with it, a value set in it is found again, and nothing
// else in it changes.
#include "foundations/settings/settingsText.h"
#include "fuzz/require.h"
#include "tests/fakes/fakes.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using sections = std::vector<settingsText::Section>;

constexpr char16_t Path[] = u"/store.txt";
constexpr char Root[] = "/store.txt";
constexpr char Key[] = "Key";

bool equal(const sections& one, const sections& other)
{
    if (one.size() != other.size())
        return false;
    for (size_t i = 0; i < one.size(); ++i) {
        if (one[i].Text != other[i].Text || one[i].Name != other[i].Name ||
            one[i].Rows.size() != other[i].Rows.size())
            return false;
        for (size_t j = 0; j < one[i].Rows.size(); ++j) {
            const settingsText::KeyValueRow& row = one[i].Rows[j];
            const settingsText::KeyValueRow& twin = other[i].Rows[j];
            if (row.Text != twin.Text || row.Key != twin.Key || row.Value() != twin.Value())
                return false;
        }
    }
    return true;
}

// What was read is written so that it reads the same. A second byte order mark would be taken for the first
// one, which is why such a file is left out.
void readsWhatItWrites(const std::string& bytes)
{
    const sections first = settingsText::Parse(bytes);
    const std::string written = settingsText::Compose(first);
    if (written.starts_with("\xEF\xBB\xBF"))
        return;
    const sections second = settingsText::Parse(written);
    require(equal(first, second));
    require(settingsText::Compose(second) == written);
}

template <class T, class Getter>
void getterLives(settingsText& store, const char* key, Getter getter)
{
    T values[4] = {};
    (store.*getter)(key, values, 4);
}

void everyGetterLives(settingsText& store, const char* key)
{
    getterLives<double>(store, key, &settingsText::GetDouble);
    getterLives<float>(store, key, &settingsText::GetFloat);
    getterLives<uint64_t>(store, key, &settingsText::GetUInt64);
    getterLives<int64_t>(store, key, &settingsText::GetInt64);
    getterLives<int32_t>(store, key, &settingsText::GetInt32);
    getterLives<uint16_t>(store, key, &settingsText::GetUInt16);
    getterLives<int16_t>(store, key, &settingsText::GetInt16);
    getterLives<uint8_t>(store, key, &settingsText::GetUInt8);
    getterLives<bool>(store, key, &settingsText::GetBool);
}

void everyRowIsRead(const std::string& bytes)
{
    constexpr size_t MostRows = 20;
    settingsText store;
    store.Root = Root;
    size_t rows = 0;
    for (const settingsText::Section& section : settingsText::Parse(bytes)) {
        store.settings::Section = section.Name;
        if (!store.Open(false)) {
            require(section.Name.empty());
            continue;
        }
        for (const settingsText::KeyValueRow& row : section.Rows)
            if (rows++ < MostRows)
                everyGetterLives(store, row.Key.c_str());
        store.Close(false);
    }
    require(store.OpenCount == 0);
}

// A value from the end of the input, as far as a row can hold it: NUL ends a line, brackets make a header.
std::string chosenValue(const std::string& bytes)
{
    constexpr size_t Longest = 30;
    std::string value = bytes.substr(bytes.size() - std::min(bytes.size(), Longest));
    std::erase(value, '\0');
    std::erase(value, '[');
    return value;
}

void findsWhatItSets(const std::string& bytes)
{
    const std::string value = chosenValue(bytes);
    settingsText store;
    store.Root = Root;
    store.SetText(Key, &value, 1);
    std::string back = value + "!";
    store.GetText(Key, &back, 1);
    require(back == value);

    const int32_t number = static_cast<int32_t>(bytes.size()) - 100;
    store.SetInt32(Key, &number, 1);
    int32_t numberBack = number + 1;
    store.GetInt32(Key, &numberBack, 1);
    require(numberBack == number);
}

void comesBackFromItsBackup()
{
    const std::string before = fakeFileBytes(Path);
    settingsText store;
    store.Root = Root;
    store.RotateFiles();
    store.RotateFiles();
    require(fakeFileBytes(Path) == before);
    require(fakeFileBytes(u"/store.txt.1") == before);
    require(fakeFileBytes(u"/store.txt.2") == before);
    fakeFilePut(Path, "");
    store.RestoreFile();
    require(fakeFileBytes(Path) == before);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string bytes(data, data + size);
    fakeReset();
    fakeFilePut(Path, bytes);
    readsWhatItWrites(bytes);
    everyRowIsRead(bytes);
    findsWhatItSets(bytes);
    comesBackFromItsBackup();
    require(fakeFileHandles() == 0);
    return 0;
}
