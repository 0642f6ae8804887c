#include "library/wimp/gl/sceneview.h"
#include "particles/cindermill/graph/effectexecnode.h"
#include "particles/cindermill/graph/qdxshader.h"

// What of the engine is there for drawing.

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

void TParticleBuffer::Upload()
{
    if (Tail != -1)
        VertexStream.Upload();
}

void TParticleBuffer::DrawRuns(TQdxShader& program, int primitive, uint16_t cornerMask, int perParticle) const
{
    if (Tail == -1)
        return;
    const bool wraps = Tail >= Head;
    const int count = wraps ? GetBufferSize() - Tail : Head - Tail;
    program.Draw(primitive, Tail * perParticle, count * perParticle, cornerMask, perParticle);
    if (wraps)
        program.Draw(primitive, 0, Head * perParticle, cornerMask, perParticle);
}

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

void TEffectExec::Render(const TSceneView& view)
{
    if (!Inited || Groups.empty())
        return;
    for (int g = 0; g < GetNumGroups(); ++g)
        RenderGroup(g, view);
}

void TEffectExec::RenderGroup(int group, const TSceneView& view)
{
    bool uploaded = false;
    for (int t = 0; t < Schedule->GetNumTiedNodes(group); ++t) {
        if (GetTiedUsage(group, t) != TU_RENDER)
            continue;
        TEffectExecNode* node = Place(group, t);
        if (node == nullptr || node->IsBypassed())
            continue;
        if (!uploaded)
            Groups[group]->Upload();
        uploaded = true;
        node->Render(view);
    }
}
