#pragma once

#include "library/containers/vector.h"
#include "particles/effectgraph/schedule/effectschedule.h"

// Which nodes of a group the commands of one phase stand for, where a command must know it: those that draw
// at random. Commands of one name come in the order of their nodes.
class TCommandPlaces
{
public:
    // Refers to the schedule.
    TCommandPlaces(const TEffectSchedule& schedule, int group, bool isEmission);
    // The next place that stands behind a command of the name; -1 if there is none.
    int Take(uint32_t nameId, int& draw);

private:
    struct TPlace
    {
        uint32_t NameId;
        int Tied;
        int Draw;
    };
    void AddNode(const TEffectSchedule& schedule, int group, int tied);

    vector<TPlace> Places;
    vector<bool> Taken;
};
