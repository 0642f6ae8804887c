#pragma once

#include "particles/effectgraph/export/exportgroup.h"
#include "particles/effectgraph/export/rowmaker.h"
#include "particles/effectgraph/schedule/effectschedule.h"

// What fires the particles of a group, and what they get from there: one list, by which the group that writes
// the event and the one that unpacks it go.
struct TGroupEvent
{
    // The group whose process writes the event, -1 for none.
    int Parent = -1;
    // Of the fired group, in its order: each takes all rows of its supplier.
    vector<int> Attribs;
    // How often a parent was met that is not the one before. The list is that of the last.
    int NumChanges = 0;
};

// Once all nodes have told their commands.
TGroupEvent PlanEvent(const TEffectSchedule& schedule, const vector<TExportGroup>& groups, int group);

// The values that a group's particles are born with, beside those of their ports and nodes: what the event
// brings, and zeros where nothing brings anything. They are made ahead of what the nodes do at birth.
class TBirthValues
{
public:
    // Refers to both.
    TBirthValues(const TEffectSchedule& schedule, vector<TExportGroup>& groups, int group);
    // Once.
    void Add(const TGroupEvent& event);

private:
    void UnpackAttribute(int attrib, int offset);
    void AddUnpackCommands(const uint32_t* rows, int count, int offset);
    void MarkAttribute(int attrib);
    void ClearUnsupplied(const TGroupEvent& event);
    void ClearUnwritten(int attrib);
    void ClearRow(int attrib, int row);
    uint32_t GetRow(int attrib, int row) const;

    const TEffectSchedule& Schedule;
    vector<TExportGroup>& Groups;
    int Group;
    TExportGroup& Out;
    TRowMaker Maker;
};
