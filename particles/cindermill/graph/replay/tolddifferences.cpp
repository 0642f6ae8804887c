#include "particles/cindermill/graph/replay/tolddifferences.h"

#include "particles/cindermill/graph/replay/replayreport.h"

// From the last note on, so that the first of each node is found first.
TNoteCauses::TNoteCauses(const TReplayReport& report) : Report(report)
{
    const vector<TReplayNote>& notes = Report.GetNotes();
    NextOfNode.resize(notes.size());
    for (int i = notes.size() - 1; i >= 0; --i) {
        if (!notes[i].MayDiffer)
            continue;
        if (notes[i].Node == nullptr) {
            NextOfNode[i] = FirstOfGroups;
            FirstOfGroups = i;
            continue;
        }
        NextOfNode[i] = FirstOfNode.Find(notes[i].Node);
        FirstOfNode.Remove(notes[i].Node);
        FirstOfNode.Insert(notes[i].Node, i);
    }
}

const void* TNoteCauses::FindOfValues(const TEffectNode& node) const
{
    const int first = FirstOfNode.Find(&node);
    return first != -1 ? &Report.GetNotes()[first] : nullptr;
}

const void* TNoteCauses::FindOfParticles(const TEffectNode& node, int group) const
{
    return FindDeciding(FirstOfNode.Find(&node), group);
}

const void* TNoteCauses::FindOfGroup(int group) const
{
    return FindDeciding(FirstOfGroups, group);
}

const void* TNoteCauses::FindDeciding(int first, int group) const
{
    const vector<TReplayNote>& notes = Report.GetNotes();
    for (int i = first; i != -1; i = NextOfNode[i])
        if (notes[i].DecidesParticles && notes[i].Group == group)
            return &notes[i];
    return nullptr;
}

const TReplayNote* TToldDifferences::FindReason(const TReplayDifference& difference)
{
    return static_cast<const TReplayNote*>(Search.Find(difference));
}
