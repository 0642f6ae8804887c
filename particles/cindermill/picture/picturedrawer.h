#pragma once

#include "library/wimp/gdi/rgbpicture.h"
#include "library/wimp/gl/offscreen/offscreenwindow.h"
#include "particles/cindermill/interface/particles/particlescene.h"
#include "particles/cindermill/picture/picturecamera.h"

class TDocument;

// Draws documents as the preview does, into pictures of one size.
class TPictureDrawer
{
public:
    // False with the reason, on the standard error, if nothing can be drawn on this machine, or not so large.
    bool Create(int width, int height);
    TOffscreenContext& GetContext() { return Context; }

    // The document's engine as it stands. False if the drawing failed, which is told on the standard error.
    bool Draw(TDocument& document, const TPictureOptions& options, float turn, TRgbPicture& picture);

    // False with the reason on the standard error.
    static bool WritePicture(const TRgbPicture& picture, const char* path);

private:
    TOffscreenContext Context;
    TOffscreenWindow Window{Context};
    TParticleScene Scene;
};
