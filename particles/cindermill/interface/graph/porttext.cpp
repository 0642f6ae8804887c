#include "particles/cindermill/interface/graph/porttext.h"

#include "library/containers/shortentext.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/effectgraph/valuetype.h"

namespace {

// Of an output with many wires the first ones are named.
constexpr int MaxNamed = 4;

void AddName(const TNodeType& type, const TString& port, TString& text)
{
    text += GetToldName(type.Name);
    text += ", ";
    text += GetToldName(port);
}

void AddSource(const TEffectEdge* edge, TString& text)
{
    if (edge == nullptr) {
        text += ", not wired";
        return;
    }
    const TNodeType& type = *edge->GetSrcNode()->GetNodeType();
    text += ", wired from ";
    AddName(type, type.GetOutput(edge->GetSrcPort()).Name, text);
}

void AddDestinations(const TToolNode& node, int port, TString& text)
{
    const int count = node.GetNumOutputEdges(port);
    if (count == 0)
        text += ", not wired";
    else if (count == 1)
        text += ", wired to ";
    else
        text += TempFormat(", wired to %d inputs: ", count);
    for (int i = 0; i < count && i < MaxNamed; ++i) {
        const TEffectEdge& edge = *node.GetOutputEdge(port, i);
        const TNodeType& type = *edge.GetDstNode()->GetNodeType();
        if (i > 0)
            text += "; ";
        AddName(type, type.GetInput(edge.GetDstPort())->Name, text);
    }
    if (count > MaxNamed)
        text += "; ...";
}

} // namespace

void TellPort(const TPort& port, TString& text)
{
    const TToolNode& node = *port.GetNode()->GetToolNode();
    const TNodeType& type = *node.GetNodeType();
    const int index = port.GetIndex();
    text = GetTypeName(port.IsInput() ? type.GetInputType(index) : type.GetOutputType(index));
    if (port.IsInput())
        AddSource(node.GetInput(index), text);
    else
        AddDestinations(node, index, text);
}

void TellPortName(const TPort& port, TString& text)
{
    text = "";
    AddName(*port.GetNode()->GetToolNode()->GetNodeType(), port.GetLabel(), text);
}

const TString& GetPortHelp(const TPort& port)
{
    const TNodeType& type = *port.GetNode()->GetToolNode()->GetNodeType();
    return port.IsInput() ? type.GetInput(port.GetIndex())->Description
                          : type.GetOutput(port.GetIndex()).Description;
}
