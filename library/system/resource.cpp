#include "library/system/resource.h"

#include "library/containers/byteorder.h"
#include "library/containers/classregistry.h"
#include "library/containers/owner.h"
#include "library/containers/strtoid.h"
#include "library/system/file.h"
#include "library/system/path.h"

namespace {

// The bytes "RSRC" at the start of every resource file; the NameID of the class follows.
constexpr uint32_t ResourceMagic = 0x43525352;
constexpr const char* FirstExtensions[] = {"matbank", "geom", "bvh"};

// A new object of the class that a file names. The file can name any class of the program; only those that
// are resources, and can be made, will do.
TOwner<TResource> MakeResource(uint32_t nameID)
{
    const int type = FindClassByNameID(nameID);
    void* made = type != -1 && IsClassA(type, TResource::ClassId()) ? CreateClass(type) : nullptr;
    ASSERT_TEXT(made != nullptr, "type != -1 : Unknown resource type");
    return TOwner<TResource>(static_cast<TResource*>(made));
}

} // namespace

TResourceSystem::TResourceSystem()
{
    for (const char* extension : FirstExtensions)
        AddExtension(extension);
}

void TResourceSystem::IDToStr(uint32_t id, TString& result)
{
    ::IDToStr(id, result);
}

void TResourceSystem::AddExtension(const char* extension)
{
    Extensions.push_back(extension);
}

void TResourceSystem::AddDirectory(const char* path)
{
    TString directory(path);
    directory.Replace('\\', '/');
    if (directory.IsEmpty() || directory.Print()[directory.Length() - 1] != '/')
        directory += "/";
    vector<TDirectoryEntry> entries;
    ListDirectory(directory, entries);
    for (const TDirectoryEntry& entry : entries) {
        TString entryPath(directory);
        entryPath += entry.Name;
        if (!entry.IsDirectory) {
            if (IsKnownExtension(entry.Name))
                AddResource(entryPath);
        } else if (entry.Name.Find('.') != 0) {
            AddDirectory(entryPath);
        }
    }
}

void TResourceSystem::AddResource(const char* path, uint32_t* result)
{
    TString name;
    name.SetFileName(path);
    const uint32_t id = StrToID(name);
    const auto existing = Resources.find(id);
    ASSERT_TEXT_MSG(existing == Resources.end(), "Resources.find(id) == Resources.end()",
                    TempFormat("Resource %s already exists in system (existing path=%s, new path=%s)",
                               name.Print(), existing->second.Path.Print(), path));
    TString extension;
    extension.SetExtension(name);
    ASSERT_TEXT_MSG(IsKnownExtension(name), "it != ResourceTypes.end()",
                    TempFormat("Unknown resource extension: %s", extension.Print()));
    Resources.insert(id, TRecord{nullptr, path});
    if (result != nullptr)
        *result = id;
}

TResource* TResourceSystem::LoadResource(uint32_t id)
{
    TRecord& record = GetRecord(id);
    if (record.Resource != nullptr) {
        ++record.Resource->RefCount;
        return record.Resource;
    }
    TFile file;
    ASSERT_TEXT_MSG(file.OpenRead(record.Path), "0",
                    TempFormat("Failed to open %s for reading", record.Path.Print()));
    unsigned char header[8];
    ASSERT_TEXT(file.Read(header, sizeof(header)) && LittleU32(header) == ResourceMagic,
                "header[0] == 0x43525352 : Bad resource header");
    TOwner<TResource> resource = MakeResource(LittleU32(header + 4));
    resource->ID = id;
    const bool imported = resource->Read(file);
    file.Close();
    if (!imported) {
        TString name;
        IDToStr(id, name);
        ASSERT_TEXT_MSG(false, "0", TempFormat("Resource %s did not import", name.Print()));
    }
    resource->RefCount = 1;
    record.Resource = resource.Release();
    return record.Resource;
}

TResource* TResourceSystem::LoadResource(const char* name)
{
    return LoadResource(StrToID(name));
}

bool TResourceSystem::SaveResource(uint32_t id)
{
    const TRecord& record = GetRecord(id);
    ASSERT_TEXT_MSG(record.Resource != nullptr, "it->second.Resource != 0",
                    TempFormat("Resource %x is not loaded", id));
    TFile file;
    ASSERT_TEXT_MSG(file.OpenWrite(record.Path), "0",
                    TempFormat("Failed to open %s for writing", record.Path.Print()));
    unsigned char header[8];
    PutLittleU32(header, ResourceMagic);
    PutLittleU32(header + 4, record.Resource->GetClassId());
    if (file.Write(header, sizeof(header)) && record.Resource->Write(file))
        return file.Close();
    file.Abandon();
    return false;
}

void TResourceSystem::ReleaseResource(TResource* resource)
{
    if (--resource->RefCount != 0)
        return;
    auto it = Resources.begin();
    while (it != Resources.end() && it->second.Resource != resource)
        ++it;
    ASSERT_TEXT(it != Resources.end(), "0 : Resource not in resource system");
    it->second.Resource = nullptr;
    delete resource;
}

bool TResourceSystem::IsKnownExtension(const TString& fileName) const
{
    TString extension;
    extension.SetExtension(fileName);
    for (const TString& known : Extensions)
        if (known.Compare(extension) == 0)
            return true;
    return false;
}

TResourceSystem::TRecord& TResourceSystem::GetRecord(uint32_t id)
{
    const auto it = Resources.find(id);
    ASSERT_TEXT_MSG(it != Resources.end(), "it != Resources.end()",
                    TempFormat("Resource %x does not exist", id));
    return it->second;
}
