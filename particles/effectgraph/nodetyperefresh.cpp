#include "library/containers/append.h"
#include "library/containers/hashindex.h"
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

// Old parameters by their names, of which each is taken once.
class TRemaining
{
public:
    TRemaining(const vector<TNodeParameter*>& parameters, bool kindCounts)
        : Parameters(parameters), KindCounts(kindCounts), Index(parameters.size())
    {
        for (int i = 0; i < parameters.size(); ++i)
            Index.Add(i, Hash(*parameters[i]));
    }
    // The position of the first one that is left and bears the name, and is of the kind, if that counts; -1
    // if there is none.
    int Take(const TNodeParameter& declared)
    {
        const int at = Index.Find(Hash(declared), [&](int i) {
            return Parameters[i]->Name.Compare(declared.Name) == 0 &&
                   (!KindCounts || Parameters[i]->Type == declared.Type);
        });
        if (at != -1)
            Index.Remove(at);
        return at;
    }

private:
    uint32_t Hash(const TNodeParameter& parameter) const
    {
        return HashText(parameter.Name) ^
               (KindCounts ? HashNumber(static_cast<uint32_t>(parameter.Type)) : 0);
    }

    const vector<TNodeParameter*>& Parameters;
    const bool KindCounts;
    THashIndex Index;
};

void RefreshParameters(vector<TNodeParameter*>& parameters, const vector<TNodeParameter*>& wanted,
                       TChunkFile& chunkFile, TRefreshRecord& record)
{
    vector<TNodeParameter*> old = parameters;
    parameters.clear();
    parameters.reserve(wanted.size());
    TRemaining remaining(old, true);
    for (const TNodeParameter* declared : wanted) {
        const int at = remaining.Take(*declared);
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
        Append(oldEdges, Node->GetInput(i));
    vector<TEffectEdge*> edges;
    InputPositions.resize(old.size());
    for (int& place : InputPositions)
        place = -1;
    Type.Inputs.clear();
    TRemaining remaining(old, false);
    for (const TNodeParameter* wanted : Wanted.Inputs) {
        const int at = remaining.Take(*wanted);
        Append(IsNew, at == -1);
        if (at == -1) {
            Append(Type.Inputs, AddClone(*wanted, ChunkFile));
            Append(edges, nullptr);
            continue;
        }
        InputPositions[at] = Type.Inputs.size();
        Append(Type.Inputs, KeepInput(old[at], *wanted));
        Append(edges, oldEdges[at]);
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
    THashIndex names(old.size());
    for (int i = 0; i < old.size(); ++i)
        names.Add(i, HashText(old[i].Name));
    for (int i = 0; i < Type.Outputs.size(); ++i) {
        TOutputPort& output = Type.Outputs[i];
        const int at =
            names.Find(HashText(output.Name), [&](int k) { return old[k].Name.Compare(output.Name) == 0; });
        if (at == -1)
            continue;
        names.Remove(at);
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

// Inputs that are linked have one type: a new one takes that which was chosen for the others, the first of
// them.
void TNodeRefresher::SettleNewInputs() const
{
    const int numInputs = Type.GetNumInputs();
    // By input: the first kept one that follows it; the number of inputs if none does.
    vector<int> firstFollower;
    firstFollower.reserve(numInputs);
    for (int i = 0; i < numInputs; ++i)
        firstFollower.push_back(numInputs);
    const auto isKept = [&](int i) { return i < numInputs && !IsNew[i] && GetPolytypeInput(i) != nullptr; };
    for (int kept = 0; kept < numInputs; ++kept) {
        if (!isKept(kept))
            continue;
        vector<int> followed;
        GetLinkClosure(TPortRef(Node, kept), followed);
        for (int port : followed)
            if (port < numInputs && firstFollower[port] == numInputs)
                firstFollower[port] = kept;
    }
    for (int i = 0; i < numInputs; ++i) {
        if (!IsNew[i] || GetPolytypeInput(i) == nullptr)
            continue;
        int first = firstFollower[i];
        vector<int> followed;
        GetLinkClosure(TPortRef(Node, i), followed);
        for (int port : followed)
            if (isKept(port) && port < first)
                first = port;
        if (first < numInputs)
            GetPolytypeInput(i)->SetUserType(GetPolytypeInput(first)->GetDefaultType());
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
