#pragma once

#include "library/containers/string.h"
#include "library/wimp/wimpcontrol.h"

// A line of text that can be set and, unless it is a label, edited.
class TTextField : public TWimpControl
{
public:
    bool Create(TWindow* owner, int id, const char* name, bool readOnly);
    bool CreateLabel(TWindow* owner, const char* text, const char* name);
    void SetText(const char* text);
    void GetText(TString& text) const;
};
