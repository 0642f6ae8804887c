#include "scenetest.h"
#include "support/testsupport.h"

#include <random>

// The graph's window paints only what differs from the frame before. After whatever a hand does there, it
// must show what painting everything shows.

namespace {

class KeptGraph : public TSceneTest
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(View.Init(&Surface));
        const char* types[] = {"Noise", "Grid",    "Colour Over Life", "Gravity",
                               "Age",   "Emitter", "Point Emitter",    "Velocity Cone"};
        for (int i = 0; i < 8; ++i)
            Nodes.push_back(Add(types[i], 20 + i % 4 * 160, 20 + i / 4 * 140));
        Connect(Nodes[4], "Age", Nodes[2], "Time");
        Connect(Nodes[5], "Count", Nodes[6], "Emission Trigger");
        Connect(Nodes[7], "Velocity", Nodes[3], "Velocity");
    }
    void TearDown() override { Scene().CancelDrags(); }
    void SetScreen(double dotsPerPixel)
    {
        Surface.DotsPerPixel = dotsPerPixel;
        Surface.Resize(static_cast<int>(PixelWidth * dotsPerPixel),
                       static_cast<int>(PixelHeight * dotsPerPixel));
    }
    int Random(int end) { return static_cast<int>(Generator() % static_cast<unsigned>(end)); }
    TVector2 RandomPixel()
    {
        return TVector2(static_cast<float>(Random(PixelWidth)), static_cast<float>(Random(PixelHeight)));
    }
    TVector2 PixelOf(const TVector2& world) { return (world + View.GetOffset()) * View.GetScale()[0]; }
    TToolNode* RandomNode()
    {
        const TEffectGraph& graph = *Document.GetGraph();
        const int count = graph.GetNumNodes();
        return count > 0 ? static_cast<TToolNode*>(graph.GetNode(Random(count))) : nullptr;
    }
    void Tell(TMessageType type, const TVector2& pixel, int buttons)
    {
        TMessage message;
        message.Type = type;
        message.X = double(pixel[0]);
        message.Y = double(pixel[1]);
        message.Buttons = buttons;
        message.Timer = 1;
        if (Host.Drag != nullptr)
            Host.Drag->OnMouseMove(message.X, message.Y, buttons);
        TRenderObject::Route(View, Scene().GetRoot(), message);
    }
    void TellKey(TMessageType type, int key)
    {
        TMessage message;
        message.Type = type;
        message.Key = key;
        message.Character = static_cast<uint32_t>(key);
        TRenderObject::Route(View, Scene().GetRoot(), message);
    }
    void Pan()
    {
        const double scale = View.GetScale()[0] * Surface.DotsPerPixel;
        View.SetOffset(View.GetOffset() + TVector2(static_cast<float>((Random(61) - 30) / scale),
                                                   static_cast<float>((Random(61) - 30) / scale)));
    }
    void Zoom()
    {
        const float zooms[] = {0.4f, 0.75f, 1.0f, 1.3f, 2.0f};
        const float zoom = zooms[Random(5)];
        View.SetScale(TVector2(zoom, zoom));
        View.SetOffset(TVector2(static_cast<float>(-Random(200)), static_cast<float>(-Random(150))));
    }
    void Edit()
    {
        TToolNode* node = RandomNode();
        switch (Random(5)) {
        case 0:
            if (Document.CanUndo())
                Document.Undo();
            break;
        case 1:
            if (Document.CanRedo())
                Document.Redo();
            break;
        case 2:
            Add("Damping", Random(400), Random(300));
            break;
        default:
            if (node != nullptr)
                Document.SelectNode(node, Random(2) == 0);
            break;
        }
    }
    void DragSomewhere()
    {
        Tell(MT_LEFTDOWN, RandomPixel(), MB_LEFT);
        for (int i = Random(3); i > 0; --i)
            Tell(MT_MOUSEMOVE, RandomPixel(), MB_LEFT);
        // Some stay down until the next press, so that what a drag shows is seen.
        if (Random(3) != 0)
            Tell(MT_LEFTUP, RandomPixel(), 0);
    }
    void PressButton()
    {
        TToolNode* node = RandomNode();
        if (node == nullptr)
            return;
        const TVector2 button = PixelOf(ButtonOf(node));
        Tell(MT_LEFTDOWN, button, MB_LEFT);
        Tell(MT_LEFTUP, button, 0);
    }
    void Type()
    {
        const int keys[] = {KEY_TAB, KEY_RETURN, KEY_UP, KEY_BACKSPACE, KEY_ESCAPE, KEY_RIGHT};
        if (Random(2) == 0)
            TellKey(MT_CHAR, '0' + Random(10));
        else
            TellKey(MT_KEYDOWN, keys[Random(6)]);
    }
    void Step()
    {
        constexpr uint32_t halfASecond = 500;
        Clock.Set(Now += halfASecond);
        switch (Random(9)) {
        case 0:
        case 1:
            Pan();
            break;
        case 2:
            if (Random(3) == 0)
                Zoom();
            break;
        case 3:
            Tell(MT_MOUSEMOVE, RandomPixel(), 0);
            break;
        case 4:
            Tell(MT_TIMER, RandomPixel(), 0);
            break;
        case 5:
            DragSomewhere();
            break;
        case 6:
            PressButton();
            break;
        case 7:
            Type();
            break;
        default:
            Edit();
            break;
        }
        TRenderObject::RunTicks(&View);
        for (int i = 0; i < Document.GetGraph()->GetNumNodes(); ++i)
            if (!Object(static_cast<TToolNode*>(Document.GetGraph()->GetNode(i))).IsCollapsed())
                ++NumOpen;
    }
    TPicture Paint()
    {
        View.Render(Scene().GetRoot());
        return Surface.Read();
    }
    TPicture PaintAll()
    {
        View.Release();
        return Paint();
    }

    static constexpr int PixelWidth = 400;
    static constexpr int PixelHeight = 300;
    std::mt19937 Generator;
    // Carets blink by it.
    uint32_t Now = 1000;
    TFakeClock Clock{Now};
    TTestWindow Surface{PixelWidth, PixelHeight};
    TRenderer View;
    // Nodes that were open after a step, of all steps.
    int NumOpen = 0;
    std::vector<TToolNode*> Nodes;
};

// The greatest difference of a channel.
int GetDifference(TPicture a, TPicture b)
{
    int most = 0;
    for (int i = 0; i < a.GetWidth() * a.GetHeight() * 4; ++i)
        most = std::max(most, std::abs(int(a.GetBytes()[i]) - int(b.GetBytes()[i])));
    return most;
}

} // namespace

TEST_F(KeptGraph, AfterWhateverAHandDoesAWindowShowsWhatPaintingAllShows)
{
    const auto revision = Document.GetRevision();
    for (const double dotsPerPixel : {1.0, 1.5, 2.0}) {
        SetScreen(dotsPerPixel);
        for (unsigned seed = 0; seed < 3; ++seed) {
            Generator.seed(seed);
            for (int i = 0; i < 40; ++i) {
                Step();
                const TPicture kept = Paint();
                // Not each time, so that a picture is kept over several steps.
                if (Random(4) != 0)
                    continue;
                ASSERT_LE(GetDifference(kept, PaintAll()), 1)
                    << "dots " << dotsPerPixel << " seed " << seed << " step " << i;
            }
        }
    }
    // The hand has not been idle.
    EXPECT_GT(NumOpen, 50);
    EXPECT_GT(Host.NumDrags, 10);
    EXPECT_GT(Document.GetRevision(), revision + 50);
}

TEST_F(KeptGraph, AnEditOfOneNodePaintsThatNode)
{
    SetScreen(1);
    Paint();
    Document.SelectNode(Nodes[0], false);
    Paint();
    TVector2 min;
    TVector2 max;
    Object(Nodes[0]).GetRectangle(min, max);
    EXPECT_FALSE(View.GetPainted().empty());
    for (const TDotRectangle& part : View.GetPainted())
        for (int i = 0; i < 2; ++i) {
            EXPECT_GE(part.Min[i], static_cast<int>(min[i]) - 10 - TPaintTiles::Side);
            EXPECT_LE(part.Max[i], static_cast<int>(max[i]) + 10 + TPaintTiles::Side);
        }
    Paint();
    EXPECT_TRUE(View.GetPainted().empty());
}
