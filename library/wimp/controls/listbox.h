#pragma once

#include "library/wimp/wimpcontrol.h"

// A list of lines, one of which may be selected; reports code 11 with its id when a person selects another.
class TListBox : public TWimpControl
{
public:
    bool Create(TWindow* owner, int id, const char* name);
    void AddString(const char* text);
    int GetNumStrings() const;
    // -1 for none.
    void SetSelection(int index);
    int GetSelection() const;
    // As wide as its longest line from now on.
    void FitLines();
    int GetId() const { return Id; }

private:
    int Id = 0;
};
