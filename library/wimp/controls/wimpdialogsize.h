#pragma once

#include "library/containers/vector.h"
#include "library/wimp/wimpcontrol.h"

// Which edges of the dialog a corner of a control keeps its distance from.
enum TDialogMargin
{
    DM_NONE = 0,
    DM_RIGHT = 1,
    DM_BOTTOM = 2
};

// Keeps the controls of a dialog in their positions relative to its edges while its size changes.
class TWimpDialogSize
{
public:
    // TDialogMargin bits: the first for the control's left and top edge, the second for its right and bottom
    // one. Both alike move it, the second alone stretches it. The control outlives this object or its own
    // dialog.
    void Anchor(TWimpControl& control, int marginLeft, int marginRight);
    void Anchor(TWindowHandle handle, int marginLeft, int marginRight);
    // The dialog's new size. The first one is that in which the controls stand as they were laid out.
    void OnSize(int width, int height);

private:
    struct TAnchor
    {
        TWindowHandle Handle;
        int Margin[2];
        bool Recorded;
        // Of both corners, across and down, from the dialog's right and bottom edge.
        int Distance[2][2];
    };

    static void Record(TAnchor& anchor, const int* size);
    static void Place(const TAnchor& anchor, const int* size);

    vector<TAnchor> Anchors;
};
