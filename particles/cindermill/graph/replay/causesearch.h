#pragma once

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
    // Refers to both.
    TCauseSearch(const TEffectSchedule& schedule, const TCauses& causes) : Schedule(schedule), Causes(causes)
    {
    }
    // Null for nothing.
    const void* Find(const TReplayDifference& difference) const;

private:
    const void* FindBehind(const TEffectNode& node) const;
    const void* FindInGroups(int group) const;
    const void* FindInGroup(int group) const;
    const void* FindInDecider(const TEffectNode& node, int group) const;

    const TEffectSchedule& Schedule;
    const TCauses& Causes;
};
