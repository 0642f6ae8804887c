#include "particles/effectgraph/unsortedorder.h"

#include "library/containers/append.h"

namespace {

// A sort may look at each pair of nodes; together they are not to take long.
constexpr int MaxPairs = 200000000;
constexpr int MaxSorts = 100000;
// Then it begins anew.
constexpr int MaxSteps = 600;
// What feeds the nodes that stand wrong has a part in it, and stands a little ahead of them.
constexpr int Ahead = 12;

} // namespace

TUnsortedOrder::TUnsortedOrder(const vector<TEffectNode*>& sorted) : Sorted(sorted)
{
    const int count = sorted.size();
    for (int i = 0; i < count; ++i)
        Places.Insert(sorted[i], i);
    Budget = MaxSorts;
    if (count > 0 && Budget > MaxPairs / count / count)
        Budget = MaxPairs / count / count + 1;
}

// Sorts the nodes from this order on; whether that comes to the wanted one.
bool TUnsortedOrder::Sort(const vector<TEffectNode*>& order)
{
    --Budget;
    TEffectGraph graph;
    graph.AddNodes(order);
    vector<TEffectNode*> result;
    GetSortedNodes(graph, result);
    Distance = 0;
    for (int i = result.size() - 1; i >= 0; --i) {
        if (result[i] == Sorted[i])
            continue;
        const int way = Places.Find(result[i]) - i;
        Distance += way < 0 ? -way : way;
        FirstWrong = i;
    }
    return Distance == 0;
}

bool TUnsortedOrder::Find()
{
    Order = Sorted;
    if (Sort(Order))
        return true;
    Near = FirstWrong > Ahead ? FirstWrong - Ahead : 0;
    while (Budget > 0)
        if (Climb())
            return true;
    return false;
}

// One change after the other, of which those are kept that make nothing worse.
bool TUnsortedOrder::Climb()
{
    Order = Sorted;
    Sort(Order);
    int wrong = Distance;
    for (int step = 0; step < MaxSteps && Budget > 0; ++step) {
        vector<TEffectNode*> changed = Order;
        Change(changed);
        Sort(changed);
        if (Distance > wrong)
            continue;
        wrong = Distance;
        Order.swap(changed);
        if (wrong == 0)
            return true;
    }
    return false;
}

// Exchanges two nodes, or moves one.
void TUnsortedOrder::Change(vector<TEffectNode*>& order)
{
    const int low = Below(4) == 0 ? 0 : Near;
    const int from = low + Below(order.size() - low);
    const int to = low + Below(order.size() - low);
    TEffectNode* node = order[from];
    if (Below(2) == 0) {
        order[from] = order[to];
        order[to] = node;
    } else {
        order.erase(order.begin() + from);
        order.insert(order.begin() + to, node);
    }
}

int TUnsortedOrder::Below(int count)
{
    Random = Random * 1664525u + 1013904223u;
    return static_cast<int>((Random >> 8) % static_cast<uint32_t>(count));
}
