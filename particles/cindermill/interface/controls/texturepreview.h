#pragma once

#include "library/wimp/gl/device/rendertextureinstance.h"
#include "library/wimp/gl/renderobject.h"

// A small picture of a texture in the texture's shape, or an empty frame. Takes no hits.
class TTexturePreview : public TRenderObject
{
public:
    static constexpr float MaxSize = 100.0f;

    // The path is a real one; empty for no picture. What does not load is none either.
    void Show(const char* path);
    void SetAlphaOnly(bool alphaOnly) { AlphaOnly = alphaOnly; }
    bool IsAlphaOnly() const { return AlphaOnly; }
    const TRenderTextureInstance& GetTexture() const { return Texture; }
    // As it is shown; zeros without a picture.
    TVector2 GetPictureSize() const;

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Describe(TAccessibleTraits& traits) override;

private:
    TRenderTextureInstance Texture;
    bool AlphaOnly = false;
};
