#include "support/testsupport.h"

#include "particles/cindermill/main/settings.h"
#include "particles/cindermill/main/settingsstore.h"

#include <filesystem>
#include <map>
#include <memory>

#include <stdlib.h>
#include <sys/stat.h>

namespace {

// Keeps values in memory, writes down the names as they are written, and fails when told so.
class TFakeStore : public TSettingsStore
{
public:
    bool Exists() override { return !Ints.empty() || !Strings.empty(); }
    bool ReadInt(const char* name, uint32_t& value) override
    {
        const auto it = Ints.find(name);
        if (it == Ints.end())
            return false;
        value = it->second;
        return true;
    }
    bool ReadString(const char* name, TString& value) override
    {
        const auto it = Strings.find(name);
        if (it == Strings.end())
            return false;
        value = it->second.c_str();
        return true;
    }
    bool WriteInt(const char* name, uint32_t value) override
    {
        Written.push_back(name);
        if (!Fails)
            Ints[name] = value;
        return !Fails;
    }
    bool WriteString(const char* name, const char* value) override
    {
        Written.push_back(name);
        if (!Fails)
            Strings[name] = value != nullptr ? value : "";
        return !Fails;
    }
    void Remove(const char* name) override
    {
        Removed.push_back(name);
        if (!Fails)
            Strings.erase(name);
    }
    bool Flush() override
    {
        ++Flushes;
        return !Fails;
    }

    std::map<std::string, uint32_t> Ints;
    std::map<std::string, std::string> Strings;
    std::vector<std::string> Written;
    std::vector<std::string> Removed;
    int Flushes = 0;
    bool Fails = false;
};

struct TLoaded
{
    TLoaded() { Store.Ints["RegVersion"] = 0; }
    TSettings& Load()
    {
        Settings.Load();
        return Settings;
    }
    TFakeStore Store;
    TSettings Settings{&Store};
};

void ExpectDefaults(const TSettings& settings)
{
    EXPECT_TRUE(settings.GetRecentFiles().empty());
    EXPECT_EQ(settings.GetMaxRecentFiles(), 8);
    EXPECT_EQ(settings.GetCameraMode(), 0);
    EXPECT_EQ(settings.GetDebugMode(), 1);
    EXPECT_EQ(settings.GetGraphPanButton(), 0);
    EXPECT_EQ(settings.GetTraceParticleSize(), 100);
    EXPECT_EQ(settings.GetTraceAttributeSize(), 100);
    EXPECT_TRUE(settings.GetRetainUndoHistory());
    EXPECT_EQ(settings.GetResourceMode(), 0);
    EXPECT_EQ(settings.GetUpwardsSearchLimit(), 10);
    EXPECT_TRUE(settings.GetResourcePath().IsEmpty());
    EXPECT_EQ(settings.GetAutoCheckUpdate(), 1);
    EXPECT_EQ(Text(settings.GetNodeTypesDirectory()), "NodeTypes");
    EXPECT_FALSE(settings.GetPolicyFailurePreventsExport());
    EXPECT_FALSE(settings.GetPolicyMustHaveBoundingBox());
    EXPECT_FALSE(settings.GetPolicyNoMixedBoundingBoxes());
}

std::vector<std::string> RecentFiles(const TSettings& settings)
{
    std::vector<std::string> result;
    for (const TString& path : settings.GetRecentFiles())
        result.push_back(Text(path));
    return result;
}

using TNames = std::vector<std::string>;

} // namespace

TEST(TSettings, DefaultsStandWithoutAStore)
{
    TFakeStore store;
    TSettings settings(&store);
    ExpectDefaults(settings);
    settings.Load();
    ExpectDefaults(settings);
}

TEST(TSettings, WithoutAVersionAllStoredValuesAreIgnored)
{
    TLoaded loaded;
    loaded.Store.Ints = {{"CameraMode", 1}};
    ExpectDefaults(loaded.Load());
    loaded.Store.Strings["RegVersion"] = "0";
    ExpectDefaults(loaded.Load());
}

TEST(TSettings, WithVersionOneAllStoredValuesAreIgnored)
{
    for (const uint32_t version : {1u, 2u, 0xFFFFFFFFu}) {
        TLoaded loaded;
        loaded.Store.Ints["CameraMode"] = 1;
        loaded.Store.Strings["RecentFile_0"] = "a";
        loaded.Store.Ints["RegVersion"] = version;
        ExpectDefaults(loaded.Load());
    }
}

TEST(TSettings, LoadSetsTheDefaultsFirst)
{
    TLoaded loaded;
    loaded.Store.Ints["CameraMode"] = 1;
    EXPECT_EQ(loaded.Load().GetCameraMode(), 1);
    loaded.Store.Ints.erase("CameraMode");
    EXPECT_EQ(loaded.Load().GetCameraMode(), 0);
}

TEST(TSettings, MaxRecentFilesIsClamped)
{
    for (const auto& [stored, expected] :
         {std::pair(0u, 1), std::pair(1u, 1), std::pair(16u, 16), std::pair(17u, 16), std::pair(5u, 5)}) {
        TLoaded loaded;
        loaded.Store.Ints["MaxRecentFiles"] = stored;
        EXPECT_EQ(loaded.Load().GetMaxRecentFiles(), expected) << stored;
    }
}

TEST(TSettings, ValuesOutsideTheirRangeAreIgnoredOnLoad)
{
    const struct
    {
        const char* Name;
        uint32_t Last;
        int (TSettings::*Get)() const;
        int Default;
    } rows[] = {
        {"CameraMode", 1, &TSettings::GetCameraMode, 0},
        {"DebugMode", 2, &TSettings::GetDebugMode, 1},
        {"ResourceMode", 2, &TSettings::GetResourceMode, 0},
        {"UpwardsSearchLimit", 64, &TSettings::GetUpwardsSearchLimit, 10},
        {"AutoCheckUpdate", 2, &TSettings::GetAutoCheckUpdate, 1},
    };
    for (const auto& row : rows) {
        TLoaded loaded;
        for (uint32_t value = 0; value <= row.Last; ++value) {
            loaded.Store.Ints[row.Name] = value;
            EXPECT_EQ((loaded.Load().*row.Get)(), static_cast<int>(value)) << row.Name;
        }
        for (const uint32_t value : {row.Last + 1, 0x80000000u, 0xFFFFFFFFu}) {
            loaded.Store.Ints[row.Name] = value;
            EXPECT_EQ((loaded.Load().*row.Get)(), row.Default) << row.Name;
        }
        // A value of the wrong kind leaves the default.
        loaded.Store.Ints.erase(row.Name);
        loaded.Store.Strings[row.Name] = "1";
        EXPECT_EQ((loaded.Load().*row.Get)(), row.Default) << row.Name;
    }
}

TEST(TSettings, IntegersWithoutARangeAreTakenAsTheyAre)
{
    TLoaded loaded;
    loaded.Store.Ints["TraceParticleSize"] = 0xFFFFFFFF;
    loaded.Store.Ints["TraceAttributeSize"] = 123456;
    loaded.Store.Ints["GraphPanButton"] = 77;
    loaded.Load();
    EXPECT_EQ(loaded.Settings.GetTraceParticleSize(), -1);
    EXPECT_EQ(loaded.Settings.GetTraceAttributeSize(), 123456);
    EXPECT_EQ(loaded.Settings.GetGraphPanButton(), 77);
}

TEST(TSettings, GeneralFlagsHoldFourSwitches)
{
    for (uint32_t flags = 0; flags < 16; ++flags) {
        TLoaded loaded;
        loaded.Store.Ints["GeneralFlags"] = flags | 0x100;
        const TSettings& settings = loaded.Load();
        EXPECT_EQ(settings.GetRetainUndoHistory(), (flags & 1) != 0);
        EXPECT_EQ(settings.GetPolicyMustHaveBoundingBox(), (flags & 2) != 0);
        EXPECT_EQ(settings.GetPolicyNoMixedBoundingBoxes(), (flags & 4) != 0);
        EXPECT_EQ(settings.GetPolicyFailurePreventsExport(), (flags & 8) != 0);
        loaded.Settings.Save();
        EXPECT_EQ(loaded.Store.Ints["GeneralFlags"], flags);
    }
}

TEST(TSettings, StringsAreTakenAsTheyAre)
{
    TLoaded loaded;
    loaded.Store.Strings["ResourcePath"] = "c:\\art";
    loaded.Store.Strings["NodeTypesDirectory"] = "";
    loaded.Load();
    EXPECT_EQ(Text(loaded.Settings.GetResourcePath()), "c:\\art");
    EXPECT_TRUE(loaded.Settings.GetNodeTypesDirectory().IsEmpty());
}

TEST(TSettings, RecentFilesAreReadUpToTheFirstGapWithoutABound)
{
    TLoaded loaded;
    for (int i = 0; i < 20; ++i)
        loaded.Store.Strings["RecentFile_" + std::to_string(i)] = "file" + std::to_string(i);
    EXPECT_EQ(loaded.Load().GetRecentFiles().size(), 20);
    loaded.Store.Strings.erase("RecentFile_3");
    EXPECT_EQ(RecentFiles(loaded.Load()), (TNames{"file0", "file1", "file2"}));
    loaded.Store.Ints["RecentFile_3"] = 5;
    EXPECT_EQ(loaded.Load().GetRecentFiles().size(), 3);
}

TEST(TSettings, SaveWritesEverythingInItsOrder)
{
    TFakeStore store;
    TSettings settings(&store);
    settings.AddRecentFile("a");
    settings.AddRecentFile("b");
    settings.SetResourcePath("base");
    store.Written.clear();
    settings.Save();
    EXPECT_EQ(
        store.Written,
        (TNames{"RegVersion", "RecentFile_0", "RecentFile_1", "MaxRecentFiles", "CameraMode", "DebugMode",
                "GeneralFlags", "TraceParticleSize", "TraceAttributeSize", "GraphPanButton", "ResourceMode",
                "UpwardsSearchLimit", "ResourcePath", "AutoCheckUpdate", "NodeTypesDirectory"}));
    EXPECT_EQ(store.Ints["RegVersion"], 0u);
    EXPECT_EQ(store.Ints["DebugMode"], 1u);
    EXPECT_EQ(store.Strings["RecentFile_1"], "b");
    EXPECT_GT(store.Flushes, 0);
}

TEST(TSettings, AnEmptyResourcePathIsRemovedAndAnEmptyDirectoryIsWritten)
{
    TFakeStore store;
    TSettings settings(&store);
    settings.SetResourcePath("base");
    settings.SetResourcePath("");
    // Otherwise the next start would bring the old one back.
    EXPECT_EQ(store.Strings.count("ResourcePath"), 0u);
    EXPECT_EQ(store.Removed, TNames{"ResourcePath"});
    settings.SetNodeTypesDirectory("");
    EXPECT_EQ(store.Strings.count("NodeTypesDirectory"), 1u);
    EXPECT_EQ(store.Strings["NodeTypesDirectory"], "");
}

TEST(TSettings, WhereTheVersionCannotBeWrittenNothingElseIs)
{
    TFakeStore store;
    store.Fails = true;
    TSettings settings(&store);
    settings.SetCameraMode(1);
    EXPECT_EQ(settings.GetCameraMode(), 1);
    EXPECT_EQ(store.Written, TNames{"RegVersion"});
}

TEST(TSettings, ABadVersionIsOverwrittenByTheNextSave)
{
    TLoaded loaded;
    loaded.Store.Ints["RegVersion"] = 1;
    loaded.Load();
    loaded.Settings.SetCameraMode(1);
    EXPECT_EQ(loaded.Store.Ints["RegVersion"], 0u);
}

TEST(TSettings, StaleRecentFilesStayAndAreReadBack)
{
    TFakeStore store;
    TSettings settings(&store);
    for (const char* name : {"a", "b", "c"})
        settings.AddRecentFile(name);
    settings.SetMaxRecentFiles(1);
    settings.AddRecentFile("d");
    EXPECT_EQ(RecentFiles(settings), TNames{"d"});
    settings.Load();
    EXPECT_EQ(RecentFiles(settings), (TNames{"d", "b", "c"}));
}

TEST(TSettings, SettersIgnoreWhatLiesOutsideTheirRange)
{
    TFakeStore store;
    TSettings settings(&store);
    const struct
    {
        void (TSettings::*Set)(int);
        int (TSettings::*Get)() const;
        int Last;
    } rows[] = {
        {&TSettings::SetCameraMode, &TSettings::GetCameraMode, 1},
        {&TSettings::SetDebugMode, &TSettings::GetDebugMode, 2},
        {&TSettings::SetResourceMode, &TSettings::GetResourceMode, 2},
        {&TSettings::SetUpwardsSearchLimit, &TSettings::GetUpwardsSearchLimit, 64},
        {&TSettings::SetAutoCheckUpdate, &TSettings::GetAutoCheckUpdate, 2},
    };
    for (const auto& row : rows) {
        (settings.*row.Set)(row.Last);
        EXPECT_EQ((settings.*row.Get)(), row.Last);
        store.Written.clear();
        (settings.*row.Set)(row.Last + 1);
        (settings.*row.Set)(-1);
        EXPECT_EQ((settings.*row.Get)(), row.Last);
        EXPECT_TRUE(store.Written.empty());
        (settings.*row.Set)(0);
        EXPECT_EQ((settings.*row.Get)(), 0);
        EXPECT_FALSE(store.Written.empty());
    }
}

TEST(TSettings, SettersWithoutARangeDoNothingWhenNothingChanges)
{
    TFakeStore store;
    TSettings settings(&store);
    settings.SetMaxRecentFiles(settings.GetMaxRecentFiles());
    settings.SetGraphPanButton(settings.GetGraphPanButton());
    settings.SetTraceParticleSize(settings.GetTraceParticleSize());
    settings.SetTraceAttributeSize(settings.GetTraceAttributeSize());
    settings.SetRetainUndoHistory(settings.GetRetainUndoHistory());
    settings.SetPolicyFailurePreventsExport(settings.GetPolicyFailurePreventsExport());
    settings.SetPolicyMustHaveBoundingBox(settings.GetPolicyMustHaveBoundingBox());
    settings.SetPolicyNoMixedBoundingBoxes(settings.GetPolicyNoMixedBoundingBoxes());
    EXPECT_TRUE(store.Written.empty());
}

TEST(TSettings, EverySetterWritesTheStoreAtOnce)
{
    TFakeStore store;
    TSettings settings(&store);
    settings.SetGraphPanButton(2);
    EXPECT_EQ(store.Ints["GraphPanButton"], 2u);
    settings.SetTraceParticleSize(5);
    EXPECT_EQ(store.Ints["TraceParticleSize"], 5u);
    settings.SetTraceAttributeSize(6);
    EXPECT_EQ(store.Ints["TraceAttributeSize"], 6u);
    settings.SetMaxRecentFiles(3);
    EXPECT_EQ(store.Ints["MaxRecentFiles"], 3u);
    settings.SetRetainUndoHistory(false);
    EXPECT_EQ(store.Ints["GeneralFlags"], 0u);
    settings.SetPolicyMustHaveBoundingBox(true);
    EXPECT_EQ(store.Ints["GeneralFlags"], 2u);
    settings.SetPolicyNoMixedBoundingBoxes(true);
    EXPECT_EQ(store.Ints["GeneralFlags"], 6u);
    settings.SetPolicyFailurePreventsExport(true);
    EXPECT_EQ(store.Ints["GeneralFlags"], 14u);
    settings.SetResourcePath("r");
    EXPECT_EQ(store.Strings["ResourcePath"], "r");
    settings.SetNodeTypesDirectory("n");
    EXPECT_EQ(store.Strings["NodeTypesDirectory"], "n");
}

TEST(TSettings, ARecentFileMovesToTheNewestPlace)
{
    TFakeStore store;
    TSettings settings(&store);
    settings.AddRecentFile("dir/a");
    settings.AddRecentFile("b");
    settings.AddRecentFile("DIR\\A");
    EXPECT_EQ(RecentFiles(settings), (TNames{"b", "DIR\\A"}));
}

TEST(TSettings, TheListIsTrimmedWhenTheNextFileJoins)
{
    TFakeStore store;
    TSettings settings(&store);
    for (const char* name : {"a", "b", "c", "d"})
        settings.AddRecentFile(name);
    settings.SetMaxRecentFiles(2);
    EXPECT_EQ(settings.GetRecentFiles().size(), 4);
    settings.AddRecentFile("e");
    EXPECT_EQ(RecentFiles(settings), (TNames{"d", "e"}));
    settings.SetMaxRecentFiles(-1);
    settings.AddRecentFile("f");
    EXPECT_TRUE(settings.GetRecentFiles().empty());
}

namespace {

class SettingsFile : public testing::Test
{
protected:
    std::unique_ptr<TSettingsStore> Open() const
    {
        return std::unique_ptr<TSettingsStore>(OpenSettingsFile(Folder.Path("settings.ini").c_str()));
    }
    TTempFolder Folder;
};

} // namespace

TEST_F(SettingsFile, KeepsBothKindsOfValue)
{
    EXPECT_FALSE(Open()->Exists());
    {
        const auto store = Open();
        EXPECT_TRUE(store->WriteInt("Int", 0xFFFFFFFF));
        EXPECT_TRUE(store->WriteString("String", "c:\\a, \"b\"; \xC3\xA9=%41"));
        EXPECT_TRUE(store->WriteString("Empty", nullptr));
        EXPECT_TRUE(store->Flush());
    }
    const auto store = Open();
    EXPECT_TRUE(store->Exists());
    uint32_t number = 0;
    EXPECT_TRUE(store->ReadInt("Int", number));
    EXPECT_EQ(number, 0xFFFFFFFFu);
    TString text;
    EXPECT_TRUE(store->ReadString("String", text));
    EXPECT_EQ(Text(text), "c:\\a, \"b\"; \xC3\xA9=%41");
    text = "left over";
    EXPECT_TRUE(store->ReadString("Empty", text));
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_FALSE(store->ReadInt("String", number));
    EXPECT_FALSE(store->ReadInt("Missing", number));
    EXPECT_FALSE(store->ReadString("Missing", text));
}

TEST_F(SettingsFile, AStringHoldsAtMostFourThousandAndNinetyFiveBytesAndItsZero)
{
    {
        const auto store = Open();
        store->WriteString("Longest", std::string(4095, 'x').c_str());
        store->WriteString("Longer", std::string(4096, 'x').c_str());
    }
    const auto store = Open();
    TString text;
    EXPECT_TRUE(store->ReadString("Longest", text));
    EXPECT_EQ(text.Length(), 4095);
    EXPECT_FALSE(store->ReadString("Longer", text));
    EXPECT_EQ(text.Length(), 4095);
}

TEST_F(SettingsFile, WhatIsNoStringIsTakenForMissing)
{
    WriteBytes(Folder.Path("settings.ini"), "[General]\nRegVersion=0\nRecentFile_0=/a\nRecentFile_1=/b, /c\n"
                                            "RecentFile_2=/d\nNodeTypesDirectory=one, two\n");
    const auto store = Open();
    TSettings settings(store.get());
    settings.Load();
    EXPECT_EQ(settings.GetRecentFiles().size(), 1);
    EXPECT_EQ(Text(settings.GetNodeTypesDirectory()), "NodeTypes");
}

TEST_F(SettingsFile, SettingsComeBack)
{
    {
        const auto store = Open();
        TSettings settings(store.get());
        settings.Load();
        settings.AddRecentFile("/home/artist/a, b.effect");
        settings.SetCameraMode(1);
        settings.SetUpwardsSearchLimit(64);
        settings.SetRetainUndoHistory(false);
        settings.SetResourcePath("\\art\\base");
        settings.SetNodeTypesDirectory("types");
    }
    const auto store = Open();
    TSettings settings(store.get());
    settings.Load();
    EXPECT_EQ(RecentFiles(settings), TNames{"\\home\\artist\\a, b.effect"});
    EXPECT_EQ(settings.GetCameraMode(), 1);
    EXPECT_EQ(settings.GetUpwardsSearchLimit(), 64);
    EXPECT_FALSE(settings.GetRetainUndoHistory());
    EXPECT_EQ(Text(settings.GetResourcePath()), "\\art\\base");
    EXPECT_EQ(Text(settings.GetNodeTypesDirectory()), "types");
}

TEST_F(SettingsFile, AResourcePathThatWasEmptiedStaysEmpty)
{
    {
        const auto store = Open();
        TSettings settings(store.get());
        settings.Load();
        settings.SetResourcePath("\\art\\base");
        settings.SetResourcePath("");
    }
    const auto store = Open();
    TSettings settings(store.get());
    settings.Load();
    EXPECT_TRUE(settings.GetResourcePath().IsEmpty());
}

TEST_F(SettingsFile, ASettingIsOnTheDiscAtOnce)
{
    const auto store = Open();
    TSettings settings(store.get());
    settings.SetCameraMode(1);
    const auto other = Open();
    uint32_t value = 0;
    EXPECT_TRUE(other->ReadInt("CameraMode", value));
    EXPECT_EQ(value, 1u);
}

TEST_F(SettingsFile, AStoreThatCannotBeWrittenIsSilent)
{
    // A folder stands where the file should be.
    std::filesystem::create_directory(Folder.Path("settings.ini"));
    const auto store = Open();
    TSettings settings(store.get());
    settings.Load();
    ExpectDefaults(settings);
    EXPECT_EQ(LogOf([&] { settings.SetCameraMode(1); }), "");
    EXPECT_EQ(settings.GetCameraMode(), 1);
}

TEST_F(SettingsFile, WhatIsNoRegularFileIsToldAndNotWrittenTo)
{
    std::filesystem::create_symlink("/dev/zero", Folder.Path("settings.ini"));
    std::unique_ptr<TSettingsStore> store;
    EXPECT_EQ(LogOf([&] { store = Open(); }),
              "The settings are not used: " + Folder.Path("settings.ini") + ": It is no regular file\n");
    EXPECT_FALSE(store->Exists());
    EXPECT_FALSE(store->WriteInt("CameraMode", 1));
    EXPECT_FALSE(store->WriteString("NodeTypesDirectory", "x"));
    EXPECT_FALSE(store->Flush());
    EXPECT_TRUE(std::filesystem::is_symlink(Folder.Path("settings.ini")));
}

TEST_F(SettingsFile, TheProgramsOwnLieUnderTheConfigurationDirectory)
{
    const char* before = getenv("XDG_CONFIG_HOME");
    const std::string old = before != nullptr ? before : "";
    setenv("XDG_CONFIG_HOME", Folder.GetFolder().c_str(), 1);
    // The organisation's file is another, which may be anything.
    ASSERT_EQ(mkfifo(Folder.Path("TolvTools.conf").c_str(), 0600), 0);
    {
        const std::unique_ptr<TSettingsStore> store(OpenSettingsStore());
        EXPECT_FALSE(store->Exists());
        EXPECT_TRUE(store->WriteInt("CameraMode", 1));
        EXPECT_TRUE(store->Flush());
    }
    if (before != nullptr)
        setenv("XDG_CONFIG_HOME", old.c_str(), 1);
    else
        unsetenv("XDG_CONFIG_HOME");
    EXPECT_NE(ReadBytes(Folder.Path("TolvTools/VORCindermill.conf")).find("CameraMode=1"), std::string::npos);
}

TEST_F(SettingsFile, ADamagedFileGivesTheDefaults)
{
    WriteBytes(Folder.Path("settings.ini"), "[General]\nRegVersion=zero\nCameraMode=1\n\x01\xFF=\n[");
    const auto store = Open();
    TSettings settings(store.get());
    settings.Load();
    ExpectDefaults(settings);
}
