#pragma once

#include "library/containers/classregistry.h"
#include "library/maths/vector4.h"
#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/renderpath.h"

class TGraphScene;
class TNodeObj;
class TToolEdge;

// An edge as a curve between two ports, or from a port to the mouse while it is dragged.
class TToolEdgeRenderer : public TRegistered<TToolEdgeRenderer, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TToolEdgeRenderer";
    enum TStyle
    {
        ES_NORMAL = 1,
        // The edge is not at its destination yet.
        ES_OFFERED = 2
    };

    explicit TToolEdgeRenderer(TGraphScene& scene) : Scene(scene) {}

    // One of the nodes may be null: that end is free. Asserts "output != 0 || input != 0".
    void Init(TNodeObj* output, int outputPort, TNodeObj* input, int inputPort);
    void SetFreeEnd(const TVector2& point) { FreeEnd = point; }
    // Takes the ends from the edge, if there is one, and makes the curve.
    void Layout(const TToolEdge* edge = nullptr);
    // With knobs at its ends an edge looks as if it was held.
    void SetHeld(bool held) { Held = held; }
    // Lets go of the nodes; the curve stays as it is.
    void Unhook();
    // A hidden edge is not drawn: another stands for it during a drag.
    void SetHidden(bool hidden) { Hidden = hidden; }
    bool IsHidden() const { return Hidden; }
    // A lit edge is where something will go that is being dragged.
    void SetLit(bool lit) { Lit = lit; }
    bool IsLit() const { return Lit; }

    TNodeObj* GetOutputNode() const { return OutputNode; }
    TNodeObj* GetInputNode() const { return InputNode; }
    int GetStyle() const { return Style; }
    float GetWidth() const { return Width; }
    // Four points, relative to the canvas.
    const TVector2* GetCurve() const { return Curve; }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    // Edges take no clicks.
    TRenderObject* HitTest(const TVector2& point) override;

private:
    TVector4 GetColour() const;
    static void RenderLine(TRenderer& renderer, TRenderPath& path, float width, const TVector4& colour);
    void RenderKnob(TRenderer& renderer, const TVector2& place, const TVector4& colour,
                    const TVector4& border);

    TGraphScene& Scene;
    TNodeObj* OutputNode = nullptr;
    TNodeObj* InputNode = nullptr;
    int OutputPort = 0;
    int InputPort = 0;
    TVector2 FreeEnd = TVector2(0, 0);
    int Style = ES_NORMAL;
    float Width = 0.0f;
    TVector2 Curve[4];
    // Each keeps its own stroke from frame to frame.
    TRenderPath Border;
    TRenderPath Line;
    TRenderPath Knob;
    bool Hidden = false;
    bool Held = false;
    bool Lit = false;
};
