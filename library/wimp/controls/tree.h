#pragma once

#include "library/containers/ownerlist.h"
#include "library/containers/sortedmap.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/wimpcontrol.h"

class QTreeWidgetItem;

// A line of a tree with the lines below it. Belongs to its tree.
class TTreeItem
{
public:
    const TString& GetText() const { return Text; }
    TTreeItem* GetParent() const { return Parent; }
    const vector<TTreeItem*>& GetChildren() const { return Children.Get(); }
    // Whether the item is this one or stands anywhere below it.
    bool HasChild(const TTreeItem* item) const;

private:
    friend class TTree;
    friend class TOwner<TTreeItem>;
    friend class TOwnerList<TTreeItem>;
    TTreeItem() = default;
    ~TTreeItem() = default;

    TString Text;
    TTreeItem* Parent = nullptr;
    TOwnerList<TTreeItem> Children;
    QTreeWidgetItem* Control = nullptr;
};

// Lines that unfold; reports code 11 with its id when a person selects one. Items that are not the tree's
// own assert "ValidateItem(item)".
class TTree : public TWimpControl
{
public:
    bool Create(TWindow* owner, int id, const char* name);
    // Under a parent, or as a root.
    TTreeItem* Add(const char* text, TTreeItem* parent = nullptr);
    // With all below it. Asserts "it != Roots.end()" and "found" of a tree that has come apart.
    void Remove(TTreeItem* item);
    // To the end of another parent's lines, or of the roots. Asserts "!item->HasChild(parent)".
    void Move(TTreeItem* item, TTreeItem* parent);
    // Null for none.
    void SetSelection(TTreeItem* item);
    // Asserts "it != ControlMap.end()".
    TTreeItem* GetSelection() const;
    void Expand(TTreeItem* item, bool expanded);
    const vector<TTreeItem*>& GetRoots() const { return Roots.Get(); }
    int GetId() const { return Id; }

private:
    bool ValidateItem(const TTreeItem* item) const;
    void Insert(TTreeItem* item, TTreeItem* parent);
    // Gives the item to the caller.
    [[nodiscard]] TTreeItem* Detach(TTreeItem* item);
    void Forget(TTreeItem* item);

    sortedmap<QTreeWidgetItem*, TTreeItem*> ControlMap;
    TOwnerList<TTreeItem> Roots;
    int Id = 0;
};
