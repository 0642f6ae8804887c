#include "particles/cindermill/interface/animationramp.h"

#include "particles/cindermill/graph/operations/toolnode.h"

namespace {

constexpr int PositionChannel = 0;
constexpr int RotationChannel = 1;
constexpr int ScaleChannel = 2;

// The type of the ramp's values.
int GetValueType(const TNodeRampParameter& ramp, const TNodeType* nodeType)
{
    if (ramp.Type == PK_POLYRAMP) {
        const int output = static_cast<const TNodePolyRampParameter&>(ramp).FindOutput(*nodeType);
        return output != -1 ? nodeType->GetOutputType(output) : TY_SCALAR;
    }
    static constexpr int Types[] = {TY_SCALAR, TY_SCALE, TY_VECTOR3, TY_QUATERNION, TY_COLOUR};
    constexpr int NumTypes = sizeof(Types) / sizeof(Types[0]);
    const int type = ramp.GetRampType();
    return type >= 0 && type < NumTypes ? Types[type] : TY_SCALAR;
}

int GetChannel(int valueType)
{
    if (valueType == TY_SCALE)
        return ScaleChannel;
    return valueType == TY_QUATERNION ? RotationChannel : PositionChannel;
}

int GetNumComponents(int valueType)
{
    if (valueType == TY_SCALAR)
        return 1;
    return valueType == TY_SCALE ? 2 : 3;
}

// The value of a track's component at a time.
float Evaluate(const TAnimation& animation, int channel, float time, int component)
{
    if (channel != RotationChannel)
        return animation.GetChannel(channel).Evaluate(time)[component];
    constexpr int FirstAngle = 3;
    float values[6];
    animation.Evaluate(time, AT_ROTATION, values);
    return values[FirstAngle + component];
}

// A straight segment, its handles at the thirds.
void AddSegment(vector<TRampPoint>& curve, const TRampPoint& to)
{
    const TRampPoint from = curve.back();
    for (int third = 1; third < 3; ++third)
        curve.push_back(TRampPoint{static_cast<float>(from.X + (double(to.X) - from.X) * third / 3.0),
                                   static_cast<float>(from.Y + (double(to.Y) - from.Y) * third / 3.0)});
    curve.push_back(to);
}

} // namespace

TNodeRampParameter* FindAnimatedRamp(const TToolNode& node)
{
    const TNodeType& type = *node.GetNodeType();
    TNodeParameter* parameter = type.FindParameter("Value");
    if (!type.IsNamedOrOfClass("Shaper", "TShaper") || parameter == nullptr)
        return nullptr;
    if (parameter->Type != PK_RAMP && parameter->Type != PK_POLYRAMP)
        return nullptr;
    return static_cast<TNodeRampParameter*>(parameter);
}

void GetAnimationCurves(const TAnimation& animation, const TNodeRampParameter& ramp,
                        const TNodeType* nodeType, vector<TRampPoint>* curves)
{
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i)
        curves[i] = ramp.GetCurve(i);
    const int valueType = GetValueType(ramp, nodeType);
    const int channel = GetChannel(valueType);
    const vector<float>& times = animation.GetChannel(channel).Times;
    if (times.empty())
        return;
    for (int i = 0; i < GetNumComponents(valueType); ++i) {
        vector<TRampPoint>& curve = curves[i];
        curve.clear();
        for (const float time : times) {
            const TRampPoint point = {time, Evaluate(animation, channel, time, i)};
            if (curve.empty())
                curve.push_back(point);
            else if (time > curve.back().X)
                AddSegment(curve, point);
        }
    }
}
