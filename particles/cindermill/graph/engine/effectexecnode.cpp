#include "particles/cindermill/graph/engine/effectexecnode.h"

#include "library/containers/owner.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"
#include "particles/effectgraph/xmltext.h"

void TEffectExecNode::Emit(int, float) {}

bool TEffectExecNode::Init(TErrorList&)
{
    return true;
}

void TEffectExecNode::Execute(int, float) {}

void TEffectExecNode::Render(const TSceneView&) {}

void TEffectExecNode::Export(TExportData&, TErrorList&) {}

void TEffectExecNode::Bypass(int index)
{
    const TNodeType* type = GetNodeType();
    for (int o = 0; o < type->GetNumOutputs(); ++o) {
        TPortValue value;
        const int input = type->FindInputNamedLikeOutput(o);
        if (input != -1)
            value = ReadInput(input, index);
        WriteOutput(o, index, value);
    }
}

void TEffectExecNode::ExecuteDown(int count, float dt)
{
    for (int k = count - 1; k >= 0; --k)
        Execute(k, dt);
}

void TEffectExecNode::ExecuteUp(int count, float dt)
{
    for (int k = 0; k < count; ++k)
        Execute(k, dt);
}

void TEffectExecNode::BypassUp(int count)
{
    for (int k = 0; k < count; ++k)
        Bypass(k);
}

TEffectExecNode* TEffectExecNode::Create(TEffectNode* node, TEffectExec* exec, TErrorList& errors)
{
    const TString& className = node->GetNodeType()->ClassName;
    const int id = FindClassByName(className);
    if (id == -1 || !IsClassA(id, ClassId())) {
        errors.Add(new TError("Run time class %s does not exist in this tool build\n",
                              QuoteText(className).Print()));
        return nullptr;
    }
    TOwner<TEffectExecNode> result(static_cast<TEffectExecNode*>(CreateClass(id)));
    result->Node = node;
    result->Exec = exec;
    if (!result->Init(errors))
        return nullptr;
    result->InitTraces();
    result->InitPorts();
    return result.Release();
}

int TEffectExecNode::GetTraceKey(int group, int tiedNode) const
{
    return Exec->GetSchedule().GetNumGroups() * tiedNode + group;
}

void TEffectExecNode::InitTraces()
{
    const TNodeType* type = GetNodeType();
    const int numOutputs = type->GetNumOutputs();
    if (numOutputs == 0)
        return;
    const TEffectSchedule& schedule = Exec->GetSchedule();
    const int entries = GetServices().GetTraceAttributeSize();
    for (int g = 0; g < schedule.GetNumGroups(); ++g) {
        const int64_t particles =
            static_cast<int64_t>(schedule.GetParticleCount(g)) + GetServices().GetTraceParticleSize();
        const int slots = static_cast<int>(particles < INT32_MAX ? particles : INT32_MAX);
        for (int t = 0; t < schedule.GetNumTiedNodes(g); ++t) {
            if (schedule.GetNode(schedule.GetTiedNode(g, t)) != Node)
                continue;
            vector<TAttributeTrace>& traces = OutputTraces[GetTraceKey(g, t)];
            traces.resize(numOutputs);
            for (int o = 0; o < numOutputs; ++o)
                traces[o].Init(slots, entries, GetTypeFloats(type->GetOutputType(o)));
        }
    }
}

void TEffectExecNode::SetPosition(int group, int tiedNode, TParticleBuffer* buffer)
{
    Group = group;
    TiedNode = tiedNode;
    Buffer = buffer;
}

TAttributeTrace& TEffectExecNode::GetOutputTrace(int n, int port)
{
    return (OutputTraces.begin() + n)->second[port];
}

int TEffectExecNode::GetOutputTraceGroup(int n) const
{
    return OutputTraces.at(n).first % Exec->GetSchedule().GetNumGroups();
}

void TEffectExecNode::GetInput(int port, int index, float* out) const
{
    const TEffectSchedule& schedule = Exec->GetSchedule();
    const int portType = GetNodeType()->GetInputType(port);
    const int attrib = schedule.GetTiedNodeInput(Group, TiedNode, port);
    if (attrib == -1) {
        TPortValue value;
        GetNodeType()->GetInput(port)->GetValue(value.GetFloats());
        ConvertValue(portType, portType, value.GetFloats(), out);
        return;
    }
    const float* source = Buffer->GetAttribute(attrib, schedule.GetAttributeUsage(Group, attrib), index);
    ConvertValue(schedule.GetAttributeType(Group, attrib), portType, source, out);
}

void TEffectExecNode::SetOutput(int port, int index, const float* value)
{
    const TEffectSchedule& schedule = Exec->GetSchedule();
    if (Tracing) {
        const auto it = OutputTraces.find(GetTraceKey(Group, TiedNode));
        ASSERT(it != OutputTraces.end());
        const int usage = schedule.GetNodeUsage(schedule.GetTiedNode(Group, TiedNode));
        it->second[port].AddEntry(*Buffer, usage, index, value);
    }
    const int attrib = schedule.GetTiedNodeOutput(Group, TiedNode, port);
    if (attrib == -1)
        return;
    float* dest = Buffer->GetAttribute(attrib, schedule.GetAttributeUsage(Group, attrib), index);
    ConvertValue(GetNodeType()->GetOutputType(port), schedule.GetAttributeType(Group, attrib), value, dest);
}

TPortValue TEffectExecNode::ReadInput(int port, int index) const
{
    TPortValue value;
    GetInput(port, index, value.GetFloats());
    return value;
}

void TEffectExecNode::WriteOutput(int port, int index, const TPortValue& value)
{
    SetOutput(port, index, value.GetFloats());
}

TPortValue TEffectExecNode::ReadPortParameter(int port) const
{
    TPortValue value;
    GetNodeType()->GetInput(port)->GetValue(value.GetFloats());
    return value;
}

int TEffectExecNode::GetInputType(int port) const
{
    const TEffectSchedule& schedule = Exec->GetSchedule();
    const int attrib = schedule.GetTiedNodeInput(Group, TiedNode, port);
    return attrib != -1 ? schedule.GetAttributeType(Group, attrib) : GetNodeType()->GetInputType(port);
}

void TEffectExecNode::AddParticles(int instance, int count)
{
    Exec->AddParticles(Group, instance, count);
}

void TEffectExecNode::KillParticle(int index)
{
    Exec->KillParticle(Group, index);
}

TNodeParameter* TEffectExecNode::RequireParameterOfKind(const char* path, int kind, TErrorList& errors) const
{
    TNodeParameter* parameter = GetNodeType()->FindParameterOf<TNodeParameter>(path, kind);
    if (parameter == nullptr)
        AddMissingParameter(path, errors);
    return parameter;
}

void TEffectExecNode::AddMissingParameter(const char* path, TErrorList& errors) const
{
    errors.Add(
        new TError("Missing parameter \"%s\" for node %s", path, QuoteText(GetNodeType()->Name).Print()));
}

namespace {

// The values that a port of a type gives to a program, each of so many floats.
struct TVertexValues
{
    int NumValues;
    int Floats;
};

constexpr TVertexValues ValueTable[TY_NUMTYPES] = {{1, 1}, {1, 2}, {1, 3}, {1, 3},
                                                   {1, 4}, {2, 3}, {1, 4}, {0, 0}};

int GetTableAttribute(const vector<int>& table, int entry)
{
    return entry < table.size() ? table[entry] : -1;
}

} // namespace

void TEffectExecNode::BindInputs(TQdxShader& program, const vector<int>& table) const
{
    int entry = 0;
    for (int port = 0; port < GetNodeType()->GetNumInputs(); ++port) {
        const int type = GetNodeType()->GetInputType(port);
        if (type < 0 || type >= TY_NUMTYPES)
            continue;
        const int attrib = Exec->GetSchedule().GetTiedNodeInput(Group, TiedNode, port);
        // An attribute that two stages share may have fewer values than this one's port: the defaults stay.
        SetVertexDefaults(program, table, entry, port);
        if (attrib != -1)
            BindAttribute(program, table, entry, attrib, ValueTable[type].NumValues);
        entry += ValueTable[type].NumValues;
    }
}

void TEffectExecNode::BindAttribute(TQdxShader& program, const vector<int>& table, int entry, int attrib,
                                    int numEntries) const
{
    const int element = Buffer->GetRenderAttrib(attrib);
    const int numElements = ValueTable[Exec->GetSchedule().GetAttributeType(Group, attrib)].NumValues;
    TVertexStream& stream = Buffer->GetVertexStream();
    for (int i = 0; i < numEntries && i < numElements; ++i) {
        const int attribute = GetTableAttribute(table, entry + i);
        if (attribute != -1)
            program.SetVertexStream(attribute, &stream, stream.GetElements()[element + i].Offset);
    }
}

void TEffectExecNode::SetVertexDefaults(TQdxShader& program, const vector<int>& table, int entry,
                                        int port) const
{
    const TVertexValues& values = ValueTable[GetNodeType()->GetInputType(port)];
    const TPortValue value = ReadPortParameter(port);
    for (int i = 0; i < values.NumValues; ++i) {
        const int attribute = GetTableAttribute(table, entry + i);
        if (attribute != -1)
            program.SetVertexValue(attribute, value.GetFloats() + i * values.Floats, values.Floats);
    }
}
