#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/map.h"
#include "library/containers/string.h"

#include <cstdint>

class TFile;

// An object that is kept in a file of its own and found by the file's name. It lives as long as someone holds
// it.
class TResource : public TRegistered<TResource>
{
public:
    static constexpr const char* RegisteredName = "TResource";
    TResource() = default;
    TResource(const TResource&) = delete;
    TResource& operator=(const TResource&) = delete;

    // The body behind the file's header. False if it cannot be understood.
    virtual bool Read(TFile& file) = 0;
    virtual bool Write(TFile& file) const = 0;

    uint32_t ID = 0;
    uint32_t RefCount = 0;
};

// The resource files of some directories, each under StrToID of its name with extension. Wrong use and broken
// files assert.
class TResourceSystem
{
public:
    TResourceSystem();

    // The name behind an identity, or "UKID %x".
    static void IDToStr(uint32_t id, TString& result);

    void AddExtension(const char* extension);
    // Enters every file of a known extension, the directories below included.
    void AddDirectory(const char* path);
    // `result` may be null.
    void AddResource(const char* path, uint32_t* result = nullptr);

    // Every load is one reference, to be released.
    TResource* LoadResource(uint32_t id);
    TResource* LoadResource(const char* name);
    // Writes a loaded resource to its file. False if the file could not be written whole; the old one then
    // stands.
    bool SaveResource(uint32_t id);
    // The last reference deletes the object.
    void ReleaseResource(TResource* resource);

private:
    struct TRecord
    {
        TResource* Resource = nullptr;
        TString Path;
    };

    bool IsKnownExtension(const TString& fileName) const;
    TRecord& GetRecord(uint32_t id);

    map<uint32_t, TRecord> Resources;
    vector<TString> Extensions;
};
