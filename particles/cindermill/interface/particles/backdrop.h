#pragma once

#include "library/maths/vector4.h"
#include "library/wimp/gl/device/rendertextureinstance.h"
#include "particles/cindermill/interface/particles/previewlook.h"

// Fills the frame buffer with what is behind the effect.
class TBackdrop
{
public:
    // As many pixels as a picture may have: the view waits while they are read.
    static constexpr int MaxPictureWidth = 8192;
    static constexpr int MaxPictureHeight = 4096;

    // The colour of what is one, as 0xRRGGBB, and of a checker the darker one.
    static uint32_t GetColour(const TPreviewLook& look);
    // What is behind the effect, or what it is like from afar.
    TVector4 GetMeanColour(const TPreviewLook& look) const;
    // The picture of a file, as large as the view needs it without losing its shape. False, with the reason
    // and nothing changed, if it cannot be shown.
    bool LoadPicture(const char* path, TString& fault);
    bool HasPicture() const { return !Picture.IsEmpty(); }
    // Another one after every picture.
    unsigned GetNumPictures() const { return NumPictures; }
    // So that a checker is as coarse on every screen.
    void SetDotsPerPixel(double dots) { DotsPerPixel = dots; }
    // Clears colour and depth. The size is the view's, in dots.
    void Draw(const TPreviewLook& look, int width, int height) const;

private:
    void DrawChecker(int width, int height) const;
    void DrawPicture(int width, int height) const;

    TRenderTextureInstance Picture;
    unsigned NumPictures = 0;
    double DotsPerPixel = 1;
};
