#include "particles/cindermill/batch/lint/lintbirths.h"

#include "particles/cindermill/batch/lint/lintgraph.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/engine/effectexec.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"

#include <cstring>

TLintBirths::TLintBirths(const TEffectSchedule& schedule, const TLintGraph& graph) : Schedule(schedule)
{
    for (int g = 0; g < schedule.GetNumGroups(); ++g)
        if (!schedule.IsTriggerGroup(g))
            FindValues(g, graph);
}

bool TLintBirths::IsReadInLife(int group, int attrib, const TLintGraph& graph) const
{
    for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes) {
        const int usage = Schedule.GetNodeUsage(tied.Node);
        if (usage != TU_EMITTER && graph.IsUseful(*Schedule.GetNode(tied.Node)) &&
            tied.Inputs.find(attrib) != tied.Inputs.end())
            return true;
    }
    return false;
}

void TLintBirths::FindValues(int group, const TLintGraph& graph)
{
    const vector<TTiedNode>& nodes = Schedule.GetGroup(group).TiedNodes;
    for (int t = 0; t < nodes.size(); ++t) {
        if (Schedule.GetNodeUsage(nodes[t].Node) != TU_EMITTER)
            continue;
        for (const int attrib : nodes[t].Outputs)
            if (attrib != -1 && Schedule.GetAttributeUsage(group, attrib) == TU_EMITTER &&
                IsReadInLife(group, attrib, graph))
                Values.push_back(TValue{group, attrib, t, false, false, {}});
    }
}

void TLintBirths::NodeRanAtBirth(int group, int tied, int count)
{
    if (count == 0)
        return;
    for (TValue& value : Values) {
        if (value.Group != group || value.Tied != tied)
            continue;
        const float* now = Exec->GetGroup(group)->GetAttribute(value.Attrib, TU_EMITTER, 0);
        const size_t size = static_cast<size_t>(GetTypeSize(Schedule.GetAttributeType(group, value.Attrib)));
        if (!value.Seen)
            std::memcpy(value.First, now, size);
        value.Differs = value.Differs || std::memcmp(value.First, now, size) != 0;
        value.Seen = true;
    }
}

void TLintBirths::Tell(TLintReport& report)
{
    for (const TValue& value : Values)
        if (value.Differs)
            report.AddNode(
                LK_CONSOLEBIRTH, *Schedule.GetNode(Schedule.GetTiedNode(value.Group, value.Tied)),
                value.Group,
                "In the preview all living particles read the \"%s\" of the last that was born; on "
                "the console each has its own",
                GetShownName(Schedule.GetAttributeName(value.Group, value.Attrib)).Print());
}
