#include "particles/cindermill/interface/particles/emittershape.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/cindermill/interface/particles/wires.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/usage.h"

#include <cmath>

namespace {

constexpr float MarkSize = 0.08f;
constexpr int ConeSides = 12;
constexpr double WholeTurn = 2 * 3.14159265358979323846;
// A cone is as long as the fastest particle's way in so many seconds.
constexpr float ConeSeconds = 0.25f;

// The value that a person gave an input of a type; false if it is wired or there is none.
bool ReadInput(const TEffectNode& node, const char* name, int type, TPortValue& value)
{
    const TNodeType& nodeType = *node.GetNodeType();
    const int port = nodeType.FindInput(name);
    if (port == -1 || nodeType.GetInputType(port) != type || port >= node.GetNumInputs() ||
        node.GetInput(port) != nullptr)
        return false;
    nodeType.GetInput(port)->GetValue(value.GetFloats());
    return true;
}

// Where a node of emission stands in space.
bool GetFrame(const TEffectNode& node, const char* name, TMatrix43& frame)
{
    TPortValue transform;
    if (!ReadInput(node, name, TY_TRANSFORM, transform))
        return false;
    frame = GetTransformMatrix(transform);
    return true;
}

void DrawPoint(const TMatrix43& frame, const TVector4& colour)
{
    TMatrix43 small = frame;
    ScaleFirst(small, MarkSize, MarkSize, MarkSize);
    TWires wires(colour, small);
    for (int axis = 0; axis < 3; ++axis) {
        TVector3 end(0, 0, 0);
        end[axis] = 1;
        wires.Line(-end, end);
    }
    wires.Sphere();
}

void DrawSphere(const TEffectNode& node, const TMatrix43& frame, const TVector4& colour)
{
    TMatrix43 scaled = frame;
    TPortValue scale;
    if (ReadInput(node, "Scale", TY_VECTOR3, scale))
        ScaleFirst(scaled, scale[0], scale[1], scale[2]);
    TWires wires(colour, scaled);
    wires.Sphere();
}

void DrawGrid(const TEffectNode& node, const TMatrix43& frame, const TVector4& colour)
{
    const TNodeType& type = *node.GetNodeType();
    const TNodeIntParameter* x = type.FindParameterOf<TNodeIntParameter>("X Divisions", PK_INT);
    const TNodeIntParameter* y = type.FindParameterOf<TNodeIntParameter>("Y Divisions", PK_INT);
    TMatrix43 scaled = frame;
    TPortValue scale;
    if (ReadInput(node, "Size", TY_SCALE, scale))
        ScaleFirst(scaled, scale[0], 1, scale[1]);
    TWires wires(colour, scaled);
    wires.Grid(x != nullptr ? x->Get() : 1, y != nullptr ? y->Get() : 1);
}

// The directions are those of the world, and the place is that of whatever emits: the ground's middle
// stands for it.
void DrawCone(const TEffectNode& node, const TVector4& colour)
{
    TPortValue direction;
    TPortValue cosine(1.0f);
    TPortValue speed(1.0f);
    if (!ReadInput(node, "Direction", TY_VECTOR3, direction))
        return;
    ReadInput(node, "Cone Cosine", TY_SCALAR, cosine);
    ReadInput(node, "Maximum Speed", TY_SCALAR, speed);
    const TVector3 axis(direction[0], direction[1], direction[2]);
    const double length = std::sqrt(ExactDot(axis, axis));
    const double c = std::fmin(std::fmax(cosine[0], -1.0), 1.0);
    if (!(length > 0) || !std::isfinite(length) || !std::isfinite(speed[0]))
        return;
    const TVector3 along = Scaled(axis, 1 / length);
    const bool steep = std::fabs(along[1]) >= std::fabs(along[0]);
    const TVector3 aside = steep ? TVector3(0, -along[2], along[1]) : TVector3(-along[2], 0, along[0]);
    const TVector3 a = Scaled(aside, 1 / std::sqrt(ExactDot(aside, aside)));
    const TVector3 b = Cross(a, along);
    const double reach = static_cast<double>(speed[0]) * ConeSeconds;
    const double radius = reach * std::sqrt(1 - c * c);
    TWires wires(colour, TMatrix43());
    wires.Line(TVector3(0, 0, 0), Scaled(along, reach));
    TVector3 last = Scaled(along, reach * c) + Scaled(b, radius);
    for (int i = 1; i <= ConeSides; ++i) {
        const double angle = WholeTurn * i / ConeSides;
        const TVector3 next = Scaled(along, reach * c) + Scaled(a, radius * std::sin(angle)) +
                              Scaled(b, radius * std::cos(angle));
        wires.Line(last, next);
        wires.Line(TVector3(0, 0, 0), next);
        last = next;
    }
}

} // namespace

void DrawEmitterShape(const TEffectNode& node, const TVector4& colour)
{
    if (node.GetNodeType()->IsOfClass("TVelocityCone")) {
        DrawCone(node, colour);
        return;
    }
    TMatrix43 frame;
    if (node.GetNodeType()->IsOfClass("TPointEmitter") && GetFrame(node, "Transform", frame))
        DrawPoint(frame, colour);
    else if (node.GetNodeType()->IsOfClass("TSphereSurface") && GetFrame(node, "Translation", frame))
        DrawSphere(node, frame, colour);
    else if (node.GetNodeType()->IsOfClass("TGrid") && GetFrame(node, "Transform", frame))
        DrawGrid(node, frame, colour);
}
