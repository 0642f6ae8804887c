#pragma once

#include "library/containers/string.h"
#include "library/wimp/wimpcontrol.h"

// A page of entries to choose from: at the left headings with lines below them, at the right tiles with
// pictures. A click, or Return or Space on the entry that has the keys, reports code 7 with the entry's id.
// Entries may be chosen from the answer of a choice.
class TEntryPage : public TWimpControl
{
public:
    struct TEntry
    {
        int Id = 0;
        TString Text;
        // Below the text in small letters, and when the pointer rests on the entry; either may be empty.
        TString Detail;
        TString Help;
        // Of a tile: a file of a picture. One that cannot be read leaves the place to one of the program's.
        TString Picture;
        // Of a line: the number of one of the program's pictures.
        int Icon = 0;
    };

    bool Create(TWindow* owner, const char* name);
    // The page is filled anew, at once or when it is next seen.
    void Refresh();
    // For the page's widget, which has come to be seen.
    void FillStale();

protected:
    // Puts the entries onto the page, which is empty.
    virtual void Fill() = 0;
    void AddHeading(const char* text);
    void AddLine(const TEntry& entry);
    // A line of small letters that is none to choose.
    void AddNote(const char* text);
    // All tiles stand under one heading.
    void SetTileHeading(const char* text);
    void AddTile(const TEntry& entry);

private:
    bool IsStale = true;
};
