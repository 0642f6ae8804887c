#include "particles/cindermill/batch/lint/lintconsole.h"

#include "particles/cindermill/batch/lint/lintgraph.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/engine/inputreader.h"
#include "particles/cindermill/graph/nodes/localframe.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/cindermill/graph/replay/birthsource.h"
#include "particles/cindermill/graph/replay/classnotes.h"
#include "particles/cindermill/graph/replay/exportedfields.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/simpleparameters.h"

#include <cmath>

namespace {

// What is told of a node for what becomes of it.
struct TFateText
{
    TConsoleFate Fate;
    const char* Kind;
    const char* Text;
};

constexpr TFateText FateTexts[] = {
    {CF_POINT, LK_CONSOLEGRID, "%s is a point on the console: all its particles start at the transform"},
    {CF_NOTHING, LK_CONSOLENOTHING, "%s has no command on the console: its value is 0 there"},
};

constexpr const char* PlaneClass = "TCollisionPlane";
constexpr int PlaneInput = 2;
constexpr int PlaneSizeInput = 3;
// A particle this far behind a plane has passed it.
constexpr float PassedDepth = 0.01f;

} // namespace

bool TLintConsole::IsAsked(const TEffectNode& node) const
{
    return !node.GetNodeType()->IsBypassed() && Graph.IsUseful(node);
}

void TLintConsole::Tell(TLintReport& report)
{
    for (int n = 0; n < Schedule.GetNumNodes(); ++n) {
        const TEffectNode& node = *Schedule.GetNode(n);
        if (report.FindGroup(node) == -1 || !IsAsked(node))
            continue;
        TellNode(report, node);
        TellPlane(report, node);
        TellFields(report, node);
    }
    for (int g = 0; g < Schedule.GetNumGroups(); ++g)
        TellGroup(report, g);
}

void TLintConsole::TellGroup(TLintReport& report, int group) const
{
    vector<const TEffectNode*> ends;
    for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes) {
        const TEffectNode& node = *Schedule.GetNode(tied.Node);
        if (!IsAsked(node))
            continue;
        if (IsClass(node, "TAdd"))
            TellSum(report, group, tied);
        if ((IsClass(node, "TAge") || IsClass(node, "TPrune")) && !Schedule.IsTriggerGroup(group))
            ends.push_back(&node);
    }
    TellPlaces(report, group);
    if (const TTiedNode* reader = FindCountReader(Schedule, group)) {
        const TEffectNode& node = *Schedule.GetNode(reader->Node);
        report.AddNode(
            LK_CONSOLECOUNT, node, group,
            "%s reads the number of births as a value, which is 0 on the console, as another group "
            "brings what the particles are born with",
            GetNodeName(node).Print());
    }
    if (ends.size() > 1) {
        TFinding& finding = report.AddNode(
            LK_CONSOLEENDS, *ends.back(), group,
            "%d nodes end particles of group %d: where two end one in a frame, the preview takes "
            "another with it",
            ends.size(), group);
        AddNumber(finding, "nodes", ends.size());
    }
    for (int a = 0; a < Schedule.GetNumAttributes(group); ++a) {
        const int parent = Schedule.GetAttributeExternalGroup(group, a);
        if (parent <= group || Schedule.IsTriggerGroup(parent))
            continue;
        report.AddGroup(
            LK_CONSOLEORDER, group,
            "Group %d runs ahead of group %d, which fires it: priorities of their render stages set the "
            "order",
            group, parent);
        return;
    }
}

// Two types are the one place where the engine converts and the console's command does not.
void TLintConsole::TellSum(TLintReport& report, int group, const TTiedNode& tied) const
{
    const TEffectNode& node = *Schedule.GetNode(tied.Node);
    int types[2] = {};
    for (int i = 0; i < 2; ++i) {
        if (i >= tied.Inputs.size())
            return;
        types[i] = tied.Inputs[i] != -1 ? Schedule.GetAttributeType(group, tied.Inputs[i])
                                        : node.GetNodeType()->GetInputType(i);
    }
    if (types[0] != types[1])
        report.AddNode(LK_CONSOLESUM, node, group,
                       "%s adds a %s to a %s, whose components the console repeats",
                       GetNodeName(node).Print(), GetTypeName(types[1]), GetTypeName(types[0]));
}

// A node whose readers cannot share what it writes.
void TLintConsole::TellPlaces(TLintReport& report, int group) const
{
    const vector<TTiedNode>& nodes = Schedule.GetGroup(group).TiedNodes;
    for (int t = 0; t < nodes.size(); ++t) {
        int earlier = 0;
        for (int k = 0; k < t; ++k)
            earlier += nodes[k].Node == nodes[t].Node ? 1 : 0;
        const TEffectNode& node = *Schedule.GetNode(nodes[t].Node);
        const bool isClock = IsClass(node, "TEmitter") || IsClass(node, "TEffect");
        if (earlier != 1 || !IsAsked(node) || (!isClock && node.GetNodeType()->Category != TU_EMITTER))
            continue;
        report.AddNode(
            LK_CONSOLEPLACES, node, group,
            isClock ? "%s stands in several places, which share one clock in the preview and none on the "
                      "console"
                    : "%s stands in several places, each of which emits in the preview and one on the "
                      "console",
            GetNodeName(node).Print());
    }
}

void TLintConsole::TellNode(TLintReport& report, const TEffectNode& node) const
{
    const TString name = GetNodeName(node);
    for (const TFateText& entry : FateTexts)
        if (GetConsoleFate(*node.GetNodeType()) == entry.Fate) {
            TString text;
            text.Format(entry.Text, name.Print());
            report.AddNode(entry.Kind, node, -1, "%s", text.Print());
        }
    if (IsClass(node, "TEventTrigger"))
        report.AddNode(LK_CONSOLEEVENT, node, -1,
                       "%s fires an event on the console; the preview shows nothing of it", name.Print());
    for (const TFixedInput& input : FixedInputs)
        if (IsClass(node, input.ClassName) && IsWired(node, input.Port)) {
            TString port;
            node.GetNodeType()->GetInputName(input.Port, port);
            report.AddNode(LK_CONSOLEFIXED, node, -1,
                           "\"%s\" of %s is wired, but the console gets the value that stands there",
                           GetShownName(port).Print(), name.Print());
        }
    const auto* life = node.GetNodeType()->FindParameterOf<TNodeGroupParameter>("Max Life Time", PK_GROUP);
    if (IsClass(node, "TEffect") && life != nullptr && life->Get())
        report.AddNode(LK_CONSOLELIFE, node, -1,
                       "%s ends on the console when its life time is over; the preview runs on",
                       name.Print());
}

bool TLintConsole::IsWired(const TEffectNode& node, int port) const
{
    return port < node.GetNumInputs() && node.GetInput(port) != nullptr;
}

// Whether a particle is behind the plane and beside it: the console's has no edge to go past.
void TLintConsole::NodeRan(int group, int tied, int count)
{
    TEffectNode& node = *Schedule.GetNode(Schedule.GetTiedNode(group, tied));
    if (!IsClass(node, PlaneClass) || node.GetNodeType()->IsBypassed() ||
        node.GetNumInputs() <= PlaneSizeInput || Passed.find(&node) != Passed.end())
        return;
    TInputReader reader(*Exec, node);
    reader.SetPosition(group, tied, Exec->GetGroup(group));
    const bool isFixed = !IsWired(node, PlaneInput) && !IsWired(node, PlaneSizeInput);
    TLocalFrame frame;
    for (int i = 0; i < count; ++i) {
        if (i == 0 || !isFixed) {
            TMatrix43 matrix = GetTransformMatrix(reader.ReadValue(PlaneInput, i));
            const TPortValue size = reader.ReadValue(PlaneSizeInput, i);
            ScaleFirst(matrix, size[0], 1, size[1]);
            frame = TLocalFrame(matrix);
        }
        if (!frame.IsInvertible)
            continue;
        const TVector3 local = frame.ToLocal.TransformPoint(GetVector(reader.ReadValue(0, i)));
        const bool isBeside = std::fabs(local[0]) > 1 || std::fabs(local[2]) > 1;
        if (!(local[1] < -PassedDepth) || !isBeside)
            continue;
        Passed.push_back(&node);
        return;
    }
}

void TLintConsole::TellPlane(TLintReport& report, const TEffectNode& node) const
{
    if (!IsClass(node, PlaneClass) || node.GetNumInputs() <= PlaneSizeInput || IsWired(node, PlaneInput))
        return;
    TPortValue plane;
    node.GetNodeType()->GetInput(PlaneInput)->GetValue(plane.GetFloats());
    const bool isOff = plane[0] != 0 || plane[1] != 0 || plane[2] != 0;
    const bool isPassed = Passed.find(&node) != Passed.end();
    if (isOff)
        report.AddNode(
            LK_CONSOLEPLANE, node, -1,
            "%s lies off the origin: the preview adds its place to what it reflects, and the console "
            "has a normal that its place bends",
            GetNodeName(node).Print());
    else if (isPassed)
        report.AddNode(LK_CONSOLEPLANE, node, -1,
                       "Particles go past the edge of %s: on the console it has none, and they are reflected",
                       GetNodeName(node).Print());
}

void TLintConsole::TellFields(TLintReport& report, const TEffectNode& node) const
{
    vector<TFieldFault> faults;
    GetFieldFaults(*node.GetNodeType(), faults);
    for (const TFieldFault& fault : faults) {
        const char* format = fault.IsChoice
                                 ? "\"%s\" of %s is %g: the console knows 0 to %g"
                                 : "\"%s\" of %s is %g: its field holds 0 to %g, and goes out as %g";
        TString text;
        text.Format(format, fault.Parameter, GetNodeName(node).Print(), fault.Value, fault.Most,
                    fault.Exported);
        TFinding& finding = report.AddNode(LK_NUMBERFIELD, node, -1, "%s", text.Print());
        AddNumber(finding, "value", fault.Value);
        AddNumber(finding, "most", fault.Most);
    }
}
