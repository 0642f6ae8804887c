#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/linkedports.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/refreshrecord.h"

// The ports stored in an edge may be those of before an earlier refresh, so both ends are found by the edge
// itself.
static void DetachFromSource(TEffectEdge* edge)
{
    TEffectNode* node = edge->GetSrcNode();
    for (int i = 0; node != nullptr && i < node->GetNumOutputs(); ++i)
        for (int n = node->GetNumOutputEdges(i) - 1; n >= 0; --n)
            if (node->GetOutputEdge(i, n) == edge)
                node->RemoveOutputEdge(i, edge);
}

static void DetachFromDestination(TEffectEdge* edge)
{
    TEffectNode* node = edge->GetDstNode();
    for (int i = 0; node != nullptr && i < node->GetNumInputs(); ++i)
        if (node->GetInput(i) == edge)
            node->SetInput(i, nullptr);
}

static TNodeParameter* AddClone(const TNodeParameter& parameter, TChunkFile& chunkFile)
{
    TNodeParameter* clone = parameter.Clone();
    clone->AddToChunkFile(chunkFile);
    return clone;
}

// The first parameter that is still there and bears the name; of the kind, unless that is -1.
static int FindRemaining(const vector<TNodeParameter*>& parameters, const TString& name, int kind)
{
    for (int i = 0; i < parameters.size(); ++i)
        if (parameters[i] != nullptr && parameters[i]->Name.Compare(name) == 0 &&
            (kind == -1 || parameters[i]->Type == kind))
            return i;
    return -1;
}

void RefreshParameters(vector<TNodeParameter*>& parameters, const vector<TNodeParameter*>& wanted,
                       TChunkFile& chunkFile, TRefreshRecord& record)
{
    vector<TNodeParameter*> old = parameters;
    parameters.clear();
    parameters.reserve(wanted.size());
    for (const TNodeParameter* declared : wanted) {
        const int at = FindRemaining(old, declared->Name, declared->Type);
        if (at == -1) {
            parameters.push_back(AddClone(*declared, chunkFile));
            continue;
        }
        old[at]->AdoptDeclaration(*declared, chunkFile, record);
        parameters.push_back(old[at]);
        old[at] = nullptr;
    }
    for (TNodeParameter* parameter : old)
        if (parameter != nullptr)
            record.Remove(parameter, chunkFile);
}

// The value moves to an input of another kind as far as there is room for it, and stays the one in force.
static void MoveValue(const TNodeParameter& from, TNodeParameter& to)
{
    if (from.Type == TY_POLYTYPE && to.Type < TY_POLYTYPE) {
        const TNodePolytypeParameter& polytype = static_cast<const TNodePolytypeParameter&>(from);
        if (polytype.IsTypeValid(to.Type))
            to.CopyValue(*polytype.GetValueParameter(to.Type));
        return;
    }
    to.CopyValue(from);
    if (to.Type == TY_POLYTYPE)
        static_cast<TNodePolytypeParameter&>(to).SetUserType(from.GetValueType());
}

// What a node type file decides is its own; the rest of the flags are settings of the node. A node that may
// no longer be bypassed is not.
static uint32_t RefreshFlags(uint32_t flags, uint32_t wanted)
{
    const uint32_t refreshed = (flags & ~static_cast<uint32_t>(FL_TYPEMASK)) | (wanted & FL_TYPEMASK);
    return (refreshed & FL_BYPASSABLE) != 0 ? refreshed : refreshed & ~static_cast<uint32_t>(FL_BYPASSED);
}

// Brings one node up to date. For each port of before, the record gets its new position.
class TNodeRefresher
{
public:
    TNodeRefresher(TEffectNode* node, const TNodeType& wanted, TChunkFile& chunkFile, TEffectGraph& graph,
                   TRefreshRecord& record)
        : Node(node), Type(*node->GetNodeType()), Wanted(wanted), ChunkFile(chunkFile), Graph(graph),
          Record(record)
    {
    }
    void RefreshPorts();

private:
    void RefreshInputs();
    TNodeParameter* KeepInput(TNodeParameter* old, const TNodeParameter& wanted);
    void RefreshOutputs();
    void SettleNewInputs() const;
    bool AreLinked(int a, int b) const;
    TNodePolytypeParameter* GetPolytypeInput(int i) const;

    TEffectNode* Node;
    TNodeType& Type;
    const TNodeType& Wanted;
    TChunkFile& ChunkFile;
    TEffectGraph& Graph;
    TRefreshRecord& Record;
    vector<int> InputPositions;
    vector<int> OutputPositions;
    // By input: whether it is one that the node did not have.
    vector<bool> IsNew;
};

void TNodeRefresher::RefreshPorts()
{
    // Edges may leave other outputs of this very node, so its lists stay whole until the inputs are done.
    RefreshInputs();
    RefreshOutputs();
    Record.AddNode(Node, InputPositions, OutputPositions);
    for (int i = 0; i < Type.GetNumInputs(); ++i)
        if (GetPolytypeInput(i) != nullptr)
            GetPolytypeInput(i)->ForgetLinks();
    SettleNewInputs();
}

TNodeParameter* TNodeRefresher::KeepInput(TNodeParameter* old, const TNodeParameter& wanted)
{
    if (old->Type == wanted.Type) {
        old->AdoptDeclaration(wanted, ChunkFile, Record);
        return old;
    }
    TNodeParameter* input = AddClone(wanted, ChunkFile);
    MoveValue(*old, *input);
    Record.Remove(old, ChunkFile);
    return input;
}

void TNodeRefresher::RefreshInputs()
{
    vector<TNodeParameter*> old = Type.Inputs;
    vector<TEffectEdge*> oldEdges;
    for (int i = 0; i < Node->GetNumInputs(); ++i)
        oldEdges.push_back(Node->GetInput(i));
    vector<TEffectEdge*> edges;
    InputPositions.resize(old.size());
    for (int& place : InputPositions)
        place = -1;
    Type.Inputs.clear();
    for (const TNodeParameter* wanted : Wanted.Inputs) {
        const int at = FindRemaining(old, wanted->Name, -1);
        IsNew.push_back(at == -1);
        if (at == -1) {
            Type.Inputs.push_back(AddClone(*wanted, ChunkFile));
            edges.push_back(nullptr);
            continue;
        }
        InputPositions[at] = Type.Inputs.size();
        Type.Inputs.push_back(KeepInput(old[at], *wanted));
        edges.push_back(oldEdges[at]);
        old[at] = nullptr;
        oldEdges[at] = nullptr;
    }
    Node->SetInputs(edges);
    for (int i = 0; i < old.size(); ++i) {
        if (old[i] != nullptr)
            Record.Remove(old[i], ChunkFile);
        if (oldEdges[i] == nullptr)
            continue;
        DetachFromSource(oldEdges[i]);
        Record.Remove(oldEdges[i], ChunkFile, Graph);
    }
}

void TNodeRefresher::RefreshOutputs()
{
    vector<TOutputPort> old;
    old.swap(Type.Outputs);
    vector<vector<TEffectEdge*>> oldEdges;
    Node->DetachOutputs(oldEdges);
    OutputPositions.resize(old.size());
    for (int& place : OutputPositions)
        place = -1;
    Type.Outputs = Wanted.Outputs;
    vector<vector<TEffectEdge*>> edges;
    edges.resize(Type.Outputs.size());
    for (int i = 0; i < Type.Outputs.size(); ++i) {
        TOutputPort& output = Type.Outputs[i];
        int at = 0;
        while (at < old.size() && (OutputPositions[at] != -1 || old[at].Name.Compare(output.Name) != 0))
            ++at;
        if (at == old.size())
            continue;
        OutputPositions[at] = i;
        edges[i].swap(oldEdges[at]);
        const int userType = old[at].DefaultType;
        if (output.Type == TY_POLYTYPE && (output.ValidTypes >> userType & 1) != 0)
            output.DefaultType = userType;
    }
    Node->SetOutputs(edges);
    for (const vector<TEffectEdge*>& lost : oldEdges)
        for (TEffectEdge* edge : lost) {
            if (edge == nullptr)
                continue;
            DetachFromDestination(edge);
            Record.Remove(edge, ChunkFile, Graph);
        }
}

TNodePolytypeParameter* TNodeRefresher::GetPolytypeInput(int i) const
{
    TNodeParameter* input = Type.GetInput(i);
    return input->Type == TY_POLYTYPE ? static_cast<TNodePolytypeParameter*>(input) : nullptr;
}

bool TNodeRefresher::AreLinked(int a, int b) const
{
    TLinkedPorts ofA;
    TLinkedPorts ofB;
    AddLinkClosure(TPortRef(Node, a), ofA);
    AddLinkClosure(TPortRef(Node, b), ofB);
    return ofA.Inputs.find(b) != ofA.Inputs.end() || ofB.Inputs.find(a) != ofB.Inputs.end();
}

// Inputs that are linked have one type: a new one takes that which was chosen for the others.
void TNodeRefresher::SettleNewInputs() const
{
    for (int i = 0; i < Type.GetNumInputs(); ++i) {
        if (!IsNew[i] || GetPolytypeInput(i) == nullptr)
            continue;
        int kept = 0;
        while (kept < Type.GetNumInputs() &&
               (IsNew[kept] || GetPolytypeInput(kept) == nullptr || !AreLinked(i, kept)))
            ++kept;
        if (kept < Type.GetNumInputs())
            GetPolytypeInput(i)->SetUserType(GetPolytypeInput(kept)->GetDefaultType());
    }
}

void TNodeType::Refresh(TEffectNode* node, const TNodeTypeLibrary& library, TChunkFile& chunkFile,
                        TEffectGraph& graph, TRefreshRecord& record)
{
    const TNodeType* type = library.FindType(Name);
    ASSERT_TEXT(type != nullptr, "type != 0");
    Description = type->Description;
    Category = type->Category;
    Colour = type->Colour;
    Flags = RefreshFlags(Flags, type->Flags);
    NumOwnParameters = type->NumOwnParameters;
    RefreshParameters(Parameters, type->Parameters, chunkFile, record);
    TNodeRefresher(node, *type, chunkFile, graph, record).RefreshPorts();
    ClassName = type->ClassName;
    DisplayClass = type->DisplayClass;
    Interfaces = type->Interfaces;
}
