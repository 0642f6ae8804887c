#include "library/wimp/controls/wimpdialogsize.h"

#include "library/wimp/windowpeer.h"

namespace {

void GetCorners(TWindowHandle handle, int corners[2][2])
{
    const QRect place = handle->geometry();
    corners[0][0] = place.x();
    corners[0][1] = place.y();
    corners[1][0] = place.x() + place.width();
    corners[1][1] = place.y() + place.height();
}

} // namespace

void TWimpDialogSize::Anchor(TWimpControl& control, int marginLeft, int marginRight)
{
    Anchor(control.GetHandle(), marginLeft, marginRight);
}

void TWimpDialogSize::Anchor(TWindowHandle handle, int marginLeft, int marginRight)
{
    if (handle != nullptr)
        Anchors.push_back(TAnchor{handle, {marginLeft, marginRight}, false, {}});
}

void TWimpDialogSize::OnSize(int width, int height)
{
    const int size[2] = {width, height};
    for (TAnchor& anchor : Anchors) {
        if (anchor.Recorded)
            Place(anchor, size);
        else
            Record(anchor, size);
    }
}

void TWimpDialogSize::Record(TAnchor& anchor, const int* size)
{
    int corners[2][2];
    GetCorners(anchor.Handle, corners);
    for (int corner = 0; corner < 2; ++corner)
        for (int axis = 0; axis < 2; ++axis)
            anchor.Distance[corner][axis] = size[axis] - corners[corner][axis];
    anchor.Recorded = true;
}

void TWimpDialogSize::Place(const TAnchor& anchor, const int* size)
{
    static constexpr int Bits[2] = {DM_RIGHT, DM_BOTTOM};
    int corners[2][2];
    GetCorners(anchor.Handle, corners);
    for (int corner = 0; corner < 2; ++corner)
        for (int axis = 0; axis < 2; ++axis)
            if ((anchor.Margin[corner] & Bits[axis]) != 0)
                corners[corner][axis] = size[axis] - anchor.Distance[corner][axis];
    const int width = corners[1][0] - corners[0][0];
    const int height = corners[1][1] - corners[0][1];
    anchor.Handle->setGeometry(corners[0][0], corners[0][1], width > 0 ? width : 0, height > 0 ? height : 0);
}
