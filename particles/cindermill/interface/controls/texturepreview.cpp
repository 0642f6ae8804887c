#include "particles/cindermill/interface/controls/texturepreview.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/colourpaint.h"

namespace {
const TVector4 EmptyColour(0.30f, 0.33f, 0.34f, 0.35f);
}

void TTexturePreview::Show(const char* path)
{
    if (path == nullptr || *path == 0 || !Texture.Load(path))
        Texture.Release();
}

TVector2 TTexturePreview::GetPictureSize() const
{
    if (Texture.IsEmpty() || Texture.GetWidth() <= 0 || Texture.GetHeight() <= 0)
        return TVector2(0, 0);
    const float width = static_cast<float>(Texture.GetWidth());
    const float height = static_cast<float>(Texture.GetHeight());
    const float scale = MaxSize / (width > height ? width : height);
    return TVector2(width, height) * scale;
}

void TTexturePreview::Render(TRenderer& renderer)
{
    const TVector2 size = GetPictureSize();
    if (!(size[0] > 0)) {
        const TVector2 all(MaxSize, MaxSize);
        DrawFrame(renderer, TVector2(0, 0), all, 1, EmptyColour);
        renderer.DrawLine(TVector2(0, 0), all, 1);
        renderer.DrawLine(TVector2(0, MaxSize), TVector2(MaxSize, 0), 1);
        return;
    }
    const TVector2 min(0, 0);
    DrawAreaFrame(renderer, min, size);
    if (!AlphaOnly)
        DrawCheckerboard(renderer, min, size);
    Texture.Draw(renderer, min, size, TVector4(1, 1, 1, 1), AlphaOnly);
}

void TTexturePreview::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(-1, -1);
    max = TVector2(MaxSize + 1, MaxSize + 1);
}

TRenderObject* TTexturePreview::HitTest(const TVector2& point)
{
    (void)point;
    return nullptr;
}

bool TTexturePreview::Describe(TAccessibleTraits& traits)
{
    traits.Role = AR_PICTURE;
    traits.Name = "picture";
    return true;
}
