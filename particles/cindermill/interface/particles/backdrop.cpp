#include "particles/cindermill/interface/particles/backdrop.h"

#include <GL/glew.h>

namespace {

struct TShade
{
    float Red;
    float Green;
    float Blue;
};

// By TBackground; those that are no colours lie on the first one.
constexpr TShade Shades[BG_NUMBACKGROUNDS] = {
    {0.8f, 0.8f, 0.8f},   {0.2f, 0.2f, 0.2f},   {0, 0, 0},          {1, 1, 1},
    {0.05f, 0.08f, 0.2f}, {0.0f, 0.69f, 0.25f}, {0.6f, 0.6f, 0.6f}, {0, 0, 0}};
constexpr TShade LightCell = {0.75f, 0.75f, 0.75f};
// In dots.
constexpr int CellSize = 24;

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

void FillCell(int x, int y, int width, int height)
{
    const float left = 2.0f * static_cast<float>(x) / static_cast<float>(width) - 1;
    const float right = 2.0f * static_cast<float>(x + CellSize) / static_cast<float>(width) - 1;
    const float top = 1 - 2.0f * static_cast<float>(y) / static_cast<float>(height);
    const float bottom = 1 - 2.0f * static_cast<float>(y + CellSize) / static_cast<float>(height);
    glVertex2f(left, bottom);
    glVertex2f(right, bottom);
    glVertex2f(right, top);
    glVertex2f(left, top);
}

} // namespace

bool TBackdrop::LoadPicture(const char* path)
{
    TRenderTextureInstance loaded;
    if (!loaded.Load(path))
        return false;
    Picture = loaded;
    ++NumPictures;
    return true;
}

void TBackdrop::Draw(TBackground background, int width, int height) const
{
    const TShade& shade = Shades[background];
    glClearColor(shade.Red, shade.Green, shade.Blue, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (width <= 0 || height <= 0)
        return;
    if (background == BG_CHECKER)
        DrawChecker(width, height);
    else if (background == BG_PICTURE && HasPicture())
        DrawPicture(width, height);
}

void TBackdrop::DrawChecker(int width, int height)
{
    const TFlatView flat;
    glColor4f(LightCell.Red, LightCell.Green, LightCell.Blue, 1);
    glBegin(GL_QUADS);
    for (int row = 0; row * CellSize < height; ++row)
        for (int column = row & 1; column * CellSize < width; column += 2)
            FillCell(column * CellSize, row * CellSize, width, height);
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
