// Settings in a UTF-8 text file of sections and "key=value" rows, rewritten in place with its comments, its
// blank lines and its order kept.
//
// An open store holds its whole file in memory. Opened for writing it also holds the file locked, so that
// another process waits; each outermost Close drops all.
#pragma once

#include "foundations/file/fileLocked.h"
#include "foundations/settings/settings.h"

#include <memory>
#include <string_view>
#include <vector>

class settingsText final : public settings
{
public:
    class KeyValueRow
    {
    public:
        // Reads a line of the file, given without its end.
        static KeyValueRow Parse(std::string_view line);

        const std::string& Value() const { return Value_; }

        // Sets a new value and rewrites the line. A value that a line cannot hold as it stands is quoted and
        // escaped.
        void Value(const std::string& text);

        std::string Key;   // empty for a comment, a blank line, a line without "="
        std::string Text;  // the whole line as it stands in the file, without its end

    private:
        std::string Value_;
    };

    // Hides the member of this name in the base class, which is settings::Section here.
    struct Section {
        std::string Text;  // the header line as it stands in the file; empty for a nameless first section
        std::vector<KeyValueRow> Rows;  // in file order
        std::string Name;               // what stands between the brackets
    };

    settingsText() = default;

    // Closes an open store without writing.
    ~settingsText() = default;

    bool Open(bool write) override;
    void Close(bool write) override;
    void DeleteValue(const char* key) override;
    void DeleteAll() override;
    void GetText(const char* key, std::string* value, uint64_t count) override;
    void GetDouble(const char* key, double* value, uint64_t count) override;
    void GetFloat(const char* key, float* value, uint64_t count) override;
    void GetUInt64(const char* key, uint64_t* value, uint64_t count) override;
    void GetInt64(const char* key, int64_t* value, uint64_t count) override;
    void GetInt32(const char* key, int32_t* value, uint64_t count) override;
    void GetUInt16(const char* key, uint16_t* value, uint64_t count) override;
    void GetInt16(const char* key, int16_t* value, uint64_t count) override;
    void GetUInt8(const char* key, uint8_t* value, uint64_t count) override;
    void GetBool(const char* key, bool* value, uint64_t count) override;
    void RestoreFile() override;
    void RotateFiles() override;
    void SetText(const char* key, const std::string* value, uint64_t count) override;
    void SetDouble(const char* key, const double* value, uint64_t count) override;
    void SetFloat(const char* key, const float* value, uint64_t count) override;
    void SetInt64(const char* key, const int64_t* value, uint64_t count) override;
    void SetInt32(const char* key, const int32_t* value, uint64_t count) override;
    void SetBool(const char* key, const bool* value, uint64_t count) override;

    // Splits a file's bytes into sections and rows. Any bytes are taken.
    static std::vector<Section> Parse(std::string_view bytes);

    // The file's bytes again, each line ended by CR LF.
    static std::string Compose(const std::vector<Section>& sections);

private:
    void ReadFile(fileLocked& file);
    void WriteFile(fileLocked& file) const;
    Section* FindSection();
    void AddSection();
    KeyValueRow* FindRow(const std::string& key);
    KeyValueRow& FindOrAddRow(const std::string& key);

    Section* Current = nullptr;        // the section chosen by Open
    std::unique_ptr<fileLocked> File;  // from Open to Close when writing
    std::string SectionName;           // the name searched for
    std::vector<Section> Sections;     // in file order
    bool Whole = false;                // whether Sections is all that the file holds
};
