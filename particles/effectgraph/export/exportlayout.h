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
    bool IsWrittenFirst(int group, int attrib) const;

    // What the group's particles get at their birth from the group that fires it.
    void AddEventPayload(int group);
    bool IsPayload(int group, int attrib) const;
    const TExportAttribute& GetSupplier(int group, int attrib) const;
    void UnpackPayload(int group, int attrib, int offset);
    void ZeroMissingRows(int group, int attrib);
    void MarkPayload(int group, int attrib);

    const TEffectSchedule& Schedule;
    vector<TExportGroup>& Groups;
};
