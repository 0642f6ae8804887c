#pragma once

#include "particles/effectgraph/pointermap.h"
#include "particles/effectgraph/schedule/effectschedule.h"

struct TReplayDifference;

// Causes of one sort. A cause is found by where it may be.
class TCauses
{
public:
    virtual ~TCauses() = default;
    // What makes a node compute something else, and what lets others live: of a node, and of a whole group.
    virtual const void* FindOfValues(const TEffectNode& node) const = 0;
    virtual const void* FindOfParticles(const TEffectNode& node, int group) const = 0;
    virtual const void* FindOfGroup(int group) const = 0;
};

// Looks for what explains a difference. A cause explains the values that hang on its node and, where it
// decides which particles there are, all values of its group and of those that the group fires. Nothing
// explains what stands in the file before any frame, nor what nothing writes.
class TCauseSearch
{
public:
    // Refers to both, which may not change while it is used.
    TCauseSearch(const TEffectSchedule& schedule, const TCauses& causes) : Schedule(schedule), Causes(causes)
    {
    }
    // Null for nothing.
    const void* Find(const TReplayDifference& difference);

private:
    const void* FindBehind(const TEffectNode& node);
    const void* FindInGroups(int group);
    const void* FindInGroup(int group);
    const void* FindInDecider(const TEffectNode& node, int group);

    const TEffectSchedule& Schedule;
    const TCauses& Causes;
    // Nodes that have no cause, nor lead back to one. What is found out of one serves for all that follow: a
    // graph may be as long as it likes.
    TPointerMap Barren;
    // Groups whose nodes were asked, none of which decides for a cause.
    TPointerMap BarrenGroups;
};
