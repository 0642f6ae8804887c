#pragma once

#include "library/wimp/wimpcontrol.h"

// A line of text that only the program changes.
class TLabel : public TWimpControl
{
public:
    bool Create(TWindow* owner, const char* text, const char* name);
    void SetText(const char* text);
    int GetTextWidth(const char* text) const;
    // Assistive tools call the control what the label says.
    void Names(TWimpControl& control);
};
