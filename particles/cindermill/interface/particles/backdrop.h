#pragma once

#include "library/wimp/gl/device/rendertextureinstance.h"
#include "particles/cindermill/interface/particles/previewlook.h"

// Fills the frame buffer with what is behind the effect.
class TBackdrop
{
public:
    // The picture of a file, as large as the view needs it without losing its shape. False, and nothing has
    // changed, if the file does not load.
    bool LoadPicture(const char* path);
    bool HasPicture() const { return !Picture.IsEmpty(); }
    // Another one after every picture.
    unsigned GetNumPictures() const { return NumPictures; }
    // Clears colour and depth. The size is the view's, in dots.
    void Draw(TBackground background, int width, int height) const;

private:
    static void DrawChecker(int width, int height);
    void DrawPicture(int width, int height) const;

    TRenderTextureInstance Picture;
    unsigned NumPictures = 0;
};
