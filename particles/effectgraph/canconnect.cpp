#include "particles/effectgraph/canconnect.h"

#include "library/containers/append.h"
#include "library/containers/map.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/linkedports.h"
#include "particles/effectgraph/pointermap.h"

#include <cstdint>

struct TConnectionKey
{
    TEffectNode* SrcNode;
    int SrcPort;
    TEffectNode* DstNode;
    int DstPort;

    bool operator==(const TConnectionKey& other) const
    {
        return SrcNode == other.SrcNode && SrcPort == other.SrcPort && DstNode == other.DstNode &&
               DstPort == other.DstPort;
    }
    // Some order in which neither nodes nor ports follow each other: in the order in which they are asked
    // for, the cache's tree would be a list.
    bool operator<(const TConnectionKey& other) const
    {
        const uint64_t mixed = GetMixed();
        const uint64_t otherMixed = other.GetMixed();
        if (mixed != otherMixed)
            return mixed < otherMixed;
        if (SrcNode != other.SrcNode)
            return reinterpret_cast<uintptr_t>(SrcNode) < reinterpret_cast<uintptr_t>(other.SrcNode);
        if (SrcPort != other.SrcPort)
            return SrcPort < other.SrcPort;
        if (DstNode != other.DstNode)
            return reinterpret_cast<uintptr_t>(DstNode) < reinterpret_cast<uintptr_t>(other.DstNode);
        return DstPort < other.DstPort;
    }

private:
    uint64_t GetMixed() const
    {
        const uint64_t parts[] = {reinterpret_cast<uintptr_t>(SrcNode), static_cast<uint64_t>(SrcPort),
                                  reinterpret_cast<uintptr_t>(DstNode), static_cast<uint64_t>(DstPort)};
        uint64_t mixed = 0;
        for (uint64_t part : parts) {
            mixed = (mixed ^ part) * uint64_t(0x9E3779B97F4A7C15u);
            mixed ^= mixed >> 32;
        }
        return mixed;
    }
};

static map<TConnectionKey, bool>& GetCanConnectCache()
{
    static map<TConnectionKey, bool> cache;
    return cache;
}

void ClearCanConnectCache()
{
    GetCanConnectCache().clear();
}

// Edges that count as not there.
struct TIgnoredEdges
{
    bool Has(const TEffectEdge* edge) const { return edge == First || edge == Second; }

    const TEffectEdge* First = nullptr;
    const TEffectEdge* Second = nullptr;
};

// Whether a walk from the node against the wires meets the target. The node itself is not compared.
static bool IsAncestor(const TEffectNode* node, const TEffectNode* target, const TIgnoredEdges& ignored)
{
    TPointerMap visited;
    vector<const TEffectNode*> waiting;
    Append(waiting, node);
    while (!waiting.empty()) {
        const TEffectNode* next = waiting.back();
        waiting.pop_back();
        for (int i = 0; i < next->GetNumInputs(); ++i) {
            const TEffectEdge* edge = next->GetInput(i);
            if (edge == nullptr || ignored.Has(edge))
                continue;
            if (edge->GetSrcNode() == target)
                return true;
            if (visited.Insert(edge->GetSrcNode()))
                Append(waiting, edge->GetSrcNode());
        }
    }
    return false;
}

// The types that a port can have in its graph: what itself and every port reached through links and wires
// allow.
class TTypeMask
{
public:
    TTypeMask(const TPortRef& port, const TIgnoredEdges& ignored) : Ignored(ignored)
    {
        Append(Waiting, port);
        while (!Waiting.empty()) {
            const TPortRef next = Waiting.back();
            Waiting.pop_back();
            Visit(next);
        }
    }
    uint32_t Get() const { return Mask; }

private:
    void Visit(const TPortRef& port)
    {
        Mask &= GetPortTypes(port);
        // What a port that was reached before leads to was reached along with it.
        if (!IsPolytype(port) || Reached.Has(GetIdentity(port)))
            return;
        vector<int> linked;
        GetLinkClosure(port, linked);
        for (int index : linked) {
            const TPortRef member(port.Node, index);
            Mask &= GetPortTypes(member);
            Reached.Insert(GetIdentity(member));
            if (member.IsInput())
                FollowInput(member);
            else
                FollowOutput(member);
        }
    }
    void FollowInput(const TPortRef& port)
    {
        const TEffectEdge* edge = port.Node->GetInput(port.Index);
        if (edge == nullptr || Ignored.Has(edge) || !Visited.Insert(edge))
            return;
        TEffectNode* source = edge->GetSrcNode();
        Append(Waiting, TPortRef(source, source->GetNodeType()->GetNumInputs() + edge->GetSrcPort()));
    }
    void FollowOutput(const TPortRef& port)
    {
        const int output = port.GetOutputIndex();
        for (int i = 0; i < port.Node->GetNumOutputEdges(output); ++i) {
            const TEffectEdge* edge = port.Node->GetOutputEdge(output, i);
            if (!Ignored.Has(edge) && Visited.Insert(edge))
                Append(Waiting, TPortRef(edge->GetDstNode(), edge->GetDstPort()));
        }
    }
    // An address that no other port has.
    static const void* GetIdentity(const TPortRef& port)
    {
        const TNodeType& type = *port.Node->GetNodeType();
        return port.IsInput() ? static_cast<const void*>(type.GetInput(port.Index))
                              : &type.GetOutput(port.GetOutputIndex());
    }
    static bool IsPolytype(const TPortRef& port)
    {
        const TNodeType& type = *port.Node->GetNodeType();
        return port.IsInput() ? type.GetBasicInputType(port.Index) == TY_POLYTYPE
                              : type.GetOutput(port.GetOutputIndex()).Type == TY_POLYTYPE;
    }

    const TIgnoredEdges Ignored;
    uint32_t Mask = 0xFFFFFFFFu;
    TPointerMap Visited;
    TPointerMap Reached;
    vector<TPortRef> Waiting;
};

static bool CanConnectTypes(TEffectNode* srcNode, int srcPort, TEffectNode* dstNode, int dstPort,
                            const TIgnoredEdges& ignored)
{
    const uint32_t outMask =
        TTypeMask(TPortRef(srcNode, srcNode->GetNodeType()->GetNumInputs() + srcPort), ignored).Get();
    const uint32_t inMask = TTypeMask(TPortRef(dstNode, dstPort), ignored).Get();
    if ((outMask & inMask) != 0)
        return true;
    return CanConvertType(GetSingleType(outMask), GetSingleType(inMask));
}

bool CanConnectTypes(TEffectNode* srcNode, int srcPort, TEffectNode* dstNode, int dstPort)
{
    return CanConnectTypes(srcNode, srcPort, dstNode, dstPort, TIgnoredEdges());
}

bool CanConnectWithout(const TEffectEdge* edge, TEffectNode* srcNode, int srcPort, TEffectNode* dstNode,
                       int dstPort)
{
    return CanConnectWithout(edge, nullptr, srcNode, srcPort, dstNode, dstPort);
}

bool CanConnectWithout(const TEffectEdge* edge, const TEffectEdge* other, TEffectNode* srcNode, int srcPort,
                       TEffectNode* dstNode, int dstPort)
{
    const TIgnoredEdges ignored = {edge, other};
    return !IsAncestor(srcNode, dstNode, ignored) &&
           CanConnectTypes(srcNode, srcPort, dstNode, dstPort, ignored);
}

bool CanConnect(TEffectNode* srcNode, int srcPort, TEffectNode* dstNode, int dstPort)
{
    const TConnectionKey key = {srcNode, srcPort, dstNode, dstPort};
    const map<TConnectionKey, bool>::iterator it = GetCanConnectCache().find(key);
    if (it != GetCanConnectCache().end())
        return it->second;
    const bool result = CanConnectWithout(nullptr, srcNode, srcPort, dstNode, dstPort);
    GetCanConnectCache().insert(key, result);
    return result;
}
