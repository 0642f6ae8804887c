#include "library/containers/append.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/pointermap.h"

// The wiring of a graph by node number. Ends outside of the graph are left out.
class TWiring
{
public:
    explicit TWiring(const TEffectGraph& graph);
    // Whether the wires run in no circle.
    bool IsAcyclic() const;

    int NumNodes;
    // By node: the sources of its inputs, and the nodes that its outputs feed. A node may occur more than
    // once.
    vector<vector<int>> Sources;
    vector<vector<int>> Consumers;
};

TWiring::TWiring(const TEffectGraph& graph) : NumNodes(graph.GetNumNodes())
{
    TPointerMap numbers;
    for (int i = 0; i < NumNodes; ++i)
        numbers.Insert(graph.GetNode(i), i);
    Sources.resize(NumNodes);
    Consumers.resize(NumNodes);
    for (int i = 0; i < NumNodes; ++i) {
        const TEffectNode* node = graph.GetNode(i);
        for (int port = 0; port < node->GetNumInputs(); ++port) {
            const TEffectEdge* edge = node->GetInput(port);
            const int source = edge != nullptr ? numbers.Find(edge->GetSrcNode()) : -1;
            if (source == -1)
                continue;
            Append(Sources[i], source);
            Append(Consumers[source], i);
        }
    }
}

bool TWiring::IsAcyclic() const
{
    vector<int> numOpen;
    vector<int> ready;
    numOpen.reserve(NumNodes);
    ready.reserve(NumNodes);
    for (int i = 0; i < NumNodes; ++i) {
        numOpen.push_back(Sources[i].size());
        if (Sources[i].empty())
            ready.push_back(i);
    }
    for (int done = 0; done < ready.size(); ++done)
        for (int consumer : Consumers[ready[done]])
            if (--numOpen[consumer] == 0)
                ready.push_back(consumer);
    return ready.size() == NumNodes;
}

// The exchange sort of the nodes. Its order decides orders in previews and exports, so the restarts of the
// scan are kept; what is left out is only the scanning again of places where nothing can have changed.
class TNodeSorter
{
public:
    TNodeSorter(const TEffectGraph& graph, const TWiring& wiring);
    void Sort();
    const vector<int>& GetOrder() const { return Order; }

private:
    enum TFinding
    {
        NOTHING,
        // A source of the node stands behind it.
        SOURCE,
        // A node that may go ahead of a node with the last hint.
        HINT
    };

    TFinding Scan(int at, int& found);
    bool IsSettled(int at) const { return at == 0 ? IsFirstSettled : at < SettledEnd; }
    void Settle(int at);
    void Exchange(int at, int other);

    const TWiring& Wiring;
    vector<bool> IsLast;
    // The nodes in their present order, and where each stands.
    vector<int> Order;
    vector<int> Place;
    // By node with the last hint: the nodes that it has given way to.
    vector<vector<int>> Yielded;
    // By node: the scan in which it was excluded from going ahead.
    vector<int> Excluded;
    int NumScans = 0;
    // A scan of a settled place finds nothing: the first place, and those from 1 on below the end.
    bool IsFirstSettled = false;
    int SettledEnd = 1;
};

TNodeSorter::TNodeSorter(const TEffectGraph& graph, const TWiring& wiring) : Wiring(wiring)
{
    Yielded.resize(wiring.NumNodes);
    IsLast.reserve(wiring.NumNodes);
    Order.reserve(wiring.NumNodes);
    Place.reserve(wiring.NumNodes);
    Excluded.reserve(wiring.NumNodes);
    for (int i = 0; i < wiring.NumNodes; ++i) {
        const TNodeType* type = graph.GetNode(i)->GetNodeType();
        IsLast.push_back(type != nullptr && type->HasFlag(FL_LASTHINT));
        Order.push_back(i);
        Place.push_back(i);
        Excluded.push_back(0);
    }
}

void TNodeSorter::Sort()
{
    const int count = Wiring.NumNodes;
    int at = 0;
    while (at < count - 1) {
        int found = 0;
        TFinding finding = NOTHING;
        while (!IsSettled(at)) {
            finding = Scan(at, found);
            if (finding != SOURCE)
                break;
            Exchange(at, found);
            at = 0;
            finding = NOTHING;
        }
        if (finding == HINT) {
            Append(Yielded[Order[at]], Order[found]);
            Exchange(at, found);
            // The first place is not scanned again after this.
            at = 0;
        } else if (!IsSettled(at))
            Settle(at);
        ++at;
        if (at < SettledEnd)
            at = SettledEnd;
    }
}

TNodeSorter::TFinding TNodeSorter::Scan(int at, int& found)
{
    const int node = Order[at];
    int source = Wiring.NumNodes;
    for (int other : Wiring.Sources[node])
        if (Place[other] > at && Place[other] < source)
            source = Place[other];
    if (IsLast[node]) {
        ++NumScans;
        for (int consumer : Wiring.Consumers[node])
            Excluded[consumer] = NumScans;
        for (int other : Yielded[node])
            Excluded[other] = NumScans;
        for (int i = at + 1; i < source; ++i) {
            if (IsLast[Order[i]] || Excluded[Order[i]] == NumScans)
                continue;
            found = i;
            return HINT;
        }
    }
    found = source;
    return source < Wiring.NumNodes ? SOURCE : NOTHING;
}

void TNodeSorter::Settle(int at)
{
    if (at == 0)
        IsFirstSettled = true;
    else
        SettledEnd = at + 1;
}

void TNodeSorter::Exchange(int at, int other)
{
    const int node = Order[at];
    Order[at] = Order[other];
    Order[other] = node;
    Place[Order[at]] = at;
    Place[Order[other]] = other;
    if (at == 0) {
        IsFirstSettled = false;
        SettledEnd = 1;
    }
}

bool IsAcyclic(const TEffectGraph& graph)
{
    return TWiring(graph).IsAcyclic();
}

void GetSortedNodes(const TEffectGraph& graph, vector<TEffectNode*>& result)
{
    result.clear();
    result.reserve(graph.GetNumNodes());
    const TWiring wiring(graph);
    TNodeSorter sorter(graph, wiring);
    // Wires in a circle have no order; CanConnect keeps them out.
    if (wiring.IsAcyclic())
        sorter.Sort();
    for (int node : sorter.GetOrder())
        result.push_back(graph.GetNode(node));
}
