#include "particles/cindermill/main/previewengine.h"

#include "particles/cindermill/main/resourcelocator.h"
#include "particles/cindermill/main/schedulecomparison.h"
#include "particles/effectgraph/export/exportdata.h"
#include "particles/effectgraph/runcollecting.h"

void TPreviewEngine::SetGoes(TGoes goes, void* data)
{
    Goes = goes;
    GoesData = data;
}

void TPreviewEngine::Clear()
{
    if (Goes != nullptr)
        Goes(GoesData);
    Exec.Clear();
}

bool TPreviewEngine::CreateSchedule(const TEffectGraph& graph, TErrorList& errors)
{
    TEffectSchedule fresh;
    const bool created = RunCollecting(errors, [&] { return fresh.Create(graph, errors); });
    if (!created)
        fresh = TEffectSchedule();
    if (!created || !TScheduleComparison(Schedule, fresh).HaveSameShape())
        Clear();
    Schedule = fresh;
    return created;
}

void TPreviewEngine::DropSchedule()
{
    Clear();
    Schedule = TEffectSchedule();
}

bool TPreviewEngine::Init(TErrorList& errors, bool toolMode)
{
    Clear();
    // What was missing may have come.
    Locator.ForgetMissing();
    const bool inited = RunCollecting(errors, [&] { return Exec.Init(Schedule, errors, toolMode); });
    if (!inited)
        Exec.Clear();
    return inited;
}

bool TPreviewEngine::InitWithoutRender(TErrorList& errors)
{
    Clear();
    Locator.ForgetMissing();
    const bool inited = RunCollecting(errors, [&] { return Exec.InitWithoutRender(Schedule, errors); });
    if (!inited)
        Exec.Clear();
    return inited;
}

bool TPreviewEngine::Update(float dt, TErrorList& errors)
{
    const bool updated = RunCollecting(errors, [&] {
        Exec.Update(dt);
        return true;
    });
    if (!updated)
        Clear();
    return updated;
}

bool TPreviewEngine::WriteExport(const char* path, TErrorList& errors)
{
    return RunCollecting(errors, [&] {
        ASSERT_TEXT(Exec.IsInited(), "EffectExecSchedule.IsInited()");
        TExportData exportData(Schedule);
        return Exec.Export(exportData, errors) && exportData.WriteEfx(path, errors);
    });
}

bool TPreviewEngine::GetExportSize(int& size, TErrorList& errors)
{
    return RunCollecting(errors, [&] {
        TExportData exportData(Schedule);
        if (!Exec.Export(exportData, errors))
            return false;
        size = exportData.GetFileSize();
        return true;
    });
}
