#include "particles/cindermill/batch/lint/lintgraph.h"

#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/effectgraph/effectgraph.h"

namespace {

bool IsStage(const TEffectNode& node)
{
    return node.GetNodeType()->Category == TU_RENDER;
}

bool HasOutputEdges(const TEffectNode& node)
{
    for (int o = 0; o < node.GetNumOutputs(); ++o)
        if (node.GetNumOutputEdges(o) > 0)
            return true;
    return false;
}

// The nodes that lead to this one, without it.
void GatherSources(const TEffectNode& node, TPointerMap& found, vector<const TEffectNode*>& sources)
{
    vector<const TEffectNode*> open;
    open.push_back(&node);
    while (!open.empty()) {
        const TEffectNode* last = open.back();
        open.pop_back();
        for (int i = 0; i < last->GetNumInputs(); ++i) {
            const TEffectEdge* edge = last->GetInput(i);
            if (edge == nullptr || !found.Insert(edge->GetSrcNode()))
                continue;
            open.push_back(edge->GetSrcNode());
            sources.push_back(edge->GetSrcNode());
        }
    }
}

} // namespace

void TLintGraph::MarkUseful(const TEffectNode& node)
{
    if (!Useful.Insert(&node))
        return;
    vector<const TEffectNode*> sources;
    GatherSources(node, Useful, sources);
}

// What acts without an output that anything reads.
bool TLintGraph::EndsSomething(const TEffectNode& node, int group) const
{
    if (IsStage(node) || IsClass(node, "TEventTrigger"))
        return true;
    return group != -1 && !Schedule.IsTriggerGroup(group) &&
           (IsClass(node, "TAge") || IsClass(node, "TPrune"));
}

void TLintGraph::FindUseful()
{
    for (int g = 0; g < Schedule.GetNumGroups(); ++g)
        for (int t = 0; t < Schedule.GetNumTiedNodes(g); ++t) {
            const TEffectNode& node = *Schedule.GetNode(Schedule.GetTiedNode(g, t));
            if (EndsSomething(node, g))
                MarkUseful(node);
        }
    // Whoever leads to a stage is of use, whatever became of the stage; the effect itself always is.
    for (int n = 0; n < Graph.GetNumNodes(); ++n) {
        const TEffectNode& node = *Graph.GetNode(n);
        if (EndsSomething(node, -1) || node.GetNodeType()->Category == TU_EFFECT)
            MarkUseful(node);
    }
}

void TLintGraph::Tell(TLintReport& report) const
{
    TellUnused(report);
    TellDropped(report);
    TellBypassed(report);
    TellWires(report);
    TellPriorities(report);
}

// Of a chain that leads nowhere its last node is told.
void TLintGraph::TellUnused(TLintReport& report) const
{
    for (int n = 0; n < Graph.GetNumNodes(); ++n) {
        const TEffectNode& node = *Graph.GetNode(n);
        if (IsUseful(node) || HasOutputEdges(node))
            continue;
        TPointerMap found;
        vector<const TEffectNode*> sources;
        GatherSources(node, found, sources);
        int count = 1;
        for (const TEffectNode* source : sources)
            count += IsUseful(*source) ? 0 : 1;
        TFinding& finding =
            count > 1
                ? report.AddNode(LK_GRAPHUNUSED, node, -1,
                                 "%s reaches no render stage, and with it %d nodes that lead to it alone",
                                 GetNodeName(node).Print(), count - 1)
                : report.AddNode(LK_GRAPHUNUSED, node, -1, "%s reaches no render stage",
                                 GetNodeName(node).Print());
        AddNumber(finding, "nodes", count);
    }
}

// Each stage that was dropped, and what else ends a chain; where none was, what leads to others and belongs
// nowhere. A stage without particles may take with it all that it shares a source of values with.
void TLintGraph::TellDropped(TLintReport& report) const
{
    TPointerMap told;
    bool found = false;
    for (int pass = 0; pass < 2 && !found; ++pass)
        for (int n = 0; n < Graph.GetNumNodes(); ++n) {
            const TEffectNode& node = *Graph.GetNode(n);
            if (!IsUseful(node) || report.FindGroup(node) != -1 || told.Has(&node) ||
                node.GetNodeType()->Category == TU_EFFECT || (pass == 0 && HasOutputEdges(node)))
                continue;
            found = true;
            told.Insert(&node);
            vector<const TEffectNode*> sources;
            GatherSources(node, told, sources);
            report.AddNode(LK_GRAPHDROPPED, node, -1,
                           "%s belongs to no group: particles need an emitter and a render stage",
                           GetNodeName(node).Print());
        }
}

void TLintGraph::TellBypassed(TLintReport& report) const
{
    for (int n = 0; n < Graph.GetNumNodes(); ++n) {
        const TEffectNode& node = *Graph.GetNode(n);
        if (!node.GetNodeType()->IsBypassed() || !IsUseful(node))
            continue;
        const char* effect = IsStage(node)                                ? "draws nothing"
                             : node.GetNodeType()->Category == TU_EMITTER ? "starts no particles"
                                                                          : "passes its inputs on";
        report.AddNode(LK_GRAPHBYPASSED, node, -1, "%s is bypassed: it %s", GetNodeName(node).Print(),
                       effect);
    }
}

void TLintGraph::TellWires(TLintReport& report) const
{
    for (int e = 0; e < Graph.GetNumEdges(); ++e) {
        const TEffectEdge& edge = *Graph.GetEdge(e);
        const TNodeType& source = *edge.GetSrcNode()->GetNodeType();
        const TNodeType& target = *edge.GetDstNode()->GetNodeType();
        const int from = source.GetOutputType(edge.GetSrcPort());
        const int to = target.GetInputType(edge.GetDstPort());
        if (from == to || !IsUseful(*edge.GetDstNode()))
            continue;
        TString output;
        TString input;
        source.GetOutputName(edge.GetSrcPort(), output);
        target.GetInputName(edge.GetDstPort(), input);
        const bool converts = CanConvertType(from, to);
        report.AddNode(converts ? LK_GRAPHCONVERTS : LK_GRAPHZERO, *edge.GetDstNode(), -1,
                       converts ? "\"%s\" gets the %s \"%s\" of %s as a %s"
                                : "\"%s\" gets nothing of the %s \"%s\" of %s: it cannot become a %s",
                       GetShownName(input).Print(), GetTypeName(from), GetShownName(output).Print(),
                       GetNodeName(*edge.GetSrcNode()).Print(), GetTypeName(to));
    }
}

void TLintGraph::TellPriorities(TLintReport& report) const
{
    vector<const TEffectNode*> stages;
    for (int n = 0; n < Schedule.GetNumNodes(); ++n) {
        const TEffectNode& node = *Schedule.GetNode(n);
        if (IsStage(node) && !node.GetNodeType()->IsBypassed() && report.FindGroup(node) != -1)
            stages.push_back(&node);
    }
    for (int i = 1; i < stages.size(); ++i) {
        const int priority = stages[i]->GetNodeType()->GetRenderPriority();
        int earlier = 0;
        int later = 0;
        const TEffectNode* other = nullptr;
        for (int k = 0; k < stages.size(); ++k) {
            if (k == i || stages[k]->GetNodeType()->GetRenderPriority() != priority)
                continue;
            other = other == nullptr ? stages[k] : other;
            earlier += k < i ? 1 : 0;
            later += k > i ? 1 : 0;
        }
        if (earlier != 1)
            continue;
        TFinding& finding =
            report.AddNode(LK_GRAPHPRIORITY, *stages[i], -1, "%s has the priority %d, as has %s%s",
                           GetNodeName(*stages[i]).Print(), priority, GetNodeName(*other).Print(),
                           later > 0 ? " and others" : "");
        AddNumber(finding, "priority", priority);
        AddNumber(finding, "stages", earlier + later + 1);
    }
}
