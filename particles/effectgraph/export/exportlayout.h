#pragma once

#include "particles/effectgraph/export/exportresult.h"
#include "particles/effectgraph/schedule/effectschedule.h"

// Makes an export's groups from a schedule, before any node speaks: their rows, and the commands that give
// rows their first values.
class TExportLayout
{
public:
    // Refers to both.
    TExportLayout(const TEffectSchedule& schedule, TExportResult& result);
    // Once, into an empty result.
    void Lay();

private:
    void LayRows(int group);
    void AddInitialValues(int group);
    int FindFirstWriter(int group, int attrib) const;

    const TEffectSchedule& Schedule;
    vector<TExportGroup>& Groups;
};
