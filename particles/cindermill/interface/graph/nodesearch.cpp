#include "particles/cindermill/interface/graph/nodesearch.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/nodelayout.h"
#include "particles/cindermill/interface/graph/probenode.h"
#include "particles/cindermill/interface/graph/wiring.h"
#include "particles/cindermill/main/documentstep.h"
#include "particles/effectgraph/nodetypelibrary.h"

namespace {

bool CanTake(TEffectNode& probe, const TWireEnd& end, int port)
{
    return end.IsInput ? CanReplaceWire(&probe, port, end.Node, end.Port)
                       : CanReplaceWire(end.Node, end.Port, &probe, port);
}

struct TTypeFiller
{
    void Add(int item, const TString& folder)
    {
        const TNodeTypeItem& entry = Library.GetItem(item);
        if (entry.TypeIndex != -1) {
            AddType(entry.TypeIndex, folder);
            return;
        }
        const TString inner = GetInnerFolder(folder, entry.Name);
        for (const int child : entry.Children)
            Add(child, inner);
    }
    void AddType(int index, const TString& folder)
    {
        const TNodeType& type = *Library.GetType(index);
        if (End != nullptr && FindWirePort(type, *End) == -1)
            return;
        TSearchEntry entry = GetTypeEntry(type, folder);
        entry.Item = index;
        List.Add(entry);
    }

    const TNodeTypeLibrary& Library;
    const TWireEnd* End;
    TSearchList& List;
};

int GetDeclaredType(const TNodeType& type, bool isInput, int port)
{
    return isInput ? type.GetBasicInputType(port) : type.GetOutput(port).Type;
}

} // namespace

int FindWirePort(const TNodeType& type, const TWireEnd& end)
{
    TProbeNode probe(type);
    const TNodeType& other = *end.Node->GetNodeType();
    const int wanted = end.IsInput ? other.GetInputType(end.Port) : other.GetOutputType(end.Port);
    const int numPorts = end.IsInput ? type.GetNumOutputs() : type.GetNumInputs();
    const TString& name = end.IsInput ? other.GetInput(end.Port)->Name : other.GetOutput(end.Port).Name;
    int best = -1;
    int bestRank = 0;
    for (int port = 0; port < numPorts; ++port) {
        if (!CanTake(probe.Get(), end, port))
            continue;
        const TString& own = end.IsInput ? type.GetOutput(port).Name : type.GetInput(port)->Name;
        const int rank = own.Compare(name) == 0                                ? 3
                         : GetDeclaredType(type, !end.IsInput, port) == wanted ? 2
                                                                               : 1;
        if (rank <= bestRank)
            continue;
        best = port;
        bestRank = rank;
    }
    return best;
}

TSearchEntry GetTypeEntry(const TNodeType& type, const TString& folder)
{
    TSearchEntry entry;
    entry.Name = type.Name;
    entry.Folder = folder;
    entry.Help = type.Description;
    entry.Colour = type.Colour;
    return entry;
}

TString GetInnerFolder(const TString& folder, const TString& category)
{
    TString inner = folder;
    if (!inner.IsEmpty())
        inner += " / ";
    inner += category;
    return inner;
}

void FillTypeSearch(const TNodeTypeLibrary& library, const TWireEnd* end, TSearchList& list)
{
    TTypeFiller filler{library, end, list};
    for (int i = 0; i < library.GetNumRootItems(); ++i)
        filler.Add(library.GetRootItemIndex(i), TString());
}

TToolNode* AddNodeToWire(TDocument& document, const TNodeType& type, const TVector2& point,
                         const TWireEnd& end)
{
    const int port = FindWirePort(type, end);
    if (port == -1)
        return nullptr;
    const TDocumentStep step(document);
    const TVector2 size = MeasureNode(type);
    const TVector2 middle = point + size * 0.5f - GetPortOffset(!end.IsInput, port, size[0]);
    TAddGraphNodeOp* op = new TAddGraphNodeOp(document, type, FloatToInt(middle[0]), FloatToInt(middle[1]));
    TToolNode* node = op->GetNode();
    document.ApplyOperation(op);
    if (end.IsInput)
        Wire(document, node, port, end.Node, end.Port);
    else
        Wire(document, end.Node, end.Port, node, port);
    return node;
}
