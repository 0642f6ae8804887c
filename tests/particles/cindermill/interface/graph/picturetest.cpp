#include "scenetest.h"

#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/cindermill/interface/graph/nodecolour.h"
#include "particles/cindermill/interface/graph/nodepanel.h"
#include "particles/cindermill/interface/graph/selboxrender.h"

#include <cstdlib>

namespace {

// A scene drawn for real.
class GraphPicture : public TSceneTest
{
protected:
    GraphPicture() { View.Init(&Surface); }

    TPicture Paint()
    {
        View.Render(Scene().GetRoot());
        return Surface.Read();
    }
    // The world point at the window's top left, and the zoom.
    void LookAt(float x, float y, float zoom)
    {
        View.SetScale(TVector2(zoom, zoom));
        View.SetOffset(TVector2(-x, -y));
    }
    TPixel At(const TPicture& picture, const TVector2& world)
    {
        const TVector2 place = (world + View.GetOffset()) * View.GetScale()[0];
        return picture.At(static_cast<int>(place[0]), static_cast<int>(place[1]));
    }
    // For a look, where the environment names a folder.
    static void Keep(const TPicture& picture, const std::string& name)
    {
        const char* folder = std::getenv("CINDERMILL_PICTURES");
        if (folder != nullptr) {
            EXPECT_TRUE(picture.SavePng(std::string(folder) + "/" + name + ".png"));
        }
    }
    static TPixel PixelOf(const TVector4& colour)
    {
        auto channel = [](float value) { return static_cast<int>(value * 255.0f + 0.5f); };
        return TPixel{channel(colour[0]), channel(colour[1]), channel(colour[2]), 255};
    }

    TTestWindow Surface{560, 360};
    TRenderer View;
};

TEST_F(GraphPicture, ASampleIsDrawnAtAllZooms)
{
    TSceneHost host;
    TDocument document(App.Get(), &host);
    ASSERT_TRUE(document.Load(SourcePath("samples/fountain.effect").c_str()));
    TVector2 min(1e9f, 1e9f);
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i) {
        TVector2 low;
        TVector2 high;
        host.Scene->FindNode(static_cast<TToolNode*>(document.GetGraph()->GetNode(i)))
            ->GetRectangle(low, high);
        min = TVector2(std::min(min[0], low[0]), std::min(min[1], low[1]));
    }
    for (float zoom : {0.5f, 1.0f, 2.0f}) {
        LookAt(min[0] - 20, min[1] - 20, zoom);
        View.Render(host.Scene->GetRoot());
        const TPicture picture = Surface.Read();
        Keep(picture, "fountain" + std::to_string(static_cast<int>(zoom * 10)));
        const TPixel face = PixelOf(GetPanelTone(PT_LIGHT));
        EXPECT_GT(picture.Count([&](const TPixel& pixel) { return IsClose(pixel, face); }), 3000);
    }
}

TEST_F(GraphPicture, AnEmptyGraphTellsHowToBeginWhereNothingStandsInFrontOfIt)
{
    const auto isInk = [](const TPixel& pixel) { return pixel.R < 170; };
    // In the middle of all, and of a part in which the lines are broken anew; the last one is far too little.
    for (const float part : {1.0f, 0.5f, 0.3f}) {
        Host.ClearPart = part;
        LookAt(0, 0, 1);
        const TPicture picture = Paint();
        Keep(picture, "hint" + std::to_string(static_cast<int>(part * 10)));
        const int clear = static_cast<int>(560 * part);
        const int left = picture.Count(isInk, 0, 0, clear / 2, 360);
        const int right = picture.Count(isInk, clear / 2, 0, clear - clear / 2, 360);
        EXPECT_GT(left, 200) << part;
        EXPECT_NEAR(left, right, left / 3) << part;
        EXPECT_EQ(picture.Count(isInk, 0, 0, 3, 360), 0) << part;
        EXPECT_EQ(picture.Count(isInk, clear - 3, 0, 560 - clear + 3, 360), 0) << part;
    }
}

TEST_F(GraphPicture, ThePaperHasCellsOf128UnitsDividedIn8)
{
    LookAt(-10, -10, 1);
    const TPicture picture = Paint();
    const TPixel cell = PixelOf(TVector4(0.99f, 0.99f, 0.93f, 1));
    const TPixel ground = PixelOf(TVector4(1, 1, 0.95f, 1));
    const TPixel line = PixelOf(TVector4(0.95f, 0.95f, 0.95f, 1));
    EXPECT_TRUE(IsClose(At(picture, TVector2(8, 8)), cell));
    EXPECT_TRUE(IsClose(At(picture, TVector2(136, 8)), ground));
    EXPECT_TRUE(IsClose(At(picture, TVector2(136, 136)), cell));
    EXPECT_TRUE(IsClose(At(picture, TVector2(0, 8)), line));
    EXPECT_TRUE(IsClose(At(picture, TVector2(8, 128)), line));
    EXPECT_TRUE(IsClose(At(picture, TVector2(16, 16)), line, 12));
    EXPECT_GT(At(picture, TVector2(16, 8)).B, cell.B);
}

TEST_F(GraphPicture, ANodeShowsItsTypesColourAndItsFace)
{
    TToolNode* node = Add("Gravity", 40, 40);
    LookAt(0, 0, 2);
    const TVector4 own = GetNodeTypeColour(node->GetNodeType()->Colour);
    const TPicture picture = Paint();
    Keep(picture, "node");
    EXPECT_TRUE(IsClose(At(picture, TVector2(60, 42.5f)), PixelOf(ShiftColour(own, 0.11f))));
    EXPECT_TRUE(IsClose(At(picture, TVector2(60, 52.5f)), PixelOf(ShiftColour(own, -0.06f))));
    EXPECT_TRUE(IsClose(At(picture, TVector2(100, 70)), PixelOf(GetPanelTone(PT_LIGHT))));
}

TEST_F(GraphPicture, ARenamedNodeIsDrawnByItsName)
{
    TToolNode* node = Add("Gravity", 40, 40);
    LookAt(0, 0, 2);
    // What two pictures differ in, within the title.
    const auto differ = [&](const TPicture& a, const TPicture& b) {
        int count = 0;
        for (float y = 42; y < 54; y += 0.5f)
            for (float x = 54; x < 40 + Object(node).GetSize()[0] - 16; x += 0.5f)
                count += IsClose(At(a, TVector2(x, y)), At(b, TVector2(x, y))) ? 0 : 1;
        return count;
    };
    const auto rename = [&](const char* name) {
        TNodeProperties properties;
        properties.Name = name;
        Document.ApplyOperation(new TNodePropertiesOp(node, properties));
        return Paint();
    };
    const TPicture before = Paint();
    const TPicture other = rename("Droplet");
    EXPECT_GT(differ(before, other), 50);
    // The same picture as one of a node that always bore the name.
    EXPECT_EQ(differ(rename("Gravity"), before), 0);
    Document.Undo();
    EXPECT_EQ(differ(Paint(), other), 0);
}

TEST_F(GraphPicture, LettersAreSharpAtTheOrdinaryZoomWhereverTheViewIs)
{
    Add("Grid", 40, 40);
    // As dark as the letters' own colour, or nearly so.
    auto isInk = [](const TPixel& pixel) { return pixel.R < 50 && pixel.G < 50 && pixel.B < 60; };
    LookAt(0, 0, 1);
    const int ink = Paint().Count(isInk, 48, 56, 90, 40);
    EXPECT_GT(ink, 60);
    LookAt(0.37f, 0.61f, 1);
    EXPECT_NEAR(Paint().Count(isInk, 48, 55, 90, 41), ink, 4);
}

TEST_F(GraphPicture, LettersCanBeReadAtHalfTheZoom)
{
    Add("Grid", 40, 40);
    LookAt(0, 0, 0.5f);
    const TPicture picture = Paint();
    Keep(picture, "half");
    const TPixel face = PixelOf(GetPanelTone(PT_LIGHT));
    auto isInk = [&](const TPixel& pixel) { return pixel.G < face.G / 2; };
    EXPECT_GT(picture.Count(isInk, 24, 28, 45, 21), 60);
}

TEST_F(GraphPicture, ASelectedNodeIsOrange)
{
    TToolNode* node = Add("Gravity", 40, 40);
    LookAt(0, 0, 2);
    auto isOrange = [](const TPixel& pixel) { return pixel.R > 200 && pixel.G < 160 && pixel.B < 80; };
    EXPECT_EQ(Paint().Count(isOrange), 0);
    Document.SelectNode(node, true);
    const TPicture picture = Paint();
    Keep(picture, "selected");
    EXPECT_GT(picture.Count(isOrange), 800);
    EXPECT_TRUE(IsClose(At(picture, TVector2(60, 83)), PixelOf(TVector4(0.851f, 0.282f, 0, 1))));
}

TEST_F(GraphPicture, ABypassedNodeHasACrossAndIsPale)
{
    TToolNode* node = Add("Gravity", 40, 40);
    LookAt(0, 0, 2);
    const TPicture before = Paint();
    Document.ApplyOperation(new TBypassFlagOp(node, true));
    const TPicture picture = Paint();
    Keep(picture, "bypassed");
    auto isRed = [](const TPixel& pixel) { return pixel.R > 150 && pixel.G < 40 && pixel.B < 40; };
    const int x = static_cast<int>(2 * (40 + NodeBoxLeft));
    const int y = static_cast<int>(2 * (40 + NodeBoxTop));
    EXPECT_EQ(before.Count(isRed, x, y, 20, 20), 0);
    EXPECT_GT(picture.Count(isRed, x, y, 20, 20), 15);
    EXPECT_GT(At(picture, TVector2(60, 52.5f)).R, At(before, TVector2(60, 52.5f)).R + 40);
}

TEST_F(GraphPicture, EdgesRunUnderNodesAndAreSeenBesideThem)
{
    TToolNode* effect = Add("Effect", 20, 40);
    TToolNode* curve = Add("Scalar Over Life", 350, 40);
    Connect(effect, "Time", curve, "Time");
    const TVector2 from = Output(effect, "Time");
    const TVector2 to = Input(curve, "Time");
    const TVector2 middle = (from + to) * 0.5f;
    LookAt(0, 0, 1);
    const TPixel line = PixelOf(ShiftColour(GetNodeTypeColour(effect->GetNodeType()->Colour), 0.11f));
    EXPECT_TRUE(IsClose(At(Paint(), middle), line));
    TToolNode* over = Add("Grid", static_cast<int>(middle[0]) - 60, static_cast<int>(middle[1]) - 41);
    const TPicture picture = Paint();
    Keep(picture, "under");
    EXPECT_TRUE(IsClose(At(picture, TVector2(static_cast<float>(over->GetX() + 100), middle[1])),
                        PixelOf(GetPanelTone(PT_LIGHT)), 8));
}

TEST_F(GraphPicture, ConnectedPortsAreSolidAndMarkedOnesRed)
{
    TToolNode* effect = Add("Effect", 20, 40);
    TToolNode* curve = Add("Scalar Over Life", 200, 40);
    const TVector2 time = Input(curve, "Time");
    const TVector2 life = Input(curve, "Life");
    LookAt(0, 0, 2);
    const TPixel violet = PixelOf(TVector4(0.5f, 0, 1, 1));
    EXPECT_GT(At(Paint(), time).G, 200);
    Connect(effect, "Time", curve, "Time");
    EXPECT_TRUE(IsClose(At(Paint(), time), violet));
    Press(Output(effect, "Time"));
    Drag(TVector2(150, 120));
    const TPicture marked = Paint();
    Keep(marked, "marked");
    EXPECT_GT(At(marked, life).R, 240);
    EXPECT_LT(At(marked, life).G, 60);
    EXPECT_TRUE(IsClose(At(marked, time), violet));
    Canvas().CancelDrag();
    EXPECT_GT(At(Paint(), life).G, 200);
}

TEST_F(GraphPicture, TheSelectionBoxIsABlueGlassWithABlueBorder)
{
    TSelBoxRender box;
    box.Begin(TVector2(20.5f, 20.5f));
    box.Extend(TVector2(90.5f, 60.5f));
    Scene().GetRoot().AddObject(&box);
    LookAt(0, 0, 1);
    const TPicture picture = Paint();
    EXPECT_TRUE(IsClose(At(picture, TVector2(40, 30)),
                        PixelOf(TVector4(0.99f * 0.75f, 0.99f * 0.75f, 0.93f * 0.75f + 0.25f, 1)), 3));
    EXPECT_TRUE(IsClose(At(picture, TVector2(20.5f, 40)), TPixel{0, 0, 255, 255}, 3));
}

TEST_F(GraphPicture, TheHelpShowsInTheViewWhereThePointerRestsOnly)
{
    TToolNode* noise = Add("Noise", 40, 40);
    LookAt(0, 0, 1);
    const TPixel paper = PixelOf(TVector4(1, 0.99f, 0.86f, 1));
    auto isHelp = [&](const TPixel& pixel) { return IsClose(pixel, paper, 1); };
    auto hover = [&](TRenderer& renderer) {
        TMessage message;
        message.Type = MT_MOUSEMOVE;
        message.X = static_cast<int>(Input(noise, "Frequency")[0]);
        message.Y = static_cast<int>(Input(noise, "Frequency")[1]);
        TRenderObject::Route(renderer, Scene().GetRoot(), message);
        message.Type = MT_TIMER;
        message.Timer = 1;
        TRenderObject::Route(renderer, Scene().GetRoot(), message);
    };
    hover(Renderer);
    ASSERT_TRUE(Scene().GetHelp().IsShown());
    EXPECT_EQ(Paint().Count(isHelp), 0);
    Scene().GetHelp().Hide();
    hover(View);
    const TPicture picture = Paint();
    Keep(picture, "help");
    EXPECT_GT(picture.Count(isHelp), 2000);
}

TEST_F(GraphPicture, ThePictureOfATypeLooksLikeAFaintNode)
{
    TNodeExp ghost;
    ghost.BuildFor(App.Type("Collision Plane"));
    ghost.SetOrigin(TVector2(40, 40));
    Scene().GetRoot().AddObject(&ghost);
    LookAt(0, 0, 2);
    const TPicture picture = Paint();
    Keep(picture, "ghost");
    const TPixel tone = PixelOf(GetPanelTone(PT_LIGHT));
    const TPixel seen = At(picture, TVector2(100, 130));
    EXPECT_TRUE(IsClose(seen, tone, 40));
    EXPECT_FALSE(IsClose(seen, tone, 4));
}

TEST_F(GraphPicture, AnOpenNodeShowsItsControls)
{
    TToolNode* noise = Add("Noise", 40, 20);
    LookAt(0, 0, 2);
    const TPicture closed = Paint();
    Open(noise);
    const TPicture picture = Paint();
    Keep(picture, "open");
    // A number stands in a field that is lighter than the panel around it.
    const TVector2 place = Group(noise, "Position").GetAbsolutePosition();
    const TPixel field = At(picture, place + TVector2(60, 10));
    const TPixel around = At(picture, place + TVector2(60, -2));
    EXPECT_FALSE(IsClose(field, around, 20));
    EXPECT_TRUE(IsClose(around, PixelOf(GetPanelTone(PT_LIGHT)), 8));
    EXPECT_FALSE(IsClose(At(closed, place + TVector2(60, 10)), field, 3));
}

TEST_F(GraphPicture, TheCloseButtonOfAPanelWiderThanTheViewIsDrawnInIt)
{
    TToolNode* curve = Add("Scalar Over Life", 40, 20);
    Open(curve);
    const float width = Object(curve).GetSize()[0];
    // The light upper half of the button.
    const auto isButton = [&](const TPicture& picture, float x) {
        return IsClose(At(picture, TVector2(x, 20 + 5)), PixelOf(GetPanelTone(PT_HIGHLIGHT)), 12);
    };
    LookAt(0, 0, 1);
    const TPicture whole = Paint();
    EXPECT_TRUE(isButton(whole, 40 + width - 10.5f));
    LookAt(0, 0, 2);
    const TPicture narrow = Paint();
    Keep(narrow, "widepanel");
    EXPECT_TRUE(isButton(narrow, 280 - 10.5f));
    EXPECT_FALSE(isButton(whole, 280 - 10.5f));
}

} // namespace
