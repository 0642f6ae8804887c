#include "particles/cindermill/interface/options/generaloptions.h"

#include "particles/cindermill/main/settings.h"

namespace {

constexpr const char* CameraModes[] = {"Maya Camera", "Quake Camera", nullptr};
constexpr const char* DebugModes[] = {"no debug", "export mini dump", "export full dump", nullptr};
constexpr const char* PanButtons[] = {"Left", "Middle", "Right", nullptr};

} // namespace

TGeneralOptions::TGeneralOptions(TSettings& settings)
    : TOptionsPage("dialog112", "General"),
      RecentFiles(settings, {&TSettings::GetMaxRecentFiles, &TSettings::SetMaxRecentFiles}),
      CameraMode(settings, {&TSettings::GetCameraMode, &TSettings::SetCameraMode}),
      DebugMode(settings, {&TSettings::GetDebugMode, &TSettings::SetDebugMode}),
      PanButton(settings, {&TSettings::GetGraphPanButton, &TSettings::SetGraphPanButton}),
      TraceParticles(settings, {&TSettings::GetTraceParticleSize, &TSettings::SetTraceParticleSize}),
      TraceAttributes(settings, {&TSettings::GetTraceAttributeSize, &TSettings::SetTraceAttributeSize}),
      RetainUndo(settings, {&TSettings::GetRetainUndoHistory, &TSettings::SetRetainUndoHistory})
{
}

bool TGeneralOptions::CreateControls()
{
    if (!RecentFiles.Create(this, 1016, 1, 16) || !CameraMode.Create(this, 1018, CameraModes) ||
        !DebugMode.Create(this, 1025, DebugModes) ||
        !RetainUndo.Create(this, 1026, "Retain undo history in file saves") ||
        !PanButton.Create(this, 1027, PanButtons) || !TraceParticles.Create(this, 1021, 0, 1000) ||
        !TraceAttributes.Create(this, 1023, 10, 200))
        return false;
    RetainUndo.GetControl().Enable(false);
    struct TRow
    {
        const char* Text;
        TOption& Option;
        TWimpControl& Control;
    };
    const TRow rows[] = {{"Number of recent files:", RecentFiles, RecentFiles.GetControl()},
                         {"Camera mode:", CameraMode, CameraMode.GetControl()},
                         {"Debug mode:", DebugMode, DebugMode.GetControl()},
                         {nullptr, RetainUndo, RetainUndo.GetControl()},
                         {"Graph window pan:", PanButton, PanButton.GetControl()},
                         {"Trace Particle History:", TraceParticles, TraceParticles.GetControl()},
                         {"Trace Attribute History:", TraceAttributes, TraceAttributes.GetControl()}};
    TLabel* label = Labels;
    for (const TRow& row : rows) {
        AddOption(row.Option);
        if (row.Text == nullptr) {
            AddRow(row.Control);
            continue;
        }
        if (!label->Create(this, row.Text, "label"))
            return false;
        AddRow(*label++, row.Control);
    }
    return true;
}
