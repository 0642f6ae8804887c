#pragma once

#include "particles/cindermill/graph/engine/effectexec.h"

class TErrorList;
class TExecServices;
class TResourceLocator;

// A document's schedule, and the engine that runs it for the preview and for an export. All that a graph can
// make fail runs under a guard here: a failed assertion comes back as one more collected error.
class TPreviewEngine
{
public:
    // Called before the engine is cleared, whether it runs or not, for who shows values of its nodes.
    using TGoes = void (*)(void* data);

    TPreviewEngine(TExecServices& services, TResourceLocator& locator) : Locator(locator), Exec(services) {}
    void SetGoes(TGoes goes, void* data);

    // A schedule of the graph. An engine that runs goes on only if all that it took from the old one holds
    // for it.
    bool CreateSchedule(const TEffectGraph& graph, TErrorList& errors);
    // None, as the graph's types cannot be settled.
    void DropSchedule();
    bool Init(TErrorList& errors, bool toolMode);
    bool InitWithoutRender(TErrorList& errors);
    // One frame. A fault clears the engine.
    bool Update(float dt, TErrorList& errors);
    void Clear();

    bool WriteExport(const char* path, TErrorList& errors);
    // The bytes of the file that an export would write. False with the errors.
    bool GetExportSize(int& size, TErrorList& errors);

    const TEffectSchedule& GetSchedule() const { return Schedule; }
    TEffectExec& GetExec() { return Exec; }
    bool IsInited() const { return Exec.IsInited(); }

private:
    TResourceLocator& Locator;
    TEffectSchedule Schedule;
    TEffectExec Exec;
    TGoes Goes = nullptr;
    void* GoesData = nullptr;
};
