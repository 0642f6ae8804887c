#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

class TDocument;
class TEffectSchedule;

// What a group takes of what it may.
struct TGroupBudget
{
    int Group = 0;
    TString Name;
    // Without them it is the one that runs once per effect, whose code takes its part all the same.
    bool HasParticles = true;
    int Alive = 0;
    int Capacity = 0;
    // The most that were alive since the start.
    int Peak = 0;
    // The most that were born in one frame since the last look, and what a frame may bring.
    int Born = 0;
    int MaxBorn = 0;
    // Machine rows of the phase that needs more of them.
    int Rows = 0;
    // Of the phases at birth and in each frame, in kilobytes.
    int Program[2] = {};
    int Workspace[2] = {};
    bool operator==(const TGroupBudget& rhs) const = default;
};

// What a running effect takes, group by group, and what an export of it would.
class TPreviewBudget
{
public:
    static constexpr int MaxRows = 64;

    // Once in an idle pass, behind the frames, whether anybody looks or not: the peaks are those of all.
    void Sample(TDocument& document);
    // For who looks, at a tick count. True if something else is to be shown. Frame costs are milliseconds.
    bool Refresh(TDocument& document, uint32_t now, float runCost, float drawCost);

    const vector<TGroupBudget>& GetGroups() const { return Groups; }
    float GetRunCost() const { return RunCost.Shown; }
    float GetDrawCost() const { return DrawCost.Shown; }
    // Of the exported file; -1 if it cannot be exported.
    int GetNumBytes() const { return NumBytes; }

private:
    // As a person can read it.
    struct TCost
    {
        bool Take(float cost);
        float Last = 0;
        float Shown = 0;
    };

    struct TPeaks
    {
        int Alive = 0;
        int Born = 0;
    };

    void MeasureExport(TDocument& document);
    bool IsExportStale(const TDocument& document) const;
    void FillGroups(TDocument& document, vector<TGroupBudget>& groups);
    // What is known of it without the engine.
    TGroupBudget GetExported(int group) const;
    void AddTriggers(const TEffectSchedule& schedule, vector<TGroupBudget>& groups) const;

    vector<TGroupBudget> Groups;
    vector<TPeaks> Peaks;
    unsigned PeakStart = 0;
    TCost RunCost;
    TCost DrawCost;
    int NumBytes = -1;
    // By group of the schedule, as exported.
    vector<TGroupBudget> Exported;
    unsigned ExportStart = 0;
    unsigned ExportRevision = 0;
    bool WasMeasured = false;
    // The last revision seen, and since when it stands.
    unsigned SeenRevision = 0;
    uint32_t SeenSince = 0;
    uint32_t LastRefresh = 0;
    bool WasRefreshed = false;
};
