#pragma once

#include "particles/cindermill/main/settingsstore.h"

// A store that holds nothing: samples are made, and tried, with the settings that the program starts with,
// whatever this machine's user chose.
class TStartSettings : public TSettingsStore
{
public:
    bool Exists() override { return false; }
    bool ReadInt(const char*, uint32_t&) override { return false; }
    bool ReadString(const char*, TString&) override { return false; }
    bool WriteInt(const char*, uint32_t) override { return true; }
    bool WriteString(const char*, const char*) override { return true; }
    void Remove(const char*) override {}
    bool Flush() override { return true; }
};
