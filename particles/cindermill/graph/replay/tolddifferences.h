#pragma once

#include "particles/cindermill/graph/replay/causesearch.h"

struct TReplayNote;
class TReplayReport;

// The notes of a comparison as what differences come from.
class TNoteCauses final : public TCauses
{
public:
    // Refers to the report, whose notes are those that it has now.
    explicit TNoteCauses(const TReplayReport& report);
    const void* FindOfValues(const TEffectNode& node) const override;
    const void* FindOfParticles(const TEffectNode& node, int group) const override;
    const void* FindOfGroup(int group) const override;

private:
    const void* FindDeciding(int first, int group) const;

    const TReplayReport& Report;
    // The first note for which something may differ, by its node, and of those without a node.
    TPointerMap FirstOfNode;
    int FirstOfGroups = -1;
    // By note, the next of the same node.
    vector<int> NextOfNode;
};

// Which differences of a comparison its notes explain.
class TToldDifferences
{
public:
    // Refers to both, which may not change.
    TToldDifferences(const TEffectSchedule& schedule, const TReplayReport& report)
        : Causes(report), Search(schedule, Causes)
    {
    }
    TToldDifferences(const TToldDifferences&) = delete;
    TToldDifferences& operator=(const TToldDifferences&) = delete;
    // The note that gives a reason, null if none does.
    const TReplayNote* FindReason(const TReplayDifference& difference);

private:
    TNoteCauses Causes;
    TCauseSearch Search;
};
