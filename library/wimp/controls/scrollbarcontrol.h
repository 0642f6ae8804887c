#pragma once

#include "library/wimp/wimpcontrol.h"

// A scroll bar that lies; reports code 12 when a person moves it.
class TScrollBarControl : public TWimpControl
{
public:
    bool Create(TWindow* owner, int id, const char* name);
    // Of so many pixels, `page` are in sight. The position is kept as far as it fits.
    void SetRange(int whole, int page, int line);
    void SetPosition(int position);
    int GetPosition() const;
    // How high it wants to be.
    int GetHeight() const;

private:
    int Id = 0;
};
