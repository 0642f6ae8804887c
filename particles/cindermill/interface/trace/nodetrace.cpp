#include "particles/cindermill/interface/trace/nodetrace.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/engine/attributetrace.h"
#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/usage.h"
#include "particles/effectgraph/valuetype.h"

#include <cmath>

namespace {

constexpr const char* ColourLabels[] = {"R", "G", "B", "A"};
constexpr const char* Labels[] = {"X", "Y", "Z", "qX", "qY", "qZ", "qW"};

void AppendText(vector<char>& result, const char* text)
{
    for (; *text != 0; ++text)
        Append(result, *text);
}

} // namespace

const TNodeType& TNodeTrace::GetType() const
{
    return *Node.GetNodeType();
}

// Null where the node has no values to show: a node that was added is scheduled with its first wire only.
TEffectExecNode* TNodeTrace::FindExecNode()
{
    const TEffectSchedule& schedule = Doc.GetSchedule();
    TEffectExec& engine = Doc.GetEngine();
    if (!schedule.IsCreated() || !engine.IsInited() || GetType().GetNumOutputs() == 0)
        return nullptr;
    for (int i = 0; i < schedule.GetNumNodes(); ++i) {
        if (schedule.GetNode(i) != &Node)
            continue;
        TEffectExecNode* node = engine.GetExecNode(i);
        if (node == nullptr || node->GetNumTraces() == 0)
            return nullptr;
        Usage = schedule.GetNodeUsage(i);
        return node;
    }
    return nullptr;
}

bool TNodeTrace::Connect()
{
    Disconnect();
    ExecNode = FindExecNode();
    if (ExecNode == nullptr)
        return false;
    ExecNode->SetTracing(true);
    CurrentParticle = 0;
    SelectPlace(0);
    return true;
}

void TNodeTrace::Disconnect()
{
    if (ExecNode != nullptr)
        ExecNode->SetTracing(false);
    LetGo();
}

void TNodeTrace::LetGo()
{
    ExecNode = nullptr;
    Traces.clear();
    Place = 0;
    CurrentParticle = 0;
    LastParticle = 0;
}

int TNodeTrace::GetNumPlaces() const
{
    return ExecNode != nullptr ? ExecNode->GetNumTraces() : 0;
}

int TNodeTrace::GetPlaceGroup(int place) const
{
    return ExecNode->GetOutputTraceGroup(place);
}

void TNodeTrace::SelectPlace(int place)
{
    ASSERT(place >= 0 && place < GetNumPlaces());
    Place = place;
    const int ports = GetType().GetNumOutputs();
    Traces.resize(ports);
    for (int p = 0; p < ports; ++p)
        Traces[p] = &ExecNode->GetOutputTrace(place, p);
    LastParticle = FindLastParticle();
    SelectParticle(CurrentParticle);
}

// What makes particles, and what runs once for the effect, has one slot.
int TNodeTrace::FindLastParticle() const
{
    if (Usage == TU_EMITTER)
        return 0;
    const TEffectSchedule& schedule = Doc.GetSchedule();
    const int group = GetPlaceGroup(Place);
    const int count = schedule.GetParticleCount(group);
    return schedule.IsTriggerGroup(group) || count < 1 ? 0 : count - 1;
}

void TNodeTrace::SelectParticle(int particle)
{
    CurrentParticle = particle >= 0 && particle <= GetLastParticle() ? particle : 0;
}

const TString& TNodeTrace::GetPortName(int port) const
{
    return GetType().GetOutput(port).Name;
}

int TNodeTrace::GetNumComponents(int port) const
{
    return Traces[port]->GetWidth();
}

const char* TNodeTrace::GetLabel(int port, int component) const
{
    return GetType().GetOutputType(port) == TY_COLOUR ? ColourLabels[component] : Labels[component];
}

int TNodeTrace::GetNumEntries(int port) const
{
    return Traces[port]->GetNumEntries(CurrentParticle);
}

float TNodeTrace::GetEntry(int port, int entry, int component) const
{
    return Traces[port]->GetEntry(CurrentParticle, entry, component);
}

void TNodeTrace::GetRange(int port, float& min, float& max, uint32_t mask) const
{
    Traces[port]->GetRange(CurrentParticle, min, max, mask);
}

bool TNodeTrace::TakeTouched(int port)
{
    const bool touched = Traces[port]->IsTouched();
    Traces[port]->ClearTouched();
    return touched;
}

void TNodeTrace::FormatValue(TString& text, float value)
{
    // What is no number may carry a sign, which means nothing.
    if (std::isnan(value))
        text = "nan";
    else
        text.Format("%.4f", static_cast<double>(value));
}

void TNodeTrace::GetTable(int port, TString& text) const
{
    vector<char> table;
    AppendText(table, "Entry");
    const int components = GetNumComponents(port);
    for (int c = 0; c < components; ++c) {
        AppendText(table, "\t");
        AppendText(table, GetLabel(port, c));
    }
    AppendText(table, "\n");
    for (int entry = GetNumEntries(port) - 1; entry >= 0; --entry) {
        TString cell;
        AppendText(table, cell.Format("%d", entry).Print());
        for (int c = 0; c < components; ++c) {
            FormatValue(cell, GetEntry(port, entry, c));
            AppendText(table, "\t");
            AppendText(table, cell.Print());
        }
        AppendText(table, "\n");
    }
    text.Assign(table.begin(), table.end());
}
