#pragma once

#include "library/containers/vector.h"

// Numbers for objects, by address. It cannot be iterated, so that no address decides an order.
class TPointerMap
{
public:
    // -1 for an object that is not there.
    int Find(const void* object) const;
    bool Has(const void* object) const { return Find(object) != -1; }
    // False if the object is there already; it then keeps its number.
    bool Insert(const void* object, int number = 0);
    // False if the object is not there.
    bool Remove(const void* object);
    int size() const { return Count; }

private:
    struct TSlot
    {
        const void* Object = nullptr;
        int Number = -1;
    };

    unsigned GetHome(const void* object) const;
    TSlot* FindSlot(const void* object) const;
    void Grow();

    // A power of two of slots, at most half of them used.
    mutable vector<TSlot> Slots;
    int Count = 0;
};
