#pragma once

#include "particles/effectgraph/effectgraph.h"

// An order of a graph's nodes from which their sort comes to a wanted order. What is sorted once mostly stays
// as it is when it is sorted again, but not always: a node with FL_LASTHINT that has given way to another one
// does so once, and the other may still end up behind it. Then the order from which that came is looked for,
// by changes that bring what is sorted nearer to what is wanted. The same wish gives the same answer.
class TUnsortedOrder
{
public:
    explicit TUnsortedOrder(const vector<TEffectNode*>& sorted);

    // False if none was found: most likely no nodes come to be sorted so.
    bool Find();
    const vector<TEffectNode*>& GetOrder() const { return Order; }

private:
    bool Climb();
    bool Sort(const vector<TEffectNode*>& order);
    void Change(vector<TEffectNode*>& order);
    int Below(int count);

    const vector<TEffectNode*>& Sorted;
    vector<TEffectNode*> Order;
    TPointerMap Places;
    // Of the last sort: how far all nodes stood from where they are to be, and where the first wrong one did.
    int Distance = 0;
    int FirstWrong = 0;
    // Where changes are likely to help begins.
    int Near = 0;
    // Sorts that may still be tried.
    int Budget = 0;
    uint32_t Random = 1;
};
