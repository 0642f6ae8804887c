#pragma once

struct TReplayDifference;
struct TReplayNote;
class TEffectNode;
class TEffectSchedule;
class TPointerMap;
class TReplayReport;

// Which differences of a comparison its notes explain.
class TToldDifferences
{
public:
    // Refers to both.
    TToldDifferences(const TEffectSchedule& schedule, const TReplayReport& report)
        : Schedule(schedule), Report(report)
    {
    }
    // The note that gives a reason, null if none does. A difference of a group's values may hang on any node
    // of it that decides which particles there are, and on whatever leads to these and to its own node.
    const TReplayNote* FindReason(const TReplayDifference& difference) const;

private:
    const TReplayNote* FindBehind(const TEffectNode& node, TPointerMap& seen) const;
    const TReplayNote* FindOfNode(const TEffectNode& node) const;
    const TReplayNote* FindOfGroup(int group) const;

    const TEffectSchedule& Schedule;
    const TReplayReport& Report;
};
