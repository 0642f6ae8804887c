#include "nodebench.h"

#include "library/containers/nametocrc.h"
#include "particles/cindermill/graph/nodes/nodes.h"

#include <cstring>

namespace {

const char* const KnownNames[] = {"IdConstantEmitter",
                                  "IdEffect",
                                  "IdEmissionTrigger",
                                  "IdSphereSurfaceEmitter",
                                  "IdConeEmitter",
                                  "IdRandomEmitter",
                                  "IdGravityForce",
                                  "IdEulerIntegratePosition",
                                  "IdWind",
                                  "IdTurbulence",
                                  "IdDamping",
                                  "IdAttractor",
                                  "IdPlaneCollision",
                                  "IdUpdateAge",
                                  "IdPrune",
                                  "IdAdd",
                                  "IdMul",
                                  "IdLength",
                                  "IdShaper",
                                  "IdAnimatedTexture",
                                  "transform 0",
                                  "transform 1",
                                  "User Scalar",
                                  "User Rotation"};

std::string NameOf(uint32_t id)
{
    for (const char* name : KnownNames)
        if (NameToCrc(name) == id)
            return name;
    return "?";
}

int FindNode(const TEffectSchedule& schedule, const TEffectNode* node)
{
    for (int n = 0; n < schedule.GetNumNodes(); ++n)
        if (schedule.GetNode(n) == node)
            return n;
    throw std::runtime_error("not scheduled");
}

void CreateSchedule(TEffectSchedule& schedule, const TTestGraph& graph)
{
    TErrorList errors;
    LogOf([&] { schedule.Create(graph.GetGraph(), errors); });
    if (!schedule.IsCreated())
        throw std::runtime_error(TextsOf(errors)[0]);
}

// Particles for a node that has none.
void AddPopulation(TTestGraph& graph)
{
    TEffectNode* emitter = graph.Node("Emitter", TU_EMITTER, {"Count", {"Transform", TY_TRANSFORM}},
                                      {{"Transform", TY_TRANSFORM}});
    TEffectNode* sink = graph.Node("Sink", TU_RENDER, {{"Transform", TY_TRANSFORM}}, {});
    graph.Class(emitter, "TPointEmitter");
    graph.Class(sink, "TEffectExecNode");
    graph.Wire(emitter, 0, sink, 0);
}

} // namespace

std::string Hex(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    char text[9];
    snprintf(text, sizeof(text), "%08x", bits);
    return text;
}

TNodeBench::TNodeBench(const char* className, const std::vector<TTestPort>& inputs,
                       const std::vector<TTestPort>& outputs, int category)
    : Exec(Services)
{
    RegisterExecNodes();
    Node = Graph.Node("Tested", category, inputs, outputs);
    Graph.Class(Node, className);
    if (category != TU_EMITTER) {
        AddPopulation(Graph);
        return;
    }
    Graph.Class(Graph.Node("Trigger", TU_TRIGGER, {}, {}), "TEffectExecNode");
    TEffectNode* sink = Graph.Node("Sink", TU_RENDER, {outputs[0]}, {});
    Graph.Class(sink, "TEffectExecNode");
    Graph.Wire(Node, 0, sink, 0);
}

TNodeBench::~TNodeBench()
{
    Exec.Clear();
}

void TNodeBench::WireFrom(const TTestPort& port, const TFloats& value, int input)
{
    TEffectNode* source = Graph.Node("Source", TU_TRIGGER, {{"From", port.Type}}, {port});
    TEffectNode* other = Graph.Node("Other", TU_PROCESS, {port}, {});
    Graph.Class(source, "TConstant");
    Graph.Class(other, "TEffectExecNode");
    Graph.InputValue(source, "From", value);
    Graph.Wire(source, 0, other, 0);
    Graph.Wire(source, 0, Node, input);
}

TTexts TNodeBench::Init()
{
    CreateSchedule(Schedule, Graph);
    TErrorList errors;
    if (Exec.Init(Schedule, errors, true) && GetExecNode()->GetNumTraces() > 0)
        GetExecNode()->SetTracing(true);
    return TextsOf(errors);
}

TEffectExecNode* TNodeBench::GetExecNode()
{
    return Exec.GetExecNode(FindNode(Schedule, Node));
}

TFloats TNodeBench::Run(float dt, int port)
{
    if (!Exec.IsInited()) {
        const TTexts errors = Init();
        if (!errors.empty())
            throw std::runtime_error(errors[0]);
    }
    Exec.Update(dt);
    return Writes(port).back();
}

std::vector<TFloats> TNodeBench::Writes(int port)
{
    const TAttributeTrace& trace = GetExecNode()->GetOutputTrace(0, port);
    std::vector<TFloats> result;
    for (int e = 0; e < trace.GetNumEntries(0); ++e) {
        TFloats value;
        for (int c = 0; c < trace.GetWidth(); ++c)
            value.push_back(trace.GetEntry(0, e, c));
        result.push_back(value);
    }
    return result;
}

TExportBench::TExportBench(const char* className, const std::vector<TTestPort>& inputs,
                           const std::vector<TTestPort>& outputs, const std::string& wired, int category)
    : Exec(Services)
{
    RegisterExecNodes();
    Node = Graph.Node("Tested", category, inputs, outputs);
    Graph.Class(Node, className);
    if (category != TU_EMITTER)
        AddPopulation(Graph);
    for (size_t i = 0; i < inputs.size(); ++i) {
        if (wired[i] != '1')
            continue;
        TEffectNode* source = Graph.Node("Source", TU_TRIGGER, {}, {{"Out", inputs[i].Type}});
        Graph.Class(source, "TEffectExecNode");
        Graph.Wire(source, 0, Node, static_cast<int>(i));
    }
    for (size_t o = 0; o < outputs.size(); ++o) {
        const std::string name = "out" + std::to_string(o);
        TEffectNode* sink = Graph.Node("Sink", category == TU_EMITTER ? TU_RENDER : TU_PROCESS,
                                       {{name.c_str(), outputs[o].Type}}, {});
        Graph.Class(sink, "TEffectExecNode");
        Graph.Wire(Node, static_cast<int>(o), sink, 0);
    }
}

void TExportBench::Init()
{
    CreateSchedule(Schedule, Graph);
    if (!Exec.Init(Schedule, Errors, false))
        throw std::runtime_error(GetErrors()[0]);
    Data = std::make_unique<TExportData>(Schedule);
}

bool TExportBench::IsEmission() const
{
    return Schedule.GetNodeUsage(FindNode(Schedule, Node)) == TU_EMITTER;
}

const TCommandStream& TExportBench::Stream() const
{
    const TExportGroup& group = Data->GetResult().Groups[Group];
    return IsEmission() ? group.Emission.Execute : group.Process.Execute;
}

TTexts TExportBench::Export()
{
    Init();
    const int index = FindNode(Schedule, Node);
    TTexts result;
    for (int g = 0; g < Schedule.GetNumGroups(); ++g) {
        for (int t = 0; t < Schedule.GetNumTiedNodes(g); ++t) {
            if (Schedule.GetTiedNode(g, t) != index)
                continue;
            Group = g;
            const int before = Stream().Commands.size();
            Data->SetCurrent(g, t);
            Exec.GetExecNode(index)->SetPosition(g, t, nullptr);
            Exec.GetExecNode(index)->Export(*Data, Errors);
            Data->Flush();
            for (int c = before; c < Stream().Commands.size(); ++c)
                result.push_back(LineOf(Stream().Commands[c]));
        }
    }
    return result;
}

std::string TExportBench::RowName(uint32_t row) const
{
    if (row == RowDump)
        return "_";
    if (row > RowTemp)
        return "t" + std::to_string(row - RowTemp);
    if (row >= RowConstant)
        return "c" + std::to_string(row - RowConstant);
    for (const TExportAttribute& attr : Data->GetResult().Groups[Group].Attributes) {
        const int component = static_cast<int>(row) - attr.RowStart;
        if (component >= 0 && component < attr.RowCount)
            return Text(attr.Name) + "." + std::to_string(component);
    }
    return "?";
}

std::string TExportBench::LineOf(const TCommand& command) const
{
    std::string line = NameOf(command.Name);
    for (const uint32_t row : command.Inputs)
        line += " " + RowName(row);
    line += " ->";
    for (const uint32_t row : command.Outputs)
        line += " " + RowName(row);
    if (!command.Data.empty())
        line += " data";
    for (int i = 0; i < command.Data.size(); ++i) {
        char text[4];
        snprintf(text, sizeof(text), "%s%02x", i % 4 == 0 ? " " : "", command.Data[i]);
        line += text;
    }
    for (const TCommandPatch& patch : command.Patches)
        line += " patch \"" + NameOf(patch.NameId) + "\" " + std::to_string(patch.Type) + "@" +
                std::to_string(patch.Offset);
    return line;
}

TTexts TExportBench::MovedRows() const
{
    const TExportGroup& group = Data->GetResult().Groups[Group];
    const vector<uint32_t>& map = IsEmission() ? group.Emission.RowMap : group.Process.RowMap;
    TTexts result;
    for (int row = 0; row < map.size(); ++row)
        if (map[row] != static_cast<uint32_t>(row))
            result.push_back(RowName(static_cast<uint32_t>(row)) + " = " + RowName(map[row]));
    return result;
}
