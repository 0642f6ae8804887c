#include "particles/cindermill/interface/particles/backdrop.h"

#include "library/containers/image/image.h"
#include "library/system/file.h"

#include <GL/glew.h>

namespace {

// By TBackground; what is no colour lies on the one that is given here.
constexpr uint32_t Colours[BG_NUMBACKGROUNDS] = {0xCCCCCC, 0x333333, 0x000000, 0xFFFFFF, 0x0D1433,
                                                 0x00B040, 0xCCCCCC, 0x999999, 0x000000};
constexpr uint32_t LightCell = 0xBFBFBF;
// In pixels.
constexpr double CellSize = 24;

// The whole view, from -1 to 1, with no program and no matrix in between.
class TFlatView
{
public:
    TFlatView()
    {
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glLoadIdentity();
    }
    ~TFlatView()
    {
        glMatrixMode(GL_PROJECTION);
        glPopMatrix();
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
    }
    TFlatView(const TFlatView&) = delete;
    TFlatView& operator=(const TFlatView&) = delete;
};

TVector4 ToVector(uint32_t colour)
{
    const auto part = [colour](int shift) {
        constexpr float most = 255;
        return static_cast<float>(colour >> shift & 0xFF) / most;
    };
    return TVector4(part(16), part(8), part(0), 1);
}

// A square from a corner on, in dots.
void FillCell(int x, int y, int cell, int width, int height)
{
    const float left = 2.0f * static_cast<float>(x) / static_cast<float>(width) - 1;
    const float right = 2.0f * static_cast<float>(x + cell) / static_cast<float>(width) - 1;
    const float top = 1 - 2.0f * static_cast<float>(y) / static_cast<float>(height);
    const float bottom = 1 - 2.0f * static_cast<float>(y + cell) / static_cast<float>(height);
    glVertex2f(left, bottom);
    glVertex2f(right, bottom);
    glVertex2f(right, top);
    glVertex2f(left, top);
}

} // namespace

uint32_t TBackdrop::GetColour(const TPreviewLook& look)
{
    return look.Background == BG_COLOUR ? look.Colour : Colours[look.Background];
}

TVector4 TBackdrop::GetMeanColour(const TPreviewLook& look) const
{
    if (look.Background == BG_PICTURE && HasPicture())
        return ToVector(Picture.GetMeanColour());
    const TVector4 colour = ToVector(GetColour(look));
    return look.Background == BG_CHECKER ? (colour + ToVector(LightCell)) * 0.5f : colour;
}

bool TBackdrop::LoadPicture(const char* path, TString& fault)
{
    int width = 0;
    int height = 0;
    if (TImage::ReadSize(path, width, height) &&
        int64_t{width} * height > int64_t{MaxPictureWidth} * MaxPictureHeight) {
        fault.Format("it has %d x %d pixels; a background may have as many as %d x %d are", width, height,
                     MaxPictureWidth, MaxPictureHeight);
        return false;
    }
    TRenderTextureInstance loaded;
    if (loaded.Load(path)) {
        Picture = loaded;
        ++NumPictures;
        return true;
    }
    GetReadFault(path, fault);
    if (fault.IsEmpty())
        fault = "it is no whole DDS or HVT file";
    return false;
}

void TBackdrop::Draw(const TPreviewLook& look, int width, int height) const
{
    const TVector4 colour = ToVector(GetColour(look));
    glClearColor(colour[0], colour[1], colour[2], 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (width <= 0 || height <= 0)
        return;
    if (look.Background == BG_CHECKER)
        DrawChecker(width, height);
    else if (look.Background == BG_PICTURE && HasPicture())
        DrawPicture(width, height);
}

void TBackdrop::DrawChecker(int width, int height) const
{
    const int cell = static_cast<int>(CellSize * DotsPerPixel + 0.5);
    const TFlatView flat;
    const TVector4 light = ToVector(LightCell);
    glColor4f(light[0], light[1], light[2], 1);
    glBegin(GL_QUADS);
    for (int row = 0; row * cell < height; ++row)
        for (int column = row & 1; column * cell < width; column += 2)
            FillCell(column * cell, row * cell, cell, width, height);
    glEnd();
}

// What is too much of it is cut off at both sides.
void TBackdrop::DrawPicture(int width, int height) const
{
    const double wanted = static_cast<double>(width) / height;
    const double shape = static_cast<double>(Picture.GetWidth()) / Picture.GetHeight();
    const float u = static_cast<float>(wanted < shape ? wanted / shape / 2 : 0.5);
    const float v = static_cast<float>(wanted < shape ? 0.5 : shape / wanted / 2);
    const TFlatView flat;
    Picture.Bind(0);
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glColor4f(1, 1, 1, 1);
    glBegin(GL_QUADS);
    for (int corner = 0; corner < 4; ++corner) {
        const float x = corner == 1 || corner == 2 ? 1.0f : -1.0f;
        const float y = corner >= 2 ? 1.0f : -1.0f;
        glTexCoord2f(0.5f + x * u, 0.5f + y * v);
        glVertex2f(x, y);
    }
    glEnd();
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glDisable(GL_TEXTURE_2D);
}
