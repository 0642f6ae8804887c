#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/batch/lint/linttheme.h"
#include "particles/effectgraph/schedule/effectschedule.h"

// Values that are no finite numbers, told by the node that made them. What reads such a value writes another:
// only the first is told, not all that follows from it.
class TLintNumbers : public TLintTheme
{
public:
    // Refers to it.
    explicit TLintNumbers(const TEffectSchedule& schedule);

    void BeginRun(TEffectExec& exec) override { Exec = &exec; }
    void NodeRan(int group, int tied, int count) override;
    void NodeRanAtBirth(int group, int tied, int count) override { NodeRan(group, tied, count); }
    void EndFrame() override;
    void Tell(TLintReport& report) override;

private:
    struct TBadValue
    {
        const TEffectNode* Node;
        int Group;
        int Attrib;
        int Component;
        float Value;
        TLintMoment Moment;
    };

    // The attribute's first component that is no finite number, among particles; -1 for none.
    int FindBad(int group, int attrib, int count, float& value) const;
    // Whether it held, or was given, such a value before.
    bool IsSpoilt(int group, int attrib) const;
    bool ReadsSpoilt(int group, const TTiedNode& tied) const;
    bool IsKnown(const TEffectNode& node) const;
    void Spoil(int group, int attrib, const TEffectNode* node, int component, float value);
    const TEffectNode* FindOwner(int group, int attrib) const;

    const TEffectSchedule& Schedule;
    TEffectExec* Exec = nullptr;
    // By group and attribute.
    vector<vector<bool>> Spoilt;
    vector<TBadValue> Bad;
};
