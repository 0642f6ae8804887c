#pragma once

#include "library/containers/searchtree.h"

// See searchtree.h for the order of iteration.
template <class K>
class set : public TSearchTree<K, K>
{
public:
    typename TSearchTree<K, K>::iterator insert(const K& key) { return this->InsertEntry(key, key); }
};
