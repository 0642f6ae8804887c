#include "library/system/resource.h"

#include "library/containers/classregistry.h"
#include "library/containers/strtoid.h"
#include "library/system/file.h"
#include "support/testsupport.h"

#include <filesystem>

namespace {

// One byte, which must not be 'X'.
class TByteResource : public TRegistered<TByteResource, TResource>
{
public:
    static constexpr const char* RegisteredName = "TByteResource";
    TByteResource() { ++Living; }
    ~TByteResource() override { --Living; }
    bool Read(TFile& file) override { return file.Read(&Byte, 1) && Byte != 'X'; }
    bool Write(TFile& file) const override { return Byte != 'X' && file.Write(&Byte, 1); }

    char Byte = 0;
    static int Living;
};
int TByteResource::Living = 0;
const int ByteResourceId = TByteResource::ClassId();

// Made by the registry, but no resource.
struct TStranger : TRegistered<TStranger>
{
    static constexpr const char* RegisteredName = "TTestStranger";
    int Value = 0;
};
const int StrangerId = TStranger::ClassId();

std::string Word(uint32_t word)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>(word >> (8 * i));
    return bytes;
}

std::string ResourceBytes(const char* className, const std::string& body)
{
    return "RSRC" + Word(StrToID(className)) + body;
}

class ResourceSystem : public testing::Test
{
protected:
    // The path of a file with these bytes, entered in the system.
    uint32_t Add(const std::string& leaf, const std::string& bytes)
    {
        WriteBytes(Folder.Path(leaf), bytes);
        uint32_t id = 0;
        System.AddResource(Folder.Path(leaf).c_str(), &id);
        return id;
    }
    bool Holds(const char* name)
    {
        const std::string text = AssertionOf([&] { System.ReleaseResource(System.LoadResource(name)); });
        EXPECT_TRUE(text.empty() || text.find("does not exist") != std::string::npos) << text;
        return text.empty();
    }

    TTempFolder Folder;
    TResourceSystem System;
};

const std::string Good = ResourceBytes("TByteResource", "a");

} // namespace

TEST_F(ResourceSystem, LoadingTwiceGivesOneObjectThatTwoReleasesDelete)
{
    const uint32_t id = Add("one.geom", Good);
    EXPECT_EQ(id, StrToID("ONE.geom"));
    TResource* resource = System.LoadResource(id);
    EXPECT_EQ(resource->RefCount, 1u);
    EXPECT_EQ(resource->ID, id);
    EXPECT_EQ(static_cast<TByteResource*>(resource)->Byte, 'a');
    EXPECT_EQ(System.LoadResource("One.Geom"), resource);
    EXPECT_EQ(resource->RefCount, 2u);
    System.ReleaseResource(resource);
    EXPECT_EQ(resource->RefCount, 1u);
    EXPECT_EQ(TByteResource::Living, 1);
    System.ReleaseResource(resource);
    EXPECT_EQ(TByteResource::Living, 0);
    resource = System.LoadResource(id);
    EXPECT_EQ(resource->RefCount, 1u);
    System.ReleaseResource(resource);
}

TEST_F(ResourceSystem, IDToStrNamesResources)
{
    TString name;
    TResourceSystem::IDToStr(Add("Named.bvh", Good), name);
    EXPECT_EQ(Text(name), "Named.bvh");
    TResourceSystem::IDToStr(0xDEADBEE2, name);
    EXPECT_EQ(Text(name), "UKID deadbee2");
}

TEST_F(ResourceSystem, EmptyNameHasTheHashsStart)
{
    EXPECT_EQ(StrToID(""), 0xBFE47DACu ^ 0x1A2B3C4Du);
}

TEST_F(ResourceSystem, AddDirectoryWalksAllButHiddenDirectories)
{
    for (const char* directory : {"sub", "sub/deep", ".hidden"})
        std::filesystem::create_directory(Folder.Path(directory));
    for (const char* leaf : {"a.matbank", "b.GEOM", "c.bvh", "d.txt", "sub/e.geom", "sub/deep/f.geom",
                             ".hidden/g.geom", ".h.geom", "h.custom"})
        WriteBytes(Folder.Path(leaf), Good);
    System.AddExtension("CUSTOM");
    System.AddDirectory(Folder.GetFolder().c_str());
    for (const char* name : {"a.matbank", "b.geom", "c.bvh", "e.geom", "f.geom", ".h.geom", "h.custom"})
        EXPECT_TRUE(Holds(name)) << name;
    for (const char* name : {"d.txt", "g.geom"})
        EXPECT_FALSE(Holds(name)) << name;
}

TEST_F(ResourceSystem, AddDirectoryTakesEitherSeparatorAndMissingDirectories)
{
    std::filesystem::create_directory(Folder.Path("sub"));
    WriteBytes(Folder.Path("sub/a.geom"), Good);
    System.AddDirectory((Folder.GetFolder() + "\\sub/").c_str());
    EXPECT_TRUE(Holds("a.geom"));
    System.AddDirectory(Folder.Path("nothing").c_str());
}

TEST_F(ResourceSystem, SecondFileOfANameAsserts)
{
    std::filesystem::create_directory(Folder.Path("sub"));
    System.AddResource("x/one.geom");
    EXPECT_EQ(AssertionOf([&] { System.AddResource("y/ONE.geom"); }),
              "Resources.find(id) == Resources.end() : Resource ONE.geom already exists in system (existing "
              "path=x/one.geom, new path=y/ONE.geom)");
}

TEST_F(ResourceSystem, SecondFileOfANameThatAWalkMeetsAsserts)
{
    std::filesystem::create_directory(Folder.Path("sub"));
    WriteBytes(Folder.Path("one.geom"), Good);
    WriteBytes(Folder.Path("sub/ONE.geom"), Good);
    const std::string folder = Folder.GetFolder() + "/";
    EXPECT_EQ(AssertionOf([&] { System.AddDirectory(folder.c_str()); }),
              "Resources.find(id) == Resources.end() : Resource ONE.geom already exists in system (existing "
              "path=" +
                  folder + "one.geom, new path=" + folder + "sub/ONE.geom)");
    EXPECT_TRUE(Holds("one.geom"));
}

TEST_F(ResourceSystem, UnknownExtensionAsserts)
{
    EXPECT_EQ(AssertionOf([&] { System.AddResource("dir/one.txt"); }),
              "it != ResourceTypes.end() : Unknown resource extension: txt");
    EXPECT_EQ(AssertionOf([&] { System.AddResource("dir/noext"); }),
              "it != ResourceTypes.end() : Unknown resource extension: noext");
    EXPECT_FALSE(Holds("one.txt"));
}

TEST_F(ResourceSystem, UnknownIdAsserts)
{
    EXPECT_EQ(AssertionOf([&] { System.LoadResource(0x1234abu); }),
              "it != Resources.end() : Resource 1234ab does not exist");
    EXPECT_EQ(AssertionOf([&] { System.SaveResource(0x1234abu); }),
              "it != Resources.end() : Resource 1234ab does not exist");
}

TEST_F(ResourceSystem, BrokenFilesAssertAndLeakNothing)
{
    const struct
    {
        const char* Name;
        std::string Bytes;
        const char* Text;
    } table[] = {
        {"empty.geom", "", "header[0] == 0x43525352 : Bad resource header"},
        {"short.geom", "RSRC123", "header[0] == 0x43525352 : Bad resource header"},
        {"magic.geom", "RSRX" + Good.substr(4), "header[0] == 0x43525352 : Bad resource header"},
        {"class.geom", ResourceBytes("TNobodysClass", "a"), "type != -1 : Unknown resource type"},
        {"stranger.geom", ResourceBytes("TTestStranger", "a"), "type != -1 : Unknown resource type"},
        {"abstract.geom", ResourceBytes("TResource", "a"), "type != -1 : Unknown resource type"},
        {"body.geom", ResourceBytes("TByteResource", ""), "0 : Resource body.geom did not import"},
        {"refused.geom", ResourceBytes("TByteResource", "X"), "0 : Resource refused.geom did not import"},
    };
    for (const auto& row : table) {
        const uint32_t id = Add(row.Name, row.Bytes);
        EXPECT_EQ(AssertionOf([&] { System.LoadResource(id); }), row.Text) << row.Name;
        EXPECT_EQ(TByteResource::Living, 0) << row.Name;
        EXPECT_EQ(AssertionOf([&] { System.LoadResource(id); }), row.Text) << row.Name;
    }
    const std::string missing = Folder.Path("missing.geom");
    System.AddResource(missing.c_str());
    EXPECT_EQ(AssertionOf([&] { System.LoadResource("missing.geom"); }),
              "0 : Failed to open " + missing + " for reading");
}

TEST_F(ResourceSystem, SaveWritesHeaderAndBody)
{
    const uint32_t id = Add("one.geom", Good);
    EXPECT_EQ(AssertionOf([&] { System.SaveResource(id); }),
              "it->second.Resource != 0 : " + Text(TString().Format("Resource %x is not loaded", id)));
    TByteResource* resource = static_cast<TByteResource*>(System.LoadResource(id));
    resource->Byte = 'b';
    EXPECT_TRUE(System.SaveResource(id));
    EXPECT_EQ(ReadBytes(Folder.Path("one.geom")), ResourceBytes("TByteResource", "b"));
    resource->Byte = 'X';
    EXPECT_FALSE(System.SaveResource(id));
    EXPECT_EQ(ReadBytes(Folder.Path("one.geom")), ResourceBytes("TByteResource", "b"));
    std::filesystem::remove(Folder.Path("one.geom"));
    std::filesystem::create_directory(Folder.Path("one.geom"));
    EXPECT_EQ(AssertionOf([&] { System.SaveResource(id); }),
              "0 : Failed to open " + Folder.Path("one.geom") + " for writing");
    System.ReleaseResource(resource);
}

TEST_F(ResourceSystem, ReleaseOfAStrangerAsserts)
{
    TByteResource stranger;
    stranger.RefCount = 2;
    System.ReleaseResource(&stranger);
    EXPECT_EQ(AssertionOf([&] { System.ReleaseResource(&stranger); }), "0 : Resource not in resource system");
}
