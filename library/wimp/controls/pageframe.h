#pragma once

#include "library/wimp/window.h"

// A sunken frame in which one of several pages is shown, each a window of kind WK_CHILD of the frame's owner.
// It asks for the room of the largest; where it gets less, the pages are scrolled.
class TPageFrame : public TWimpControl
{
public:
    bool Create(TWindow* owner, const char* name);
    // The page moves into the frame and is hidden, but for the first. It stays its owner's.
    void AddPage(TWindow& page);
    // By the order in which they were added.
    void ShowPage(int page);
};
