#include "particles/cindermill/graph/replay/tolddifferences.h"

#include "particles/cindermill/graph/replay/causesearch.h"
#include "particles/cindermill/graph/replay/replayreport.h"

namespace {

class TNoteCauses final : public TCauses
{
public:
    explicit TNoteCauses(const TReplayReport& replay) : Replay(replay) {}
    const void* FindOfValues(const TEffectNode& node) const override
    {
        for (const TReplayNote& note : Replay.GetNotes())
            if (note.MayDiffer && note.Node == &node)
                return &note;
        return nullptr;
    }
    const void* FindOfParticles(const TEffectNode& node, int group) const override
    {
        return Find(&node, group);
    }
    const void* FindOfGroup(int group) const override { return Find(nullptr, group); }

private:
    const void* Find(const TEffectNode* node, int group) const
    {
        for (const TReplayNote& note : Replay.GetNotes())
            if (note.MayDiffer && note.DecidesParticles && note.Node == node && note.Group == group)
                return &note;
        return nullptr;
    }

    const TReplayReport& Replay;
};

} // namespace

const TReplayNote* TToldDifferences::FindReason(const TReplayDifference& difference) const
{
    return static_cast<const TReplayNote*>(TCauseSearch(Schedule, TNoteCauses(Report)).Find(difference));
}
