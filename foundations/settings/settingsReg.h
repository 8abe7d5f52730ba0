// Settings in the user's registry (platform/registry.h).
#pragma once

#include "foundations/settings/settings.h"
#include "platform/registry.h"

struct settingsRaw;

class settingsReg final : public settings
{
public:
    settingsReg() = default;
    ~settingsReg();

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

private:
    std::string Path() const;
    settingsRaw Read(const char* key);
    void Write(const char* key, registryType type, const void* data, uint64_t count, uint64_t elementSize);

    registryKey* Key = nullptr;
    void* Buffer = nullptr;   // the raw value last read, from the checked heap
    uint32_t BufferSize = 0;  // its room in bytes
};
