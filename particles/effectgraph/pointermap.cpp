#include "particles/effectgraph/pointermap.h"

#include <cstdint>

constexpr int FirstSize = 32;

// Where the search for an object begins.
unsigned TPointerMap::GetHome(const void* object) const
{
    const uint64_t mixed = reinterpret_cast<uintptr_t>(object) * uint64_t(0x9E3779B97F4A7C15u);
    return static_cast<unsigned>(mixed >> 32) & (static_cast<unsigned>(Slots.size()) - 1);
}

TPointerMap::TSlot* TPointerMap::FindSlot(const void* object) const
{
    const unsigned mask = static_cast<unsigned>(Slots.size()) - 1;
    unsigned at = GetHome(object);
    TSlot* slots = Slots.data();
    while (slots[at].Object != nullptr && slots[at].Object != object)
        at = (at + 1) & mask;
    return slots + at;
}

int TPointerMap::Find(const void* object) const
{
    if (object == nullptr || Slots.empty())
        return -1;
    return FindSlot(object)->Number;
}

bool TPointerMap::Insert(const void* object, int number)
{
    ASSERT(object != nullptr && number >= 0);
    if (Count * 2 >= Slots.size())
        Grow();
    TSlot* slot = FindSlot(object);
    if (slot->Object != nullptr)
        return false;
    slot->Object = object;
    slot->Number = number;
    ++Count;
    return true;
}

// An object stands behind its home with no empty slot between: those behind the gap that could not be found
// beyond it move into it.
bool TPointerMap::Remove(const void* object)
{
    if (Find(object) == -1)
        return false;
    const unsigned mask = static_cast<unsigned>(Slots.size()) - 1;
    TSlot* slots = Slots.data();
    unsigned gap = static_cast<unsigned>(FindSlot(object) - slots);
    for (unsigned at = (gap + 1) & mask; slots[at].Object != nullptr; at = (at + 1) & mask) {
        const unsigned home = GetHome(slots[at].Object);
        if (((at - home) & mask) < ((at - gap) & mask))
            continue;
        slots[gap] = slots[at];
        gap = at;
    }
    slots[gap] = TSlot();
    --Count;
    return true;
}

void TPointerMap::Grow()
{
    vector<TSlot> old;
    old.swap(Slots);
    Slots.resize(old.empty() ? FirstSize : old.size() * 2);
    for (const TSlot& slot : old)
        if (slot.Object != nullptr)
            *FindSlot(slot.Object) = slot;
}
