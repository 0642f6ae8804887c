#pragma once

#include "ramppoints.h"

#include "support/fakecontrolhost.h"
#include "support/fakehost.h"
#include "support/gltest.h"
#include "support/testapp.h"

#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/ramp.h"
#include "particles/cindermill/interface/controls/rampparametercontrols.h"

#include <memory>
#include <stdexcept>

// The group of a node's ramp in a view: at rest, a world unit is a pixel and the origin the window's.
class TRampTest : public testing::Test
{
protected:
    TRampTest() : Document(App.Get(), &Windows)
    {
        Window.Focused = true;
        Renderer.Init(&Window);
        EXPECT_TRUE(Document.New());
    }

    // The ramp named "Value" of a new node.
    void Show(const char* type)
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(Document, App.Type(type), 0, 0);
        Node = op->GetNode();
        Document.ApplyOperation(op);
        TNodeParameter* parameter = Node->GetNodeType()->FindParameter("Value");
        if (parameter == nullptr)
            throw std::runtime_error("the type has no ramp");
        Controls.reset(CreateParameterControls(Document, *Node, *parameter, Host));
        Controls->SetOrigin(TVector2(30, 20));
        Root.AddObject(Controls.get());
        Start = NumOperations();
    }
    // One component with one segment from (0, 0) to (1, 1), whose handles lie on a straight line.
    void ShowScalar()
    {
        Show("Scalar Over Life");
        SetCurve(0, Line());
    }
    // Four components at the values 0, 1, 2 and 3.
    void ShowFour()
    {
        Show("Colour Over Life");
        for (int i = 0; i < 4; ++i)
            SetCurve(i, Flat(static_cast<float>(i)));
    }
    static TPoints Line() { return {{0, 0}, {1.0f / 3.0f, 1.0f / 3.0f}, {2.0f / 3.0f, 2.0f / 3.0f}, {1, 1}}; }
    // Two segments: (0, 0), (0.5, 1), (1, 0).
    static TPoints Hill()
    {
        return {{0, 0}, {0.1f, 0.6f}, {0.3f, 1}, {0.5f, 1}, {0.7f, 1}, {0.9f, 0.6f}, {1, 0}};
    }
    // As an undo or an animation does it: past the controls.
    void SetCurve(int component, const TPoints& points) { Parameter().SetCurve(component, ToVector(points)); }
    void Lock(int a, int b, int c, int d)
    {
        const int locks[] = {a, b, c, d};
        Parameter().SetLocks(locks);
    }

    TNodeRampParameterControls& Group() { return static_cast<TNodeRampParameterControls&>(*Controls); }
    TNodeRampParameter& Parameter() { return static_cast<TNodeRampParameter&>(*Controls->GetParameter()); }
    TRamp& Ramp() { return Group().GetRamp(); }
    TPoints Curve(int component) { return FromVector(Parameter().GetCurve(component)); }
    TPoints Shown(int component) { return FromVector(Ramp().GetModel().GetCurve(component).GetPoints()); }
    int NumOperations() const { return Document.GetOperationStack()->GetNumOperations(); }
    // Since the ramp came into view.
    int NumEdits() const { return NumOperations() - Start; }
    template <class TOp>
    bool IsLast() const
    {
        return dynamic_cast<TOp*>(Document.GetOperationStack()->GetOperation(NumOperations() - 1)) != nullptr;
    }

    TVector2 World(const TVector2& place) { return Ramp().GetAbsolutePosition() + place; }
    TVector2 Place(float time, float value)
    {
        return World(Ramp().GetView().ToPosition(TRampPoint{time, value}));
    }
    TVector2 PlaceOf(int component, int point)
    {
        const TRampPoint at = Shown(component)[static_cast<size_t>(point)];
        return Place(at.X, at.Y);
    }
    // Somewhere in the labels left of the plot.
    TVector2 Axis() { return World(TVector2(12, 70)); }
    static TVector2 Middle(TRenderObject& object)
    {
        TVector2 min;
        TVector2 max;
        object.GetBounds(min, max);
        return object.GetAbsolutePosition() + (min + max) * 0.5f;
    }

    // As a window does it: a running drag is served first.
    bool Send(TMessageType type, const TVector2& world, int buttons)
    {
        TMessage message;
        message.Type = type;
        const TVector2 pixel = (world + Renderer.GetOffset()) * Renderer.GetScale()[0];
        message.X = double(pixel[0]);
        message.Y = double(pixel[1]);
        message.Buttons = buttons;
        message.KeyFlags = KeyFlags;
        if (Host.IsDragging())
            Host.Drag(message.X, message.Y, buttons);
        return TRenderObject::Route(Renderer, Root, message);
    }
    bool Press(const TVector2& world) { return Send(MT_LEFTDOWN, world, MB_LEFT); }
    void Drag(const TVector2& world) { Send(MT_MOUSEMOVE, world, MB_LEFT); }
    void Move(const TVector2& world) { Send(MT_MOUSEMOVE, world, 0); }
    void Release(const TVector2& world) { Send(MT_LEFTUP, world, 0); }
    void Click(const TVector2& world)
    {
        Move(world);
        Press(world);
        Release(world);
    }
    void DragTo(const TVector2& from, const TVector2& to)
    {
        Move(from);
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
        message.KeyFlags = KeyFlags;
        return TRenderObject::Route(Renderer, Root, message);
    }
    bool Wheel(const TVector2& world, int delta)
    {
        Move(world);
        TMessage message;
        message.Type = MT_WHEEL;
        message.Delta = delta;
        return TRenderObject::Route(Renderer, Root, message);
    }
    // A click on the field, the text in place of what it holds, Return.
    void Type(TNumberInput& input, const char* text)
    {
        Click(Middle(input.GetEdit()));
        input.GetEdit().SelectAll();
        for (const char* at = text; *at != 0; ++at) {
            TMessage message;
            message.Type = MT_CHAR;
            message.Character = static_cast<uint32_t>(*at);
            TRenderObject::Route(Renderer, Root, message);
        }
        Key(KEY_RETURN);
    }

    TTestApp App;
    TQuiet Quiet;
    TFakeHost Windows;
    TDocument Document;
    TFakeControlHost Host;
    TFakeWindow Window{800, 600};
    TRenderer Renderer;
    TToolNode* Node = nullptr;
    TRenderObjects Root;
    std::unique_ptr<TNodeParameterControls> Controls;
    int KeyFlags = 0;
    int Start = 0;
};
