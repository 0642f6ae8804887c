#pragma once

#include "library/containers/append.h"
#include "library/containers/owner.h"

// A list of objects that it owns: it deletes what it loses, the first object first, and can be given on but
// not copied. An entry may be null.
template <class T>
class TOwnerList
{
public:
    TOwnerList() = default;
    TOwnerList(TOwnerList&& other) noexcept { Objects.swap(other.Objects); }
    TOwnerList& operator=(TOwnerList&& other) noexcept
    {
        TOwnerList taken(static_cast<TOwnerList&&>(other));
        Objects.swap(taken.Objects);
        return *this;
    }
    ~TOwnerList() { clear(); }

    int size() const { return Objects.size(); }
    bool empty() const { return Objects.empty(); }
    T* operator[](int n) const { return Objects[n]; }
    // No check: the list must not be empty.
    T* back() const { return Objects.back(); }
    T* const* begin() const { return Objects.begin(); }
    T* const* end() const { return Objects.end(); }
    // The position of the object, or -1.
    int index_of(const T* object) const { return Objects.index_of(const_cast<T*>(object)); }
    // For who only looks.
    const vector<T*>& Get() const { return Objects; }

    // Each takes the object over.
    void push_back(T* object) { Append(Objects, object); }
    void insert(int at, T* object)
    {
        MakeRoom(Objects, 1);
        Objects.insert(Objects.begin() + at, object);
    }
    // In place of the one that stands there, which is deleted.
    void Replace(int at, T* object)
    {
        TOwner<T> old(Objects[at]);
        if (old == object)
            (void)old.Release();
        Objects[at] = object;
    }

    // Gives the object to the caller and closes the gap.
    [[nodiscard]] T* Release(int at)
    {
        T* object = Objects[at];
        Objects.erase(Objects.begin() + at);
        return object;
    }
    void erase(int at) { TOwner<T>(Release(at)).Reset(); }
    // The list is empty before the first object goes.
    void clear()
    {
        static_assert(sizeof(T) > 0, "Only a class that is known whole can be deleted");
        vector<T*> doomed;
        doomed.swap(Objects);
        for (T* object : doomed)
            delete object;
    }

private:
    vector<T*> Objects;
};
