#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

class TNodeTypeLibrary;

// One line of the palette of node types, in the order in which they stand.
struct TPaletteRow
{
    // The library's entry, and its type; -1 for a category.
    int Item;
    int Type;
    int Indent;
    // From the top of the whole palette.
    int Top;
    // The row of the category that the entry belongs to; -1 at the top level.
    int Parent;
};

// The tree of categories and types as it is open at the moment.
class TPalette
{
public:
    static constexpr int RowHeight = 20;
    static constexpr int IndentStep = 10;

    // The library must stay. Everything is open at first.
    void Open(const TNodeTypeLibrary& library);
    void Toggle(int item);
    // Only types that a search for the text finds, with their categories open; all as before for an empty
    // one.
    void SetFilter(const char* text);
    const TString& GetFilter() const { return Filter; }
    // Categories stand open while a filter is set.
    bool HasFilter() const { return !Filter.IsEmpty(); }
    bool IsExpanded(int item) const { return Expanded[item] != 0; }

    const vector<TPaletteRow>& GetRows() const { return Rows; }
    int GetHeight() const { return Rows.size() * RowHeight; }
    // The row at a height; -1 for none.
    int FindRow(int y) const;
    // The last row that belongs straight to the category; -1 for none.
    int FindLastChild(int row) const;

private:
    void Rebuild();
    void AddRow(int item, int indent, int parent, const TString& folder);
    bool IsWanted(int item, const TString& folder) const;

    const TNodeTypeLibrary* Library = nullptr;
    // One for each entry of the library.
    vector<uint8_t> Expanded;
    vector<TPaletteRow> Rows;
    TString Filter;
};
