#include "particles/cindermill/batch/lint/toldcauses.h"

#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/effectnode.h"

namespace {

// What makes a node compute other values on the console.
constexpr const char* const ValueKinds[] = {LK_CONSOLEGRID,   LK_CONSOLENOTHING, LK_CONSOLEPLANE,
                                            LK_CONSOLEFIXED,  LK_CONSOLECOUNT,   LK_CONSOLESUM,
                                            LK_CONSOLEPLACES, LK_NUMBERFIELD,    nullptr};
// What makes a node let other particles live there.
constexpr const char* const PopulationKinds[] = {LK_CONSOLEENDS, LK_CONSOLEORDER, LK_CONSOLEPLACES, nullptr};

constexpr int TriggerInput = 0;

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

class TFindingCauses final : public TCauses
{
public:
    explicit TFindingCauses(const TLintReport& report) : Report(report) {}
    const void* FindOfValues(const TEffectNode& node) const override
    {
        return Report.HasFinding(node, ValueKinds) ? &node : nullptr;
    }
    const void* FindOfParticles(const TEffectNode& node, int) const override
    {
        return Report.HasFinding(node, PopulationKinds) ? &node : nullptr;
    }
    const void* FindOfGroup(int) const override { return nullptr; }

private:
    const TLintReport& Report;
};

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

// Looks for what explains a difference.
class TCauseSearch
{
public:
    TCauseSearch(const TEffectSchedule& schedule, const TCauses& causes) : Schedule(schedule), Causes(causes)
    {
    }
    const void* Find(const TReplayDifference& difference) const
    {
        const TReplayPlace& place = difference.Place;
        if (difference.Kind == DK_STAGE || difference.Kind == DK_UNDEFINED || place.Frame == 0)
            return nullptr;
        const void* cause =
            place.Attribute != -1 && place.Node != nullptr ? FindBehind(*place.Node) : nullptr;
        return cause != nullptr || place.Group == -1 ? cause : FindInGroups(place.Group);
    }

private:
    // Of the node, or of one that leads to it.
    const void* FindBehind(const TEffectNode& node) const
    {
        TPointerMap seen;
        vector<const TEffectNode*> open;
        seen.Insert(&node);
        open.push_back(&node);
        for (int i = 0; i < open.size(); ++i) {
            const TEffectNode* next = open[i];
            if (const void* cause = Causes.FindOfValues(*next))
                return cause;
            for (int port = 0; port < next->GetNumInputs(); ++port)
                if (next->GetInput(port) != nullptr && seen.Insert(next->GetInput(port)->GetSrcNode()))
                    open.push_back(next->GetInput(port)->GetSrcNode());
        }
        return nullptr;
    }
    // Where the particles of a group are others, so are those that they fire.
    const void* FindInGroups(int group) const
    {
        vector<int> open;
        open.push_back(group);
        for (int i = 0; i < open.size(); ++i) {
            if (const void* cause = FindInGroup(open[i]))
                return cause;
            for (int attrib = 0; attrib < Schedule.GetNumAttributes(open[i]); ++attrib) {
                const int parent = Schedule.GetAttributeExternalGroup(open[i], attrib);
                if (parent != -1 && open.index_of(parent) == -1)
                    open.push_back(parent);
            }
        }
        return nullptr;
    }
    const void* FindInGroup(int group) const
    {
        const void* cause = Causes.FindOfGroup(group);
        for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes)
            if (cause == nullptr)
                cause = FindInDecider(*Schedule.GetNode(tied.Node), group);
        return cause;
    }
    // Where an emitter's particles start decides nothing: how many are fired does.
    const void* FindInDecider(const TEffectNode& node, int group) const
    {
        const TNodeType& type = *node.GetNodeType();
        const bool isEmitter = type.Category == TU_EMITTER;
        if (!isEmitter && type.ClassName.Compare("TAge") != 0 && type.ClassName.Compare("TPrune") != 0)
            return nullptr;
        if (const void* cause = Causes.FindOfParticles(node, group))
            return cause;
        if (Schedule.IsTriggerGroup(group))
            return nullptr;
        if (!isEmitter)
            return FindBehind(node);
        const TEffectEdge* trigger =
            node.GetNumInputs() > TriggerInput ? node.GetInput(TriggerInput) : nullptr;
        return trigger != nullptr ? FindBehind(*trigger->GetSrcNode()) : nullptr;
    }

    const TEffectSchedule& Schedule;
    const TCauses& Causes;
};

} // namespace

bool TToldCauses::IsTold(const TReplayDifference& difference) const
{
    return TCauseSearch(Schedule, TFindingCauses(Report)).Find(difference) != nullptr;
}

const TReplayNote* TToldCauses::FindNote(const TReplayDifference& difference) const
{
    return static_cast<const TReplayNote*>(TCauseSearch(Schedule, TNoteCauses(Replay)).Find(difference));
}
