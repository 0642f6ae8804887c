#include "particles/cindermill/interface/particles/previewbudget.h"

#include "library/containers/assertion.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/interface/particles/previewgroups.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/export/exportdata.h"

namespace {

// In milliseconds: between two looks, and from the last edit to what an export of it takes.
constexpr uint32_t Pause = 250;
constexpr uint32_t EditPause = 400;
// Of a new cost in what is shown.
constexpr float Smoothing = 0.25f;

void TakePhase(const TExportPhase& phase, int number, TGroupBudget& budget)
{
    budget.Rows = phase.Rows > budget.Rows ? phase.Rows : budget.Rows;
    budget.Program[number] = phase.Header.ProgramKilobytes;
    budget.Workspace[number] = phase.Header.WorkspaceKilobytes;
}

bool AreEqual(const vector<TGroupBudget>& a, const vector<TGroupBudget>& b)
{
    bool equal = a.size() == b.size();
    for (int i = 0; equal && i < a.size(); ++i)
        equal = a[i] == b[i];
    return equal;
}

} // namespace

// The same as the last time is of no new frame.
bool TPreviewBudget::TCost::Take(float cost)
{
    if (cost == Last)
        return false;
    Last = cost;
    Shown += (cost - Shown) * Smoothing;
    return true;
}

void TPreviewBudget::Sample(TDocument& document)
{
    const TEffectExec& engine = document.GetEngine();
    if (!engine.IsInited())
        return;
    if (PeakStart != engine.GetNumStarts() || Peaks.size() != engine.GetNumGroups()) {
        PeakStart = engine.GetNumStarts();
        Peaks.clear();
        Peaks.resize(engine.GetNumGroups());
    }
    for (int g = 0; g < Peaks.size(); ++g) {
        const int alive = engine.GetNumParticles(g);
        const int born = engine.GetNumBorn(g);
        Peaks[g].Alive = alive > Peaks[g].Alive ? alive : Peaks[g].Alive;
        Peaks[g].Born = born > Peaks[g].Born ? born : Peaks[g].Born;
    }
}

bool TPreviewBudget::Refresh(TDocument& document, uint32_t now, float runCost, float drawCost)
{
    if (SeenRevision != document.GetRevision()) {
        SeenRevision = document.GetRevision();
        SeenSince = now;
    }
    if (WasRefreshed && now - LastRefresh < Pause)
        return false;
    LastRefresh = now;
    const bool measured =
        IsExportStale(document) && (!WasRefreshed || now - SeenSince >= EditPause) && !document.IsInStep();
    if (measured)
        MeasureExport(document);
    const bool first = !WasRefreshed;
    WasRefreshed = true;
    vector<TGroupBudget> groups;
    FillGroups(document, groups);
    const bool ran = RunCost.Take(runCost);
    const bool drew = DrawCost.Take(drawCost);
    const bool changed = first || measured || ran || drew || !AreEqual(groups, Groups);
    Groups = groups;
    return changed;
}

bool TPreviewBudget::IsExportStale(const TDocument& document) const
{
    return !WasMeasured || ExportRevision != document.GetRevision();
}

// The schedule that runs is exported, with the values as they stand.
void TPreviewBudget::MeasureExport(TDocument& document)
{
    WasMeasured = true;
    ExportRevision = document.GetRevision();
    NumBytes = -1;
    Exported.clear();
    TEffectExec& engine = document.GetEngine();
    if (!engine.IsInited())
        return;
    TErrorList errors;
    TString text;
    RunGuarded(
        [&] {
            TExportData data(engine.GetSchedule());
            if (!engine.Export(data, errors))
                return;
            for (const TExportGroup& group : data.GetResult().Groups) {
                TGroupBudget budget;
                TakePhase(group.Emission, 0, budget);
                TakePhase(group.Process, 1, budget);
                Exported.push_back(budget);
            }
            NumBytes = data.GetFileSize();
        },
        text);
}

TGroupBudget TPreviewBudget::GetExported(int group) const
{
    TGroupBudget budget;
    if (group < Exported.size())
        budget = Exported[group];
    budget.Group = group;
    return budget;
}

void TPreviewBudget::AddTriggers(const TEffectSchedule& schedule, vector<TGroupBudget>& groups) const
{
    for (int g = 0; g < schedule.GetNumGroups(); ++g) {
        if (!schedule.IsTriggerGroup(g) || schedule.GetNumTiedNodes(g) == 0)
            continue;
        TGroupBudget budget = GetExported(g);
        budget.Name = "Triggers";
        budget.HasParticles = false;
        groups.push_back(budget);
    }
}

void TPreviewBudget::FillGroups(TDocument& document, vector<TGroupBudget>& groups)
{
    const TEffectExec& engine = document.GetEngine();
    if (!engine.IsInited() || engine.GetNumGroups() == 0)
        return;
    const TEffectSchedule& schedule = engine.GetSchedule();
    vector<int> numbers;
    vector<TString> names;
    GetParticleGroups(schedule, numbers, names);
    for (int i = 0; i < numbers.size(); ++i) {
        const int g = numbers[i];
        TGroupBudget budget = GetExported(g);
        budget.Name = names[i];
        budget.Alive = engine.GetNumParticles(g);
        budget.Capacity = engine.GetGroup(g)->GetBufferSize();
        budget.Peak = g < Peaks.size() ? Peaks[g].Alive : 0;
        budget.Born = g < Peaks.size() ? Peaks[g].Born : 0;
        budget.MaxBorn = schedule.GetMaxEmission(g);
        groups.push_back(budget);
    }
    AddTriggers(schedule, groups);
    for (TPeaks& peaks : Peaks)
        peaks.Born = 0;
}
