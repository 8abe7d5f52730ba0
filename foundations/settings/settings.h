// Named, typed values that outlive the program, behind one interface.
//
// Calls of Open and Close nest, and each getter and setter opens and closes around itself, so a caller that
// wants a batch opens once around it; only the outermost Open decides between reading and writing. Nothing
// reports an error except Open: a getter that finds nothing leaves its output as it was, and a setter that
// fails is dropped. One thread, the interface thread.
#pragma once

#include <cstdint>
#include <string>

class settingsItem;
struct settingsList;

class settings
{
public:
    // Opens the store, or counts one more Open. False, with nothing to close, when there is nothing to open.
    virtual bool Open(bool write) = 0;

    // Ends one Open; the outermost ends the store and, with `write`, stores what a store keeps in memory.
    virtual void Close(bool write) = 0;

    virtual void DeleteValue(const char* key) = 0;
    virtual void DeleteAll() = 0;

    // `count` is the number of elements at `value`; elements that the stored value lacks stay as they are.
    // GetText and SetText take a count of 1 alone, any other is a fatal fault.
    virtual void GetText(const char* key, std::string* value, uint64_t count) = 0;
    virtual void GetDouble(const char* key, double* value, uint64_t count) = 0;
    virtual void GetFloat(const char* key, float* value, uint64_t count) = 0;
    virtual void GetUInt64(const char* key, uint64_t* value, uint64_t count) = 0;
    virtual void GetInt64(const char* key, int64_t* value, uint64_t count) = 0;
    virtual void GetInt32(const char* key, int32_t* value, uint64_t count) = 0;
    virtual void GetUInt16(const char* key, uint16_t* value, uint64_t count) = 0;
    virtual void GetInt16(const char* key, int16_t* value, uint64_t count) = 0;
    virtual void GetUInt8(const char* key, uint8_t* value, uint64_t count) = 0;
    virtual void GetBool(const char* key, bool* value, uint64_t count) = 0;

    // For stores that are one file: puts the newest backup with content in the place of an empty file.
    virtual void RestoreFile() = 0;

    // For stores that are one file: moves the backups .1 to .8 on by one and copies the file to .1.
    virtual void RotateFiles() = 0;

    virtual void SetText(const char* key, const std::string* value, uint64_t count) = 0;
    virtual void SetDouble(const char* key, const double* value, uint64_t count) = 0;
    virtual void SetFloat(const char* key, const float* value, uint64_t count) = 0;
    virtual void SetInt64(const char* key, const int64_t* value, uint64_t count) = 0;
    virtual void SetInt32(const char* key, const int32_t* value, uint64_t count) = 0;
    virtual void SetBool(const char* key, const bool* value, uint64_t count) = 0;

    // Sets every item to its default, then loads those that the store has.
    void LoadList(const settingsList& list);

    // Saves every item; an empty list opens nothing.
    void SaveList(const settingsList& list);

    uint32_t OpenCount = 0;  // Open calls that are not closed yet
    std::string Subsection;  // second level of the name; may be empty
    std::string Root;        // registry: key path below the current user; text: the file
    std::string Section;     // first level of the name; may be empty

    settings(const settings&) = delete;
    settings& operator=(const settings&) = delete;

protected:
    settings() = default;
    ~settings() = default;
};
