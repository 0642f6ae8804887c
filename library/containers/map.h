#pragma once

#include "library/containers/searchtree.h"

template <class K, class V>
struct TMapEntry
{
    K first;
    V second;
};

// See searchtree.h for the order of iteration.
template <class K, class V>
class map : public TSearchTree<TMapEntry<K, V>, K>
{
public:
    // The entry of the key, made with a default value if there is none.
    V& operator[](const K& key) { return this->InsertEntry(key, TMapEntry<K, V>{key, V()})->second; }
    typename TSearchTree<TMapEntry<K, V>, K>::iterator insert(const K& key, const V& value)
    {
        return this->InsertEntry(key, TMapEntry<K, V>{key, value});
    }
};
