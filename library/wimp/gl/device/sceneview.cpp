#include "library/wimp/gl/device/sceneview.h"

void TSceneView::Set(const TMatrix4& worldView, const TMatrix4& projection)
{
    WorldView = worldView;
    Projection = projection;
    WorldViewProjection.Multiply(WorldView, Projection);

    TMatrix43 frame;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 3; ++column)
            frame[row][column] = WorldView[row][column];
    // The eye is the view space's origin, taken back into the world.
    Eye = frame.Invert() ? frame.GetTranslation() : TVector3(0, 0, 0);
}
