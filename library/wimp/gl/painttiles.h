#pragma once

#include "library/containers/array.h"
#include "library/containers/vector.h"
#include "library/wimp/gl/renderlist.h"

#include <cstdint>

// Where in a window a frame lies.
struct TPaintPlace
{
    // Of the window, in dots.
    int Width = 0;
    int Height = 0;
    // Dots of the target to one of the window.
    int Supersampling = 1;
    // How far the view has been moved, in whole dots of the window.
    int Moved[2] = {0, 0};
};

// Tells which parts of a picture another frame changes. The picture is divided into tiles that move along
// with the view; of each, what the list of a frame puts there is summed up in a number. Nobody has to tell
// what has changed, so nothing can be forgotten.
class TPaintTiles
{
public:
    // Of a tile, in dots of the window.
    static constexpr int Side = 32;

    // The picture is lost: all of the next frame is to be painted.
    void Forget() { Known = false; }
    // The parts of the frame that was compared last have been painted. Until then the picture is lost.
    void Keep() { Known = true; }
    // Compares a frame with the one before.
    void Compare(const TRenderList& list, const TPaintPlace& place);

    // What is to be painted, in dots of the window.
    const vector<TDotRectangle>& GetParts() const { return Parts; }
    // How far what was painted before has moved; as far as it is still in sight it stays.
    const int* GetShift() const { return Shift; }

private:
    // The tiles that a frame shows, and where the first of them begins: in dots, left of or on the edge.
    struct TGrid
    {
        TPaintPlace Place;
        int First[2] = {0, 0};
        int Count[2] = {0, 0};
        array<uint64_t> Looks;
    };

    void BeginGrid(const TPaintPlace& place);
    void AddItem(const TRenderList& list, const TRenderList::TItem& item);
    void AddBox(const TRenderList::TVertex* vertices, const TRenderList::TItem& item);
    void AddLook(const TDotRectangle& bounds, uint64_t look);
    TDotRectangle GetTiles(const TDotRectangle& bounds) const;
    uint64_t GetLook(const TRenderList::TItem& item, const TRenderList::TVertex* vertices) const;
    TDotRectangle GetVisible(int column, int row) const;
    bool IsSame(int column, int row, const TDotRectangle& kept) const;
    void FindParts();
    void AddPart(const TDotRectangle& part);
    void JoinClosest();

    TGrid Now;
    TGrid Before;
    // Side in the parts of the list's dots, and where the window begins in the first tile.
    int TileParts = 0;
    int Phase[2] = {0, 0};
    // What is taken off a place so that it is the same wherever the view has been moved to.
    int Anchor[2] = {0, 0};
    int Shift[2] = {0, 0};
    vector<TDotRectangle> Parts;
    bool Known = false;
};
