#include "particles/cindermill/graph/replay/differencesource.h"

#include "particles/cindermill/graph/replay/birthsource.h"
#include "particles/cindermill/graph/replay/classnotes.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/schedule/effectschedule.h"

namespace {

// Whether it is told to differ, wherever it stands.
bool IsSuspect(const TNodeType& type)
{
    return GetConsoleFate(type) != CF_ALIKE;
}

class TSourceSearch
{
public:
    TSourceSearch(const TEffectSchedule& schedule, TReplayReport& report) : Schedule(schedule), Report(report)
    {
    }
    void Run()
    {
        for (TReplayDifference& difference : Report.GetDifferences())
            if (difference.Place.Node == nullptr)
                difference.Place.Node = difference.Place.Attribute != -1
                                            ? FindSource(difference.Place)
                                            : FindBirthNode(Schedule, difference.Place.Group);
    }

private:
    struct TStep
    {
        int Group;
        int Attribute;
        bool operator==(const TStep& rhs) const = default;
    };

    // From value to value that differs, the nearest first: the first node that is told to differ, or the one
    // farthest back.
    const TEffectNode* FindSource(const TReplayPlace& place) const
    {
        vector<TStep> steps;
        steps.push_back(TStep{place.Group, place.Attribute});
        const TEffectNode* node = nullptr;
        for (int i = 0; i < steps.size(); ++i) {
            const TStep step = steps[i];
            const TEffectNode* writer = FindWriter(step);
            if (writer != nullptr)
                node = writer;
            if (node != nullptr && IsSuspect(*node->GetNodeType()))
                return node;
            AddSupplier(steps, step, place.Frame);
            for (const TTiedNode& tied : Schedule.GetGroup(step.Group).TiedNodes)
                if (tied.Outputs.index_of(step.Attribute) != -1)
                    AddInputs(steps, step.Group, tied, place.Frame);
        }
        return node;
    }

    // The last that writes it, a suspect ahead of others; else the first that has it.
    const TEffectNode* FindWriter(const TStep& step) const
    {
        const TEffectNode* reader = nullptr;
        const TEffectNode* writer = nullptr;
        for (const TTiedNode& tied : Schedule.GetGroup(step.Group).TiedNodes) {
            const TEffectNode* node = Schedule.GetNode(tied.Node);
            const bool writes = tied.Outputs.index_of(step.Attribute) != -1;
            if (writes && IsSuspect(*node->GetNodeType()))
                return node;
            if (writes)
                writer = node;
            else if (reader == nullptr && tied.Inputs.index_of(step.Attribute) != -1)
                reader = node;
        }
        return writer != nullptr ? writer : reader;
    }

    bool Differs(const TStep& step, int frame) const
    {
        for (const TReplayDifference& difference : Report.GetDifferences())
            if (difference.Place.Group == step.Group && difference.Place.Attribute == step.Attribute &&
                difference.Place.Frame <= frame)
                return true;
        return false;
    }

    void AddStep(vector<TStep>& steps, const TStep& step, int frame) const
    {
        if (steps.index_of(step) == -1 && Differs(step, frame))
            steps.push_back(step);
    }
    // What births take from elsewhere is not compared where it is not kept.
    void AddSupplier(vector<TStep>& steps, const TStep& step, int frame) const
    {
        const int parent = Schedule.GetAttributeExternalGroup(step.Group, step.Attribute);
        if (parent != -1)
            AddStep(steps, TStep{parent, Schedule.GetAttributeExternalAttrib(step.Group, step.Attribute)},
                    frame);
    }
    void AddInputs(vector<TStep>& steps, int group, const TTiedNode& tied, int frame) const
    {
        for (const int attrib : tied.Inputs) {
            if (attrib == -1)
                continue;
            AddStep(steps, TStep{group, attrib}, frame);
            AddSupplier(steps, TStep{group, attrib}, frame);
        }
    }

    const TEffectSchedule& Schedule;
    TReplayReport& Report;
};

} // namespace

void FindDifferenceSources(const TEffectSchedule& schedule, TReplayReport& report)
{
    TSourceSearch(schedule, report).Run();
}
