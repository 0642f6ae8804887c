#pragma once

#include "library/containers/ownerlist.h"
#include "particles/effectgraph/nodetype.h"

// One file or directory of the node type tree, as the palette and the insert menu show it.
struct TNodeTypeItem
{
    // The file's or directory's name as found, with extension.
    TString Name;
    // -1 for a directory.
    int TypeIndex = -1;
    vector<int> Children;
};

// All node types of a directory tree. Owns them; filled once.
class TNodeTypeLibrary
{
public:
    // Goes on past bad files; their errors stand in the list.
    void Load(const char* path, TErrorList& errors);
    // Deletes all types: nobody may hold one any more.
    void Clear();
    // Takes ownership; for types that come from elsewhere than a directory.
    void AddType(TNodeType* type) { Types.push_back(type); }

    int GetNumTypes() const { return Types.size(); }
    TNodeType* GetType(int i) const { return Types[i]; }
    // The first of the name, without case; null if there is none.
    TNodeType* FindType(const char* name) const;
    // Whether a type is of the class, without case.
    bool HasClass(const char* className) const;
    // The file that the type came from; false for one that came from elsewhere.
    bool GetTypePath(int i, TString& path) const;
    // All items, those of the root and those below.
    int GetNumItems() const { return Items.size(); }
    int GetNumRootItems() const { return RootItems.size(); }
    const TNodeTypeItem& GetRootItem(int i) const { return Items[RootItems[i]]; }
    int GetRootItemIndex(int i) const { return RootItems[i]; }
    const TNodeTypeItem& GetItem(int i) const { return Items[i]; }

private:
    void LoadDirectory(const char* path, int parentItem, TErrorList& errors);
    // The index of the new item; a parent of -1 is the root.
    int AddItem(const TString& name, int typeIndex, int parentItem);

    bool FindTypeBelow(const vector<int>& items, int type, TString& path) const;

    TOwnerList<TNodeType> Types;
    TString Root;
    vector<TNodeTypeItem> Items;
    vector<int> RootItems;
};
