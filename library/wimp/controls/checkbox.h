#pragma once

#include "library/wimp/wimpcontrol.h"

// A box that is checked or clear; reports code 7 with its id when a person clicks it.
class TCheckBox : public TWimpControl
{
public:
    bool Create(TWindow* owner, int id, const char* text, const char* name);
    bool GetCheck() const;
    void SetCheck(bool checked);
    int GetId() const { return Id; }

private:
    int Id = 0;
};
