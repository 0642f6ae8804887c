#include "particles/effectgraph/nodetypelibrary.h"

#include "library/containers/append.h"
#include "library/system/path.h"
#include "library/system/systemerror.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/xmltext.h"

#include <errno.h>

TNodeType* TNodeTypeLibrary::FindType(const char* name) const
{
    for (TNodeType* type : Types)
        if (type->Name.Compare(name) == 0)
            return type;
    return nullptr;
}

bool TNodeTypeLibrary::HasClass(const char* className) const
{
    for (const TNodeType* type : Types)
        if (type->IsOfClass(className))
            return true;
    return false;
}

void TNodeTypeLibrary::Load(const char* path, TErrorList& errors)
{
    ToKeptPath(path, Root);
    LoadDirectory(Root, -1, errors);
    if (Types.empty())
        errors.Add(
            new TError("No valid .xml node type files found under path %s\n", QuoteText(path).Print()));
}

void TNodeTypeLibrary::Clear()
{
    Types.clear();
    Items.clear();
    RootItems.clear();
}

void TNodeTypeLibrary::LoadDirectory(const char* path, int parentItem, TErrorList& errors)
{
    vector<TDirectoryEntry> entries;
    int error = 0;
    if (!ListDirectory(path, entries, &error)) {
        if (error != ENOENT)
            errors.Add(new TError("%s: %s", QuoteText(GetShownPath(path)).Print(),
                                  GetSystemErrorText(error).Print()));
        return;
    }
    TString prefix(path);
    const int length = prefix.Length();
    if (length == 0 || prefix.Print()[length - 1] != '\\')
        prefix += "\\";
    for (const TDirectoryEntry& entry : entries) {
        TString full(prefix);
        full += entry.Name;
        if (entry.IsDirectory) {
            if (entry.Name.Print()[0] != '.')
                LoadDirectory(full, AddItem(entry.Name, -1, parentItem), errors);
            continue;
        }
        TString extension;
        extension.SetExtension(entry.Name);
        if (extension.Compare("xml") != 0)
            continue;
        TOwner<TNodeType> type(new TNodeType);
        if (!type->LoadXml(full, errors))
            continue;
        AddItem(entry.Name, Types.size(), parentItem);
        Types.push_back(type.Release());
    }
}

// `path` is that of the items' folder, and then the type's.
bool TNodeTypeLibrary::FindTypeBelow(const vector<int>& items, int type, TString& path) const
{
    for (const int index : items) {
        TString below(path);
        if (below.IsEmpty() || below.Print()[below.Length() - 1] != '\\')
            below += "\\";
        below += Items[index].Name.Print();
        if (Items[index].TypeIndex != type && !FindTypeBelow(Items[index].Children, type, below))
            continue;
        path = below;
        return true;
    }
    return false;
}

bool TNodeTypeLibrary::GetTypePath(int i, TString& path) const
{
    path = Root;
    return FindTypeBelow(RootItems, i, path);
}

int TNodeTypeLibrary::AddItem(const TString& name, int typeIndex, int parentItem)
{
    const int index = Items.size();
    TNodeTypeItem item;
    item.Name = name;
    item.TypeIndex = typeIndex;
    Append(Items, item);
    if (parentItem == -1)
        Append(RootItems, index);
    else
        Append(Items[parentItem].Children, index);
    return index;
}
