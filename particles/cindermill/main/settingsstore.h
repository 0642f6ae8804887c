#pragma once

#include "library/containers/string.h"

#include <cstdint>

// Where the settings are kept between runs: named 32-bit integers and strings.
class TSettingsStore
{
public:
    virtual ~TSettingsStore() = default;
    // Whether anything has ever been stored here.
    virtual bool Exists() = 0;
    // Each is false if the value is missing or of the other kind.
    virtual bool ReadInt(const char* name, uint32_t& value) = 0;
    virtual bool ReadString(const char* name, TString& value) = 0;
    virtual bool WriteInt(const char* name, uint32_t value) = 0;
    virtual bool WriteString(const char* name, const char* value) = 0;
    // What is not there is gone.
    virtual void Remove(const char* name) = 0;
    // Brings what was written to the disc; false if that failed.
    virtual bool Flush() = 0;
};

// The platform's own store for this program: the registry, or a file under the user's configuration
// directory. The caller owns it.
TSettingsStore* OpenSettingsStore();

// A store of nothing, for a run that must not hang on who runs it. The caller owns it.
TSettingsStore* OpenNoSettings();

// A store in one file, for tests and for whoever keeps settings apart. The caller owns it.
TSettingsStore* OpenSettingsFile(const char* path);
