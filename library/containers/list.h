#pragma once

#include "library/containers/assertion.h"

// A singly linked list with no tail pointer and no count: appending and counting walk it.
template <class T>
class list
{
    struct TNode
    {
        TNode* Next;
        T Value;
    };

public:
    class iterator
    {
    public:
        explicit iterator(TNode* node = nullptr) : Ptr(node) {}
        T& operator*() const { return Ptr->Value; }
        T* operator->() const { return &Ptr->Value; }
        iterator& operator++()
        {
            Ptr = Ptr->Next;
            return *this;
        }
        bool operator==(const iterator& other) const { return Ptr == other.Ptr; }
        bool operator!=(const iterator& other) const { return Ptr != other.Ptr; }

        TNode* Ptr;
    };

    list() = default;
    list(const list& other) : list()
    {
        TNode** link = &_First;
        for (TNode* node = other._First; node != nullptr; node = node->Next) {
            *link = new TNode{nullptr, node->Value};
            link = &(*link)->Next;
        }
    }
    list& operator=(const list& other)
    {
        if (this == &other)
            return *this;
        list copy(other);
        TNode* first = _First;
        _First = copy._First;
        copy._First = first;
        return *this;
    }
    ~list() { clear(); }

    // The elements are not the list's own state that const guards: iteration over a const list is allowed.
    iterator begin() const { return iterator(_First); }
    iterator end() const { return iterator(); }
    bool empty() const { return _First == nullptr; }
    int size() const
    {
        int count = 0;
        for (TNode* node = _First; node != nullptr; node = node->Next)
            ++count;
        return count;
    }
    void push_back(const T& value)
    {
        TNode** link = &_First;
        while (*link != nullptr)
            link = &(*link)->Next;
        *link = new TNode{nullptr, value};
    }
    T& back()
    {
        ASSERT_TEXT(_First != nullptr, "_First != 0");
        TNode* node = _First;
        while (node->Next != nullptr)
            node = node->Next;
        return node->Value;
    }
    void pop_back()
    {
        ASSERT_TEXT(_First != nullptr, "_First!=0");
        TNode** link = &_First;
        while ((*link)->Next != nullptr)
            link = &(*link)->Next;
        delete *link;
        *link = nullptr;
    }
    T& operator[](int n)
    {
        iterator it(_First);
        for (int i = 0; i < n; ++i) {
            ASSERT_TEXT(it.Ptr != nullptr, "it.Ptr != 0");
            ++it;
        }
        ASSERT_TEXT(it.Ptr != nullptr, "it.Ptr != 0");
        return *it;
    }
    // Returns the element behind the one erased.
    iterator erase(iterator it)
    {
        TNode** link = &_First;
        while (*link != nullptr && *link != it.Ptr)
            link = &(*link)->Next;
        ASSERT_TEXT(*link != nullptr, "it!=end()");
        TNode* next = it.Ptr->Next;
        delete it.Ptr;
        *link = next;
        return iterator(next);
    }
    void clear()
    {
        while (_First != nullptr) {
            TNode* next = _First->Next;
            delete _First;
            _First = next;
        }
    }

private:
    TNode* _First = nullptr;
};
