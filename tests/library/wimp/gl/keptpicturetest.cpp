#include "support/gltest.h"
#include "support/testsupport.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/device/rendertexture.h"
#include "library/wimp/gl/device/rendertextureinstance.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderobjects.h"
#include "library/wimp/gl/renderpath.h"

#include <GL/glew.h>

#include <memory>
#include <random>

// A frame paints only what differs from the one before. Whatever happens in between, a window must show what
// painting everything shows.

namespace {

constexpr int TextureSide = 8;
constexpr int NumTexelBytes = TextureSide * TextureSide * 4;

enum TShapeKind
{
    SK_BOX,
    SK_LINE,
    SK_CURVE,
    SK_PATH,
    SK_TEXT,
    SK_TEXTURE,
    SK_SHADED,
    SK_CLIPPED,
    SK_NUMKINDS
};

class TShape : public TRenderObject
{
public:
    TShape(int kind, const TFontInstance& font, const TRenderTextureInstance& texture)
        : Kind(kind), Font(font), Texture(texture)
    {
    }
    void GetBounds(TVector2& min, TVector2& max) override
    {
        min = TVector2(-4, -4);
        max = Size + TVector2(60, 24);
    }
    void Render(TRenderer& renderer) override
    {
        const TVector2 zero(0, 0);
        const TVector2 bezier[4] = {zero, TVector2(Size[0], 0), TVector2(0, Size[1]), Size};
        renderer.SetColour(Colour);
        switch (Kind) {
        case SK_BOX:
            renderer.DrawRectangle(zero, Size);
            break;
        case SK_LINE:
            renderer.DrawLine(zero, Size, 1.75f);
            renderer.DrawLine(zero, TVector2(Size[0], 0), 1);
            break;
        case SK_CURVE:
            renderer.DrawCurve(bezier, 2.25f);
            break;
        case SK_PATH:
            Path.MoveTo(zero);
            Path.CurveTo(bezier[1], Size, Size);
            Path.LineTo(TVector2(0, Size[1]));
            Path.Close();
            Path.SetFillColour(Colour);
            Path.SetStrokeColour(TVector4(0, 0, 0, 1));
            Path.SetWidth(1);
            Path.Render(renderer, TVector2(0.3f, 0.1f), TVector2(1, 1), 1);
            break;
        case SK_TEXT:
            Font.DrawText(renderer, zero, Text.c_str(), Colour);
            break;
        case SK_TEXTURE:
            Texture.Draw(renderer, zero, Size, Colour, false);
            break;
        case SK_SHADED:
            renderer.Begin(PR_QUADS);
            renderer.Vertex(zero);
            renderer.SetColour(TVector4(1, 1, 1, 1));
            renderer.Vertex(TVector2(Size[0], 0));
            renderer.Vertex(Size);
            renderer.SetColour(Colour);
            renderer.Vertex(TVector2(0, Size[1]));
            renderer.End();
            break;
        default:
            renderer.PushWindow(TVector2(3, 5), Size * 0.7f);
            renderer.DrawCurve(bezier, 9);
            renderer.DrawRectangle(TVector2(-10, Size[1] * 0.5f), TVector2(200, 200));
            Font.DrawText(renderer, zero, Text.c_str(), TVector4(0, 0, 0, 1));
            renderer.PopWindow();
            break;
        }
    }

    int Kind;
    TVector2 Size = TVector2(40, 30);
    TVector4 Colour = TVector4(0, 0, 0, 1);
    std::string Text = "Position";
    TFontInstance Font;
    TRenderTextureInstance Texture;
    TRenderPath Path;
};

// Draws lines from edge to edge of what is in sight, as the paper of a graph does.
class TGround : public TRenderObject
{
public:
    void GetBounds(TVector2& min, TVector2& max) override
    {
        min = TVector2(-1e30f, -1e30f);
        max = TVector2(1e30f, 1e30f);
    }
    void Render(TRenderer& renderer) override
    {
        TVector2 min;
        TVector2 max;
        renderer.GetVisibleRect(min, max);
        renderer.SetColour(TVector4(0.9f, 0.9f, 0.9f, 1));
        for (int axis = 0; axis < 2; ++axis)
            for (float place = std::ceil(min[axis] / 20) * 20; place < max[axis]; place += 20) {
                TVector2 from = min;
                TVector2 to = max;
                from[axis] = to[axis] = place;
                renderer.DrawLine(from, to, 1 / renderer.GetScale()[axis]);
            }
    }
    TRenderObject* HitTest(const TVector2&) override { return nullptr; }
};

class KeptPicture : public TGlTest
{
protected:
    void SetUp() override
    {
        TGlTest::SetUp();
        ASSERT_TRUE(FullRenderer.Init(&FullWindow, &Renderer));
        ASSERT_TRUE(Font.Create("Arial (TrueType)", 10));
        uint8_t texels[NumTexelBytes];
        FillTexels(texels, 7);
        Texture.Create(TextureSide, TextureSide, TF_RGBA8, texels);
        Root.AddObject(&Ground);
    }
    // Sizes of both windows, on a screen of the scale.
    void SetScreen(double dotsPerPixel)
    {
        for (TTestWindow* window : {&Window, &FullWindow}) {
            window->DotsPerPixel = dotsPerPixel;
            window->Resize(static_cast<int>(Width * dotsPerPixel), static_cast<int>(Height * dotsPerPixel));
        }
    }
    static void FillTexels(uint8_t (&texels)[NumTexelBytes], int seed)
    {
        for (int i = 0; i < NumTexelBytes; ++i)
            texels[i] = static_cast<uint8_t>(i % 4 == 3 ? 255 : i * seed * 31);
    }
    int Random(int end) { return static_cast<int>(Generator() % static_cast<unsigned>(end)); }
    float RandomPlace(int end) { return static_cast<float>(Random(end * 8)) / 8; }

    void AddShape()
    {
        Shapes.push_back(std::make_unique<TShape>(Random(SK_NUMKINDS), Font, Texture));
        Root.AddObject(Shapes.back().get());
        Change(*Shapes.back());
    }
    void Change(TShape& shape)
    {
        shape.SetOrigin(TVector2(RandomPlace(400) - 100, RandomPlace(300) - 75));
        shape.Size = TVector2(RandomPlace(90) + 1, RandomPlace(60) + 1);
        for (int i = 0; i < 4; ++i)
            shape.Colour[i] = static_cast<float>(Random(5)) / 4;
        shape.Text = "Text " + std::to_string(Random(1000));
        shape.TouchBounds();
    }
    void Fill()
    {
        constexpr int count = 25;
        Shapes.clear();
        for (int i = 0; i < count; ++i)
            AddShape();
    }
    // Something of what a hand does.
    void Step()
    {
        const TVector2 scale = Renderer.GetScale();
        const float dots = static_cast<float>(Window.DotsPerPixel);
        const size_t shape = static_cast<size_t>(Random(static_cast<int>(Shapes.size())));
        switch (Random(8)) {
        case 0:
        case 1:
            // By whole dots of the screen.
            Renderer.SetOffset(Renderer.GetOffset() +
                               TVector2(static_cast<float>(Random(41) - 20) / (scale[0] * dots),
                                        static_cast<float>(Random(41) - 20) / (scale[1] * dots)));
            break;
        case 2:
            Renderer.SetOffset(Renderer.GetOffset() + TVector2(RandomPlace(9), -RandomPlace(9)));
            break;
        case 3: {
            const float zoom = static_cast<float>(Random(30) + 2) / 10;
            Renderer.SetScale(TVector2(zoom, zoom));
            break;
        }
        case 4:
            Shapes[shape]->Colour[0] = static_cast<float>(Random(5)) / 4;
            break;
        case 5:
            Root.MoveToFront(Shapes[shape].get());
            break;
        case 6:
            Root.RemoveObject(Shapes[shape].get());
            Shapes.erase(Shapes.begin() + static_cast<std::ptrdiff_t>(shape));
            AddShape();
            break;
        default:
            Change(*Shapes[shape]);
            break;
        }
        // Back to where there is something.
        if (Random(10) == 0)
            Renderer.SetOffset(TVector2(RandomPlace(100), RandomPlace(50)));
    }
    // What painting everything shows.
    TPicture PaintAll()
    {
        FullRenderer.Release();
        FullRenderer.SetOffset(Renderer.GetOffset());
        FullRenderer.SetScale(Renderer.GetScale());
        FullRenderer.Render(Root);
        return FullWindow.Read();
    }
    int64_t CountPainted() const
    {
        int64_t count = 0;
        for (const TDotRectangle& part : Renderer.GetPainted())
            count += int64_t(part.Max[0] - part.Min[0]) * (part.Max[1] - part.Min[1]);
        return count;
    }

    std::mt19937 Generator;
    TTestWindow FullWindow{Width, Height};
    TRenderer FullRenderer;
    TFontInstance Font;
    TRenderTextureInstance Texture;
    std::vector<std::unique_ptr<TShape>> Shapes;
    TGround Ground;
    TRenderObjects Root;
};

// How many of the channels differ by more than the tolerance.
int CountDifferences(TPicture a, TPicture b, int tolerance)
{
    int count = 0;
    for (int i = 0; i < a.GetWidth() * a.GetHeight() * 4; ++i)
        count += std::abs(int(a.GetBytes()[i]) - int(b.GetBytes()[i])) > tolerance ? 1 : 0;
    return count;
}

} // namespace

TEST_F(KeptPicture, AfterAnyStepAWindowShowsWhatPaintingAllShows)
{
    // What is interpolated over a shape may be rounded otherwise where the shape has been moved.
    constexpr int tolerance = 1;
    constexpr int mostRounded = 32;
    int64_t painted = 0;
    int64_t all = 0;
    for (const double dotsPerPixel : {1.0, 1.5, 2.0}) {
        SetScreen(dotsPerPixel);
        for (unsigned seed = 0; seed < 3; ++seed) {
            Generator.seed(seed);
            Fill();
            for (int i = 0; i < 30; ++i) {
                Step();
                const TPicture kept = Paint(Root);
                const TPicture full = PaintAll();
                ASSERT_EQ(CountDifferences(kept, full, tolerance), 0)
                    << "dots " << dotsPerPixel << " seed " << seed << " step " << i;
                ASSERT_LE(CountDifferences(kept, full, 0), mostRounded);
                painted += CountPainted();
                all += int64_t(kept.GetWidth()) * kept.GetHeight();
            }
        }
    }
    EXPECT_LT(painted, all / 2);
}

TEST_F(KeptPicture, WithoutAPanItIsTheSameToTheLastBit)
{
    Generator.seed(1);
    Fill();
    Renderer.SetOffset(TVector2(31.3f, 12.7f));
    Renderer.SetScale(TVector2(1.2f, 1.2f));
    for (int i = 0; i < 40; ++i) {
        Change(*Shapes[static_cast<size_t>(Random(static_cast<int>(Shapes.size())))]);
        const TPicture kept = Paint(Root);
        ASSERT_EQ(CountDifferences(kept, PaintAll(), 0), 0) << "step " << i;
    }
}

TEST_F(KeptPicture, AFrameLikeTheOneBeforePaintsNothing)
{
    Generator.seed(2);
    Fill();
    const TPicture first = Paint(Root);
    EXPECT_GT(Renderer.GetNumCalls(), 0);
    const TPicture second = Paint(Root);
    EXPECT_EQ(Renderer.GetNumCalls(), 0);
    EXPECT_EQ(CountPainted(), 0);
    EXPECT_EQ(CountDifferences(first, second, 0), 0);
}

TEST_F(KeptPicture, AChangeInACornerPaintsTheCorner)
{
    TShape box(SK_BOX, Font, Texture);
    Root.AddObject(&box);
    box.SetOrigin(TVector2(170, 130));
    box.Size = TVector2(10, 10);
    Paint(Root);
    box.Colour[0] = 1;
    EXPECT_EQ(Paint(Root).At(175, 135), (TPixel{255, 0, 0, 255}));
    EXPECT_GT(CountPainted(), 0);
    EXPECT_LE(CountPainted(), 4 * TPaintTiles::Side * TPaintTiles::Side);
}

TEST_F(KeptPicture, APanByWholeDotsPaintsWhatComesIntoSight)
{
    Generator.seed(3);
    Fill();
    Paint(Root);
    Renderer.SetOffset(Renderer.GetOffset() + TVector2(-4, 0));
    Paint(Root);
    EXPECT_GT(CountPainted(), 0);
    EXPECT_LE(CountPainted(), 3 * TPaintTiles::Side * Height);
}

TEST_F(KeptPicture, ViewsOfOneSizeArePannedInTurns)
{
    Generator.seed(5);
    Fill();
    TTestWindow window(Width, Height);
    TRenderer other;
    ASSERT_TRUE(other.Init(&window, &Renderer));
    for (int i = 0; i < 8; ++i) {
        Renderer.SetOffset(Renderer.GetOffset() + TVector2(-4, 3));
        Paint(Root);
        other.SetOffset(other.GetOffset() + TVector2(5, 0));
        window.MakeCurrent();
        other.Render(Root);
        const TPicture panned = Paint(Root);
        ASSERT_EQ(CountDifferences(panned, PaintAll(), 2), 0) << "step " << i;
        const TVector2 offset = Renderer.GetOffset();
        Renderer.SetOffset(other.GetOffset());
        const TPicture whole = PaintAll();
        Renderer.SetOffset(offset);
        ASSERT_EQ(CountDifferences(window.Read(), whole, 2), 0) << "step " << i;
    }
}

TEST_F(KeptPicture, WhatMovesAlongWithTheWindowIsPaintedWhereItWasAndIs)
{
    TShape box(SK_BOX, Font, Texture);
    Root.AddObject(&box);
    for (int i = 0; i < 5; ++i) {
        Renderer.SetOffset(TVector2(static_cast<float>(7 * i), 0));
        box.SetOrigin(TVector2(80, 60) - Renderer.GetOffset());
        const TPicture picture = Paint(Root);
        EXPECT_EQ(CountDifferences(picture, PaintAll(), 0), 0);
        EXPECT_EQ(picture.Count([](const TPixel& pixel) { return pixel == TPixel{0, 0, 0, 255}; }), 40 * 30);
    }
}

TEST_F(KeptPicture, ATextureWithOtherTexelsIsPaintedAnew)
{
    TShape picture(SK_TEXTURE, Font, Texture);
    picture.Colour = TVector4(1, 1, 1, 1);
    Root.AddObject(&picture);
    const TPicture before = Paint(Root);
    uint8_t texels[NumTexelBytes];
    FillTexels(texels, 5);
    Window.MakeCurrent();
    unsigned name = Texture.GetTexture()->GetName();
    GetGraphicsDevice()->UploadTexture(name, TF_RGBA8, TextureSide, TextureSide, texels);
    EXPECT_EQ(name, Texture.GetTexture()->GetName());
    const TPicture after = Paint(Root);
    EXPECT_GT(CountDifferences(before, after, 8), 100);
    EXPECT_EQ(CountDifferences(after, PaintAll(), 0), 0);
}

TEST_F(KeptPicture, WhatWasOverwrittenInTheWindowComesBack)
{
    Generator.seed(4);
    Fill();
    const TPicture before = Paint(Root);
    Window.MakeCurrent();
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Window.GetFrameBuffer());
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(CountDifferences(before, Paint(Root), 0), 0);
}

TEST_F(KeptPicture, AFrameThatFailedIsPaintedWholeTheNextTime)
{
    bool fails = false;
    TDrawnObject failing([&fails](TRenderer&) { ASSERT_TEXT(!fails, "!fails"); });
    Generator.seed(5);
    Fill();
    Root.AddObject(&failing);
    Paint(Root);
    fails = true;
    Change(*Shapes[0]);
    EXPECT_EQ(AssertionOf([&] { Paint(Root); }), "!fails");
    fails = false;
    EXPECT_EQ(CountDifferences(Paint(Root), PaintAll(), 0), 0);
}
