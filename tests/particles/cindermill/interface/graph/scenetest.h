#pragma once

#include "support/fakehost.h"
#include "support/gltest.h"
#include "support/testapp.h"

#include "library/wimp/window.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/graph/nodesearch.h"

// A window that nothing is drawn in.
class TPlainWindow : public TRenderWindow
{
public:
    bool MakeCurrent() override { return false; }
    unsigned GetFrameBuffer() override { return 0; }
    void GetSize(int& width, int& height) const override
    {
        width = 800;
        height = 600;
    }
    void GetDotSize(int& width, int& height) const override { GetSize(width, height); }
    double GetDotsPerPixel() const override { return 1; }
    void Redraw() override {}
    void TakeFocus() override { Focused = true; }
    bool HasFocus() const override { return Focused; }
    void StartTimer(int, int) override {}
    void StopTimer(int) override {}
    bool Focused = false;
};

// The windows of a document, which are its scene alone, and the framework's mouse drag.
class TSceneHost : public TFakeHost, public TGraphSceneHost
{
public:
    ~TSceneHost() override { delete Scene; }
    bool CreateView(TDocument& document) override
    {
        Scene = new TGraphScene(document, *this);
        return true;
    }
    void DeleteWindows(TDocument&) override
    {
        delete Scene;
        Scene = nullptr;
    }
    void RedrawGraphs() override { ++NumRedraws; }
    void EdgeScroll(TRenderer&, double x, double y) override
    {
        ScrolledAt = {x, y};
        ++NumScrolls;
    }
    void BeginDrag(TRenderer& renderer, TMouseDrag& drag) override
    {
        Captured = &renderer;
        Drag = &drag;
        ++NumDrags;
        TWimp::Get().SetMouseDrag(&drag, Window);
    }
    void EndDrag(TRenderer& renderer) override
    {
        EXPECT_EQ(Captured, &renderer);
        Captured = nullptr;
        Drag = nullptr;
        TWimp::Get().ClearMouseDrag();
    }
    void ShowHelp(const char* text, const TVector2& point) override { Scene->GetHelp().Show(text, point); }
    void Warn() override { ++NumWarnings; }
    void SearchForWire(TRenderer&, const TVector2& point, const TWireEnd& end) override
    {
        Searches.push_back({point, end});
    }
    float GetClearPart(const TRenderer&) override { return ClearPart; }
    void TellStatus(const char* text) override { Status = text; }

    // Never shown: the framework asks for one.
    TWindow Window;
    TGraphScene* Scene = nullptr;
    TRenderer* Captured = nullptr;
    TMouseDrag* Drag = nullptr;
    std::pair<double, double> ScrolledAt;
    struct TSearch
    {
        TVector2 Place;
        TWireEnd End;
    };
    std::vector<TSearch> Searches;
    std::string Status;
    float ClearPart = 1;
    int NumRedraws = 0;
    int NumScrolls = 0;
    int NumDrags = 0;
    int NumWarnings = 0;
};

// A document with a graph in view: at rest, a world unit is a pixel and the origin the window's.
class TSceneTest : public testing::Test
{
protected:
    TSceneTest() : Document(App.Get(), &Host)
    {
        Renderer.Init(&Window);
        EXPECT_TRUE(Document.New());
    }

    TGraphScene& Scene() { return *Host.Scene; }
    TGraphCanvas& Canvas() { return Host.Scene->GetCanvas(); }
    // A node whose top left is at the place.
    TToolNode* Add(const char* type, int x, int y)
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(Document, App.Type(type), x, y);
        TToolNode* node = op->GetNode();
        Document.ApplyOperation(op);
        node->SetPosition(x, y);
        return node;
    }
    TNodeObj& Object(TToolNode* node)
    {
        TNodeObj* object = Scene().FindNode(node);
        if (object == nullptr)
            throw std::runtime_error("the node is not in view");
        return *object;
    }
    TToolEdge* Connect(TToolNode* source, const char* output, TToolNode* destination, const char* input)
    {
        TAddGraphEdgeOp* op = new TAddGraphEdgeOp(Document, source, source->GetNodeType()->FindOutput(output),
                                                  destination, destination->GetNodeType()->FindInput(input));
        TToolEdge* edge = op->GetEdge();
        Document.ApplyOperation(op);
        return edge;
    }
    TVector2 Input(TToolNode* node, const char* name)
    {
        return Object(node).GetPortPosition(true, node->GetNodeType()->FindInput(name));
    }
    TVector2 Output(TToolNode* node, const char* name)
    {
        return Object(node).GetPortPosition(false, node->GetNodeType()->FindOutput(name));
    }
    TPort& InputPort(TToolNode* node, const char* name)
    {
        return Object(node).GetPort(true, node->GetNodeType()->FindInput(name));
    }
    TPort& OutputPort(TToolNode* node, const char* name)
    {
        return Object(node).GetPort(false, node->GetNodeType()->FindOutput(name));
    }
    // Where nothing but the title bar takes a press.
    static TVector2 TitleOf(TToolNode* node)
    {
        return TVector2(static_cast<float>(node->GetX() + 30), static_cast<float>(node->GetY() + 7));
    }
    TVector2 ButtonOf(TToolNode* node)
    {
        TVector2 min;
        TVector2 max;
        Object(node).GetRectangle(min, max);
        return TVector2(max[0] - 9, min[1] + 8);
    }
    // The group of a parameter or an input in the node's open panel, by name.
    TNodeParameterControls& Group(TToolNode* node, const char* name)
    {
        TNodeExp& panel = Object(node).GetExpanded();
        for (int i = 0; i < panel.GetNumControls(); ++i)
            if (panel.GetControls(i).GetParameter()->Name.Compare(name) == 0)
                return panel.GetControls(i);
        throw std::runtime_error("the panel has no such group");
    }
    void Open(TToolNode* node)
    {
        Click(ButtonOf(node));
        TRenderObject::RunTicks(&Renderer);
    }
    int NumOperations() const { return Document.GetOperationStack()->GetNumOperations(); }

    // As a window does it: a running drag is served first.
    bool Send(TMessageType type, const TVector2& place, int buttons)
    {
        TMessage message;
        message.Type = type;
        message.X = static_cast<int>(place[0]);
        message.Y = static_cast<int>(place[1]);
        message.Buttons = buttons;
        message.KeyFlags = KeyFlags;
        if (Host.Drag != nullptr)
            Host.Drag->OnMouseMove(message.X, message.Y, buttons);
        return TRenderObject::Route(Renderer, Scene().GetRoot(), message);
    }
    bool Press(const TVector2& place) { return Send(MT_LEFTDOWN, place, MB_LEFT); }
    void Drag(const TVector2& place) { Send(MT_MOUSEMOVE, place, MB_LEFT); }
    void Move(const TVector2& place) { Send(MT_MOUSEMOVE, place, 0); }
    bool Release(const TVector2& place) { return Send(MT_LEFTUP, place, 0); }
    void Click(const TVector2& place)
    {
        Press(place);
        Release(place);
    }
    void DragTo(const TVector2& from, const TVector2& to)
    {
        Press(from);
        Drag((from + to) * 0.5f);
        Drag(to);
        Release(to);
    }
    bool Key(int key)
    {
        TMessage message;
        message.Type = MT_KEYDOWN;
        message.Key = key;
        return TRenderObject::Route(Renderer, Scene().GetRoot(), message);
    }
    std::string HoverAt(const TVector2& place)
    {
        Move(place);
        TMessage message;
        message.Type = MT_TIMER;
        message.Timer = 1;
        TRenderObject::Route(Renderer, Scene().GetRoot(), message);
        return Scene().GetHelp().IsShown() ? Text(Scene().GetHelp().GetText()) : "";
    }

    TTestApp App;
    TQuiet Quiet;
    TPlainWindow Window;
    TRenderer Renderer;
    TSceneHost Host;
    TDocument Document;
    int KeyFlags = 0;
};
