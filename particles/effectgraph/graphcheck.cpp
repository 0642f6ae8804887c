#include "particles/effectgraph/graphcheck.h"

#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/linkmender.h"
#include "particles/effectgraph/pointermap.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/xmltext.h"

constexpr int NumRampTypes = 5;
// Part of a name that a fault quotes.
constexpr int NameLimit = 100;

// Checks nodes one by one; what they hold is entered, so that nothing is held twice.
class TNodeChecker
{
public:
    TNodeChecker(TString& fault, TLinkMender* mender) : Fault(fault), Mender(mender) {}
    bool CheckNode(const TEffectNode* node);

private:
    bool CheckType();
    bool CheckInput(TNodeParameter& input);
    bool CheckParameter(TNodeParameter* parameter, int depth);
    bool CheckPolytype(const TNodePolytypeParameter& polytype);
    bool CheckEnum(const TNodeEnumParameter& parameter);
    bool CheckRamp(TNodeRampParameter& ramp);
    bool CheckOutput(TOutputPort& output);
    bool Fail(const TString& name, const char* what);

    TString& Fault;
    TLinkMender* Mender;
    TPointerMap Seen;
    TNodeType* Type = nullptr;
};

bool TNodeChecker::Fail(const TString& name, const char* what)
{
    Fault.Format("Node \"%s\": \"%s\" %s", QuoteText(Type->Name, NameLimit).Print(),
                 QuoteText(name, NameLimit).Print(), what);
    return false;
}

bool TNodeChecker::CheckNode(const TEffectNode* node)
{
    Type = node->GetNodeType();
    if (Type == nullptr) {
        Fault = "A node has no node type";
        return false;
    }
    if (!Seen.Insert(Type))
        return Fail(Type->Name, "is the type of two nodes");
    if (node->GetNumInputs() != Type->GetNumInputs() || node->GetNumOutputs() != Type->GetNumOutputs())
        return Fail(Type->Name, "has other numbers of ports than its node");
    return CheckType();
}

bool TNodeChecker::CheckType()
{
    if (Type->GetNumParameters() > TNodeType::MaxPorts || Type->GetNumInputs() > TNodeType::MaxPorts ||
        Type->GetNumOutputs() > TNodeType::MaxPorts)
        return Fail(Type->Name, "has too many parameters or ports");
    if (Type->Category < 0 || Type->Category >= TU_NUMUSAGES)
        return Fail(Type->Name, "has an unknown category");
    if (Type->Colour < 0 || Type->Colour >= NumNodeColours)
        return Fail(Type->Name, "has an unknown colour");
    if (Type->NumOwnParameters < 0 || Type->NumOwnParameters > Type->GetNumParameters())
        return Fail(Type->Name, "has a wrong number of own parameters");
    for (TNodeParameter* parameter : Type->Parameters)
        if (!CheckParameter(parameter, 0))
            return false;
    for (TNodeParameter* input : Type->Inputs)
        if (!CheckParameter(input, 0))
            return false;
    for (TNodeParameter* input : Type->Inputs)
        if (!CheckInput(*input))
            return false;
    for (TOutputPort& output : Type->Outputs)
        if (!CheckOutput(output))
            return false;
    return true;
}

bool TNodeChecker::CheckInput(TNodeParameter& input)
{
    if (input.Type > TY_POLYTYPE)
        return Fail(input.Name, "is an input of a kind that no input can have");
    if (input.Type < TY_POLYTYPE)
        return true;
    TNodePolytypeParameter& polytype = static_cast<TNodePolytypeParameter&>(input);
    if (Mender != nullptr)
        Mender->MendInput(*Type, polytype);
    if (!polytype.GetLinkInput().IsEmpty() && Type->FindInput(polytype.GetLinkInput()) == -1)
        return Fail(input.Name, "follows an input that does not exist");
    if (!polytype.GetLinkOutput().IsEmpty() && Type->FindOutput(polytype.GetLinkOutput()) == -1)
        return Fail(input.Name, "follows an output that does not exist");
    return true;
}

bool TNodeChecker::CheckParameter(TNodeParameter* parameter, int depth)
{
    if (parameter == nullptr)
        return Fail(Type->Name, "has an empty place among its parameters");
    if (!Seen.Insert(parameter))
        return Fail(parameter->Name, "is a parameter in two places");
    switch (parameter->Type) {
    case TY_POLYTYPE:
        return CheckPolytype(static_cast<const TNodePolytypeParameter&>(*parameter));
    case PK_ENUM:
        return CheckEnum(static_cast<const TNodeEnumParameter&>(*parameter));
    case PK_RAMP:
    case PK_POLYRAMP:
        return CheckRamp(static_cast<TNodeRampParameter&>(*parameter));
    case PK_GROUP:
        break;
    default:
        return true;
    }
    if (depth == TNodeGroupParameter::MaxDepth)
        return Fail(parameter->Name, "is a group nested too deep");
    for (TNodeParameter* child : static_cast<const TNodeGroupParameter*>(parameter)->GetChildren())
        if (!CheckParameter(child, depth + 1))
            return false;
    return true;
}

bool TNodeChecker::CheckPolytype(const TNodePolytypeParameter& polytype)
{
    const int type = polytype.GetDefaultType();
    if (type < 0 || type >= TY_POLYTYPE || !polytype.IsTypeValid(type))
        return Fail(polytype.Name, "has a default type that is none of its types");
    for (int i = 0; i < TY_POLYTYPE; ++i) {
        if (!polytype.IsTypeValid(i))
            continue;
        const TNodeValueParameter* value = polytype.GetValueParameter(i);
        if (value->Type != i)
            return Fail(polytype.Name, "has a value of another type in the place of a type");
        if (!Seen.Insert(value))
            return Fail(polytype.Name, "shares a value with another parameter");
    }
    return true;
}

bool TNodeChecker::CheckEnum(const TNodeEnumParameter& parameter)
{
    const int count = parameter.GetValues().size();
    const int index = parameter.GetIndex();
    if (index < 0 || (index >= count && index != 0))
        return Fail(parameter.Name, "has a choice that is not in its list");
    return true;
}

bool TNodeChecker::CheckRamp(TNodeRampParameter& ramp)
{
    if (Mender != nullptr)
        Mender->MendRamp(*Type, ramp);
    if (ramp.GetDimensions() < 1 || ramp.GetDimensions() > TNodeRampParameter::MaxDimensions)
        return Fail(ramp.Name, "has a wrong number of curves");
    if (ramp.GetRampType() < 0 || ramp.GetRampType() >= NumRampTypes)
        return Fail(ramp.Name, "is a ramp of an unknown type");
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i)
        if (!TNodeRampParameter::IsLock(ramp.GetLocks()[i]))
            return Fail(ramp.Name, "has a curve locked to one that does not exist");
    return true;
}

bool TNodeChecker::CheckOutput(TOutputPort& output)
{
    if (Mender != nullptr)
        Mender->MendOutput(*Type, output);
    constexpr uint32_t ConcreteTypes = (1u << TY_POLYTYPE) - 1;
    if (output.Type < 0 || output.Type >= TY_NUMTYPES)
        return Fail(output.Name, "is an output of an unknown type");
    if (output.DefaultType < 0 || output.DefaultType >= TY_POLYTYPE)
        return Fail(output.Name, "is an output with an unknown default type");
    if (output.ResolvedType < -1 || output.ResolvedType >= TY_POLYTYPE)
        return Fail(output.Name, "is an output with an unknown resolved type");
    if ((output.Type == TY_POLYTYPE && output.ValidTypes == 0) || (output.ValidTypes & ~ConcreteTypes) != 0)
        return Fail(output.Name, "is an output with wrong valid types");
    if (output.LinkInput < -1 || output.LinkInput >= Type->GetNumInputs() || output.LinkOutput < -1 ||
        output.LinkOutput >= Type->GetNumOutputs())
        return Fail(output.Name, "is an output that follows a port that does not exist");
    return true;
}

bool CheckNodes(const vector<TEffectNode*>& nodes, TString& fault, TLinkMender* mender)
{
    TPointerMap seen;
    TNodeChecker checker(fault, mender);
    for (const TEffectNode* node : nodes) {
        if (node == nullptr || !seen.Insert(node)) {
            fault = node == nullptr ? "The graph has an empty place among its nodes"
                                    : "A node is in the graph twice";
            return false;
        }
        if (!checker.CheckNode(node))
            return false;
    }
    return true;
}

// Whether each edge of the graph stands at both of its ends exactly where it says, and no other edge does.
class TEdgeChecker
{
public:
    TEdgeChecker(const TEffectGraph& graph, TString& fault) : Graph(graph), Fault(fault) {}
    bool Check();

private:
    bool CheckEdges();
    bool CheckEnds(const TEffectEdge& edge) const;
    bool CheckNode(const TEffectNode& node);
    bool CheckSources();
    bool FailEdge(const TEffectEdge& edge, const char* what);
    bool FailNode(const TEffectNode& node, const char* what);

    const TEffectGraph& Graph;
    TString& Fault;
    TPointerMap Nodes;
    TPointerMap Edges;
    // The edges met in the outputs of the nodes.
    TPointerMap Leaving;
};

bool TEdgeChecker::Check()
{
    for (int i = 0; i < Graph.GetNumNodes(); ++i)
        Nodes.Insert(Graph.GetNode(i));
    if (!CheckEdges())
        return false;
    for (int i = 0; i < Graph.GetNumNodes(); ++i)
        if (!CheckNode(*Graph.GetNode(i)))
            return false;
    return CheckSources();
}

static TString GetNodeName(const TEffectNode* node)
{
    return node != nullptr && node->GetNodeType() != nullptr ? QuoteText(node->GetNodeType()->Name, NameLimit)
                                                             : TString("?");
}

bool TEdgeChecker::FailEdge(const TEffectEdge& edge, const char* what)
{
    Fault.Format("The edge from node \"%s\" to node \"%s\" %s", GetNodeName(edge.GetSrcNode()).Print(),
                 GetNodeName(edge.GetDstNode()).Print(), what);
    return false;
}

bool TEdgeChecker::FailNode(const TEffectNode& node, const char* what)
{
    Fault.Format("Node \"%s\": %s", GetNodeName(&node).Print(), what);
    return false;
}

bool TEdgeChecker::CheckSources()
{
    for (int i = 0; i < Graph.GetNumEdges(); ++i)
        if (!Leaving.Has(Graph.GetEdge(i)))
            return FailEdge(*Graph.GetEdge(i), "is missing at its source");
    return true;
}

bool TEdgeChecker::CheckEdges()
{
    for (int i = 0; i < Graph.GetNumEdges(); ++i) {
        const TEffectEdge* edge = Graph.GetEdge(i);
        if (edge == nullptr) {
            Fault = "The graph has an empty place among its edges";
            return false;
        }
        if (!Edges.Insert(edge))
            return FailEdge(*edge, "is in the graph twice");
        if (!Nodes.Has(edge->GetSrcNode()) || !Nodes.Has(edge->GetDstNode()))
            return FailEdge(*edge, "ends at a node that is not in the graph");
        if (!CheckEnds(*edge))
            return FailEdge(*edge, "ends at a port that does not exist or holds another edge");
    }
    return true;
}

bool TEdgeChecker::CheckEnds(const TEffectEdge& edge) const
{
    const int src = edge.GetSrcPort();
    const int dst = edge.GetDstPort();
    return src >= 0 && src < edge.GetSrcNode()->GetNumOutputs() && dst >= 0 &&
           dst < edge.GetDstNode()->GetNumInputs() && edge.GetDstNode()->GetInput(dst) == &edge;
}

bool TEdgeChecker::CheckNode(const TEffectNode& node)
{
    for (int i = 0; i < node.GetNumInputs(); ++i) {
        const TEffectEdge* edge = node.GetInput(i);
        if (edge != nullptr && (!Edges.Has(edge) || edge->GetDstNode() != &node || edge->GetDstPort() != i))
            return FailNode(node, "an input holds an edge that does not end there");
    }
    for (int i = 0; i < node.GetNumOutputs(); ++i)
        for (int n = 0; n < node.GetNumOutputEdges(i); ++n) {
            const TEffectEdge* edge = node.GetOutputEdge(i, n);
            if (edge == nullptr || !Edges.Has(edge) || edge->GetSrcNode() != &node ||
                edge->GetSrcPort() != i || !Leaving.Insert(edge))
                return FailNode(node, "an output holds an edge that does not begin there, or holds it twice");
        }
    return true;
}

bool CheckGraph(const TEffectGraph& graph, TString& fault)
{
    vector<TEffectNode*> nodes;
    nodes.reserve(graph.GetNumNodes());
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        nodes.push_back(graph.GetNode(i));
    if (!CheckNodes(nodes, fault) || !TEdgeChecker(graph, fault).Check())
        return false;
    if (!IsAcyclic(graph)) {
        fault = "The edges of the graph run in a circle";
        return false;
    }
    return true;
}
