#pragma once

// The unbalanced search tree behind `set` and `map`. It walks in pre-order (node, left, right), so the order
// in which elements are visited depends on the order in which they came. Polytype resolving relies on that
// order.
template <class TEntry, class K>
class TSearchTree
{
protected:
    struct TNode
    {
        TNode* Left;
        TNode* Right;
        TNode* Parent;
        TEntry Entry;
    };

    static const K& KeyOf(const K& entry) { return entry; }
    template <class P>
    static const K& KeyOf(const P& entry)
    {
        return entry.first;
    }

public:
    class iterator
    {
    public:
        explicit iterator(TNode* node = nullptr) : Ptr(node) {}
        TEntry& operator*() const { return Ptr->Entry; }
        TEntry* operator->() const { return &Ptr->Entry; }
        iterator& operator++()
        {
            Ptr = Next(Ptr);
            return *this;
        }
        bool operator==(const iterator& other) const { return Ptr == other.Ptr; }
        bool operator!=(const iterator& other) const { return Ptr != other.Ptr; }

        TNode* Ptr;

    private:
        static TNode* Next(TNode* node)
        {
            if (node->Left != nullptr)
                return node->Left;
            if (node->Right != nullptr)
                return node->Right;
            while (node->Parent != nullptr) {
                TNode* child = node;
                node = node->Parent;
                if (node->Left == child && node->Right != nullptr)
                    return node->Right;
            }
            return nullptr;
        }
    };

    TSearchTree() = default;
    TSearchTree(const TSearchTree& other) : TSearchTree()
    {
        Copy(other.Root);
        Count = other.Count;
    }
    TSearchTree& operator=(const TSearchTree& other)
    {
        if (this == &other)
            return *this;
        TSearchTree copy(other);
        TNode* root = Root;
        Root = copy.Root;
        copy.Root = root;
        Count = other.Count;
        return *this;
    }
    ~TSearchTree() { clear(); }

    iterator begin() const { return iterator(Root); }
    iterator end() const { return iterator(); }
    int size() const { return Count; }
    bool empty() const { return Root == nullptr; }
    iterator find(const K& key) const
    {
        TNode* node = Root;
        while (node != nullptr && !(KeyOf(node->Entry) == key))
            node = KeyOf(node->Entry) < key ? node->Right : node->Left;
        return iterator(node);
    }
    void clear()
    {
        Free(Root);
        Root = nullptr;
        Count = 0;
    }

protected:
    // The entry with the key, made from `entry` if there is none yet.
    iterator InsertEntry(const K& key, const TEntry& entry)
    {
        TNode** link = &Root;
        TNode* parent = nullptr;
        while (*link != nullptr) {
            TNode* node = *link;
            if (KeyOf(node->Entry) == key)
                return iterator(node);
            parent = node;
            link = KeyOf(node->Entry) < key ? &node->Right : &node->Left;
        }
        *link = new TNode{nullptr, nullptr, parent, entry};
        ++Count;
        return iterator(*link);
    }

private:
    // Both walk by the parents and never recurse, as a degenerate tree is as deep as it has nodes.
    static void Free(TNode* node)
    {
        while (node != nullptr) {
            if (node->Left != nullptr) {
                node = node->Left;
            } else if (node->Right != nullptr) {
                node = node->Right;
            } else {
                TNode* parent = node->Parent;
                if (parent != nullptr)
                    (parent->Left == node ? parent->Left : parent->Right) = nullptr;
                delete node;
                node = parent;
            }
        }
    }
    // Into an empty tree.
    void Copy(const TNode* from)
    {
        if (from == nullptr)
            return;
        Root = new TNode{nullptr, nullptr, nullptr, from->Entry};
        TNode* to = Root;
        while (to != nullptr) {
            if (from->Left != nullptr && to->Left == nullptr) {
                from = from->Left;
                to = to->Left = new TNode{nullptr, nullptr, to, from->Entry};
            } else if (from->Right != nullptr && to->Right == nullptr) {
                from = from->Right;
                to = to->Right = new TNode{nullptr, nullptr, to, from->Entry};
            } else {
                from = from->Parent;
                to = to->Parent;
            }
        }
    }

    TNode* Root = nullptr;
    int Count = 0;
};
