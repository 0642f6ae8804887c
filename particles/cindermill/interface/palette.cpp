#include "particles/cindermill/interface/palette.h"

#include "particles/cindermill/interface/graph/nodesearch.h"
#include "particles/effectgraph/nodetypelibrary.h"

void TPalette::Open(const TNodeTypeLibrary& library)
{
    Library = &library;
    Expanded.clear();
    for (int i = 0; i < library.GetNumItems(); ++i)
        Expanded.push_back(1);
    Rebuild();
}

void TPalette::Toggle(int item)
{
    Expanded[item] = Expanded[item] != 0 ? 0 : 1;
    Rebuild();
}

void TPalette::Rebuild()
{
    Rows.clear();
    for (int i = 0; i < Library->GetNumRootItems(); ++i)
        AddRow(Library->GetRootItemIndex(i), IndentStep, -1, TString());
}

void TPalette::SetFilter(const char* text)
{
    Filter = text;
    Rebuild();
}

// A category is wanted for what is in it.
bool TPalette::IsWanted(int item, const TString& folder) const
{
    if (Filter.IsEmpty())
        return true;
    const TNodeTypeItem& entry = Library->GetItem(item);
    if (entry.TypeIndex != -1)
        return IsFound(Filter.Print(), GetTypeEntry(*Library->GetType(entry.TypeIndex), folder));
    const TString inner = GetInnerFolder(folder, entry.Name);
    for (const int child : entry.Children)
        if (IsWanted(child, inner))
            return true;
    return false;
}

void TPalette::AddRow(int item, int indent, int parent, const TString& folder)
{
    if (!IsWanted(item, folder))
        return;
    const TNodeTypeItem& entry = Library->GetItem(item);
    const int row = Rows.size();
    Rows.push_back(TPaletteRow{item, entry.TypeIndex, indent, row * RowHeight, parent});
    if (entry.TypeIndex != -1 || (Filter.IsEmpty() && !IsExpanded(item)))
        return;
    const TString inner = GetInnerFolder(folder, entry.Name);
    for (const int child : entry.Children)
        AddRow(child, indent + IndentStep, row, inner);
}

int TPalette::FindRow(int y) const
{
    return y >= 0 && y < GetHeight() ? y / RowHeight : -1;
}

int TPalette::FindLastChild(int row) const
{
    for (int i = Rows.size() - 1; i > row; --i)
        if (Rows[i].Parent == row)
            return i;
    return -1;
}
