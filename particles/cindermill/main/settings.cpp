#include "particles/cindermill/main/settings.h"

#include "particles/cindermill/main/crashreport.h"
#include "particles/cindermill/main/settingsstore.h"

#include <climits>

namespace {

// A store of this version or later belongs to a later program.
constexpr uint32_t RegVersionLimit = 1;

enum TGeneralFlags : uint32_t
{
    GF_RETAINUNDOHISTORY = 1,
    GF_MUSTHAVEBOUNDINGBOX = 2,
    GF_NOMIXEDBOUNDINGBOXES = 4,
    GF_FAILUREPREVENTSEXPORT = 8
};

} // namespace

void TSettings::Load()
{
    Values = TValues();
    uint32_t version = 0;
    if (Store->Exists() && Store->ReadInt("RegVersion", version) && version < RegVersionLimit)
        LoadValues();
    TCrashReport::SetDebugMode(Values.DebugMode);
}

void TSettings::LoadValues()
{
    LoadRecentFiles();
    LoadInt("MaxRecentFiles", Values.MaxRecentFiles, INT_MIN, INT_MAX);
    Values.MaxRecentFiles = Values.MaxRecentFiles < 1    ? 1
                            : Values.MaxRecentFiles > 16 ? 16
                                                         : Values.MaxRecentFiles;
    LoadInt("CameraMode", Values.CameraMode, 0, 1);
    LoadInt("DebugMode", Values.DebugMode, 0, 2);
    LoadFlags();
    LoadInt("TraceParticleSize", Values.TraceParticleSize, INT_MIN, INT_MAX);
    LoadInt("TraceAttributeSize", Values.TraceAttributeSize, INT_MIN, INT_MAX);
    LoadInt("GraphPanButton", Values.GraphPanButton, INT_MIN, INT_MAX);
    LoadInt("ResourceMode", Values.ResourceMode, 0, 2);
    LoadInt("UpwardsSearchLimit", Values.UpwardsSearchLimit, 0, 64);
    Store->ReadString("ResourcePath", Values.ResourcePath);
    LoadInt("AutoCheckUpdate", Values.AutoCheckUpdate, 0, 2);
    Store->ReadString("NodeTypesDirectory", Values.NodeTypesDirectory);
}

void TSettings::LoadRecentFiles()
{
    TString name;
    TString path;
    while (Store->ReadString(name.Format("RecentFile_%d", Values.RecentFiles.size()), path))
        Values.RecentFiles.push_back(path);
}

void TSettings::LoadInt(const char* name, int& value, int min, int max)
{
    uint32_t stored = 0;
    if (!Store->ReadInt(name, stored))
        return;
    const int number = static_cast<int>(stored);
    if (number >= min && number <= max)
        value = number;
}

void TSettings::LoadFlags()
{
    uint32_t flags = 0;
    if (!Store->ReadInt("GeneralFlags", flags))
        return;
    Values.RetainUndoHistory = (flags & GF_RETAINUNDOHISTORY) != 0;
    Values.PolicyMustHaveBoundingBox = (flags & GF_MUSTHAVEBOUNDINGBOX) != 0;
    Values.PolicyNoMixedBoundingBoxes = (flags & GF_NOMIXEDBOUNDINGBOXES) != 0;
    Values.PolicyFailurePreventsExport = (flags & GF_FAILUREPREVENTSEXPORT) != 0;
}

uint32_t TSettings::GetFlags() const
{
    return (Values.RetainUndoHistory ? GF_RETAINUNDOHISTORY : 0u) |
           (Values.PolicyMustHaveBoundingBox ? GF_MUSTHAVEBOUNDINGBOX : 0u) |
           (Values.PolicyNoMixedBoundingBoxes ? GF_NOMIXEDBOUNDINGBOXES : 0u) |
           (Values.PolicyFailurePreventsExport ? GF_FAILUREPREVENTSEXPORT : 0u);
}

// Names of a once longer list are left in the store: the next load reads them back up to the first gap.
void TSettings::Save()
{
    auto writeInt = [this](const char* name, int value) {
        Store->WriteInt(name, static_cast<uint32_t>(value));
    };
    if (!Store->WriteInt("RegVersion", 0) || !Store->Flush())
        return;
    TString name;
    for (int i = 0; i < Values.RecentFiles.size(); ++i)
        Store->WriteString(name.Format("RecentFile_%d", i), Values.RecentFiles[i]);
    writeInt("MaxRecentFiles", Values.MaxRecentFiles);
    writeInt("CameraMode", Values.CameraMode);
    writeInt("DebugMode", Values.DebugMode);
    Store->WriteInt("GeneralFlags", GetFlags());
    writeInt("TraceParticleSize", Values.TraceParticleSize);
    writeInt("TraceAttributeSize", Values.TraceAttributeSize);
    writeInt("GraphPanButton", Values.GraphPanButton);
    writeInt("ResourceMode", Values.ResourceMode);
    writeInt("UpwardsSearchLimit", Values.UpwardsSearchLimit);
    if (!Values.ResourcePath.IsEmpty())
        Store->WriteString("ResourcePath", Values.ResourcePath);
    else
        Store->Remove("ResourcePath");
    writeInt("AutoCheckUpdate", Values.AutoCheckUpdate);
    Store->WriteString("NodeTypesDirectory", Values.NodeTypesDirectory);
    Store->Flush();
}

void TSettings::AddRecentFile(const char* path)
{
    TString kept(path);
    kept.Replace('/', '\\');
    vector<TString>& files = Values.RecentFiles;
    for (TString* it = files.begin(); it != files.end(); ++it) {
        if (it->Compare(kept) == 0) {
            files.erase(it);
            break;
        }
    }
    files.push_back(kept);
    while (!files.empty() && files.size() > Values.MaxRecentFiles)
        files.erase(files.begin());
    Save();
}

void TSettings::SetRanged(int& field, int value, int min, int max)
{
    if (value < min || value > max)
        return;
    field = value;
    Save();
}

void TSettings::SetInt(int& field, int value)
{
    if (field == value)
        return;
    field = value;
    Save();
}

void TSettings::SetFlag(bool& field, bool value)
{
    if (field == value)
        return;
    field = value;
    Save();
}

// The list is trimmed when the next file joins it.
void TSettings::SetMaxRecentFiles(int value)
{
    SetInt(Values.MaxRecentFiles, value);
}

void TSettings::SetCameraMode(int value)
{
    SetRanged(Values.CameraMode, value, 0, 1);
}

void TSettings::SetDebugMode(int value)
{
    SetRanged(Values.DebugMode, value, 0, 2);
    TCrashReport::SetDebugMode(Values.DebugMode);
}

void TSettings::SetGraphPanButton(int value)
{
    SetInt(Values.GraphPanButton, value);
}

void TSettings::SetTraceParticleSize(int value)
{
    SetInt(Values.TraceParticleSize, value);
}

void TSettings::SetTraceAttributeSize(int value)
{
    SetInt(Values.TraceAttributeSize, value);
}

void TSettings::SetRetainUndoHistory(bool value)
{
    SetFlag(Values.RetainUndoHistory, value);
}

void TSettings::SetResourceMode(int value)
{
    SetRanged(Values.ResourceMode, value, 0, 2);
}

void TSettings::SetUpwardsSearchLimit(int value)
{
    SetRanged(Values.UpwardsSearchLimit, value, 0, 64);
}

void TSettings::SetResourcePath(const char* value)
{
    Values.ResourcePath = value;
    Save();
}

void TSettings::SetAutoCheckUpdate(int value)
{
    SetRanged(Values.AutoCheckUpdate, value, 0, 2);
}

void TSettings::SetNodeTypesDirectory(const char* value)
{
    Values.NodeTypesDirectory = value;
    Save();
}

void TSettings::SetPolicyFailurePreventsExport(bool value)
{
    SetFlag(Values.PolicyFailurePreventsExport, value);
}

void TSettings::SetPolicyMustHaveBoundingBox(bool value)
{
    SetFlag(Values.PolicyMustHaveBoundingBox, value);
}

void TSettings::SetPolicyNoMixedBoundingBoxes(bool value)
{
    SetFlag(Values.PolicyNoMixedBoundingBoxes, value);
}
