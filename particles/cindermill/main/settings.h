#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

class TSettingsStore;

enum TResourceMode
{
    RM_LEAFNAME,
    RM_RELATIVEPATH,
    RM_FULLPATH
};

// What the user has chosen for all documents. Every setter writes the whole store at once, so nothing needs
// saving at exit; setters with a range ignore what lies outside it.
class TSettings
{
public:
    // Does not own the store.
    explicit TSettings(TSettingsStore* store) : Store(store) {}

    void Load();
    void Save();

    // Oldest first.
    const vector<TString>& GetRecentFiles() const { return Values.RecentFiles; }
    // Moves the path to the newest place and drops the oldest beyond the limit.
    void AddRecentFile(const char* path);
    int GetMaxRecentFiles() const { return Values.MaxRecentFiles; }
    void SetMaxRecentFiles(int value);
    int GetCameraMode() const { return Values.CameraMode; }
    void SetCameraMode(int value);
    int GetDebugMode() const { return Values.DebugMode; }
    void SetDebugMode(int value);
    int GetGraphPanButton() const { return Values.GraphPanButton; }
    void SetGraphPanButton(int value);
    int GetTraceParticleSize() const { return Values.TraceParticleSize; }
    void SetTraceParticleSize(int value);
    int GetTraceAttributeSize() const { return Values.TraceAttributeSize; }
    void SetTraceAttributeSize(int value);
    bool GetRetainUndoHistory() const { return Values.RetainUndoHistory; }
    void SetRetainUndoHistory(bool value);
    int GetResourceMode() const { return Values.ResourceMode; }
    void SetResourceMode(int value);
    int GetUpwardsSearchLimit() const { return Values.UpwardsSearchLimit; }
    void SetUpwardsSearchLimit(int value);
    const TString& GetResourcePath() const { return Values.ResourcePath; }
    void SetResourcePath(const char* value);
    int GetAutoCheckUpdate() const { return Values.AutoCheckUpdate; }
    void SetAutoCheckUpdate(int value);
    const TString& GetNodeTypesDirectory() const { return Values.NodeTypesDirectory; }
    void SetNodeTypesDirectory(const char* value);
    bool GetPolicyFailurePreventsExport() const { return Values.PolicyFailurePreventsExport; }
    void SetPolicyFailurePreventsExport(bool value);
    bool GetPolicyMustHaveBoundingBox() const { return Values.PolicyMustHaveBoundingBox; }
    void SetPolicyMustHaveBoundingBox(bool value);
    bool GetPolicyNoMixedBoundingBoxes() const { return Values.PolicyNoMixedBoundingBoxes; }
    void SetPolicyNoMixedBoundingBoxes(bool value);

private:
    struct TValues
    {
        vector<TString> RecentFiles;
        int MaxRecentFiles = 8;
        int CameraMode = 0;
        int DebugMode = 1;
        int GraphPanButton = 0;
        int TraceParticleSize = 100;
        int TraceAttributeSize = 100;
        bool RetainUndoHistory = true;
        int ResourceMode = RM_LEAFNAME;
        int UpwardsSearchLimit = 10;
        TString ResourcePath;
        int AutoCheckUpdate = 1;
        TString NodeTypesDirectory = "NodeTypes";
        bool PolicyFailurePreventsExport = false;
        bool PolicyMustHaveBoundingBox = false;
        bool PolicyNoMixedBoundingBoxes = false;
    };

    void LoadValues();
    void LoadRecentFiles();
    void LoadInt(const char* name, int& value, int min, int max);
    void LoadFlags();
    uint32_t GetFlags() const;
    void SetRanged(int& field, int value, int min, int max);
    void SetInt(int& field, int value);
    void SetFlag(bool& field, bool value);

    TSettingsStore* Store;
    TValues Values;
};
