#include "tools/samplemaker/samplebuilder.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/animflagsparamop.h"
#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "tools/samplemaker/samplelayout.h"

namespace {

TOperation* NewValueOp(TNodeValueParameter* param, const float* value)
{
    switch (param->Type) {
    case TY_SCALAR:
        return new TScalarParamOp(static_cast<TNodeScalarParameter*>(param), value);
    case TY_SCALE:
        return new TScaleParamOp(static_cast<TNodeScaleParameter*>(param), value);
    case TY_VECTOR3:
        return new TVector3ParamOp(static_cast<TNodeVector3Parameter*>(param), value);
    case TY_QUATERNION:
        return new TQuaternionParamOp(static_cast<TNodeQuaternionParameter*>(param), value);
    case TY_COLOUR:
        return new TColourParamOp(static_cast<TNodeColourParameter*>(param), value);
    case TY_TRANSFORM:
        return new TTransformParamOp(static_cast<TNodeTransformParameter*>(param), value);
    default:
        return new TTexCoordParamOp(static_cast<TNodeTexCoordParameter*>(param), value);
    }
}

TRampPoint Between(const TRampPoint& a, const TRampPoint& b, double w)
{
    TRampPoint result;
    result.X = static_cast<float>(a.X + (static_cast<double>(b.X) - a.X) * w);
    result.Y = static_cast<float>(a.Y + (static_cast<double>(b.Y) - a.Y) * w);
    return result;
}

} // namespace

TNodeParameter* TSampleNode::FindParameter(const char* name) const
{
    TNodeParameter* param = Node->GetNodeType()->FindParameter(name);
    ASSERT_TEXT_MSG(param != nullptr, "param != 0", name);
    return param;
}

TNodeParameter* TSampleNode::FindValue(const char* name) const
{
    const int input = Node->GetNodeType()->FindInput(name);
    return input != -1 ? Node->GetNodeType()->GetInput(input) : FindParameter(name);
}

const TSampleNode& TSampleNode::Set(const char* name, std::initializer_list<float> value) const
{
    TNodeParameter* param = FindValue(name);
    if (param->Type == TY_POLYTYPE)
        param = static_cast<TNodePolytypeParameter*>(param)->GetCurrentParameter();
    ASSERT_TEXT_MSG(param->Type < TY_POLYTYPE, "param->Type < TY_POLYTYPE", name);
    TNodeValueParameter* target = static_cast<TNodeValueParameter*>(param);
    ASSERT_TEXT_MSG(target->GetNumFloats() == static_cast<int>(value.size()), "value.size() fits", name);
    Document->ApplyOperation(NewValueOp(target, value.begin()));
    return *this;
}

const TSampleNode& TSampleNode::Int(const char* name, int value) const
{
    TNodeParameter* param = FindParameter(name);
    ASSERT_TEXT_MSG(param->Type == PK_INT, "param->Type == PK_INT", name);
    Document->ApplyOperation(new TIntParamOp(static_cast<TNodeIntParameter*>(param), value));
    return *this;
}

const TSampleNode& TSampleNode::Switch(const char* name, bool on) const
{
    TNodeParameter* param = FindParameter(name);
    if (param->Type == PK_BOOL) {
        Document->ApplyOperation(new TBoolParamOp(static_cast<TNodeBoolParameter*>(param), on));
        return *this;
    }
    ASSERT_TEXT_MSG(param->Type == PK_GROUP, "param->Type == PK_GROUP", name);
    Document->ApplyOperation(new TGroupParamOp(static_cast<TNodeGroupParameter*>(param), on));
    return *this;
}

const TSampleNode& TSampleNode::Choose(const char* name, const char* entry) const
{
    TNodeParameter* param = FindParameter(name);
    ASSERT_TEXT_MSG(param->Type == PK_ENUM, "param->Type == PK_ENUM", name);
    TNodeEnumParameter* choice = static_cast<TNodeEnumParameter*>(param);
    const vector<TNodeEnumParameter::TEntry>& entries = choice->GetValues();
    int index = 0;
    while (index < entries.size() && entries[index].Name.Compare(entry) != 0)
        ++index;
    ASSERT_TEXT_MSG(index < entries.size(), "index < entries.size()", entry);
    Document->ApplyOperation(new TEnumParamOp(choice, index));
    return *this;
}

const TSampleNode& TSampleNode::Texture(const char* name, const char* fileName) const
{
    TNodeParameter* param = FindParameter(name);
    ASSERT_TEXT_MSG(param->Type == PK_TEXTURE, "param->Type == PK_TEXTURE", name);
    Document->ApplyOperation(new TTextureParamOp(static_cast<TNodeTextureParameter*>(param), fileName));
    return *this;
}

const TSampleNode& TSampleNode::Animation(const char* name, const char* fileName) const
{
    TNodeParameter* param = FindParameter(name);
    ASSERT_TEXT_MSG(param->Type == PK_ANIMATION, "param->Type == PK_ANIMATION", name);
    TNodeAnimationParameter* animation = static_cast<TNodeAnimationParameter*>(param);
    Document->ApplyOperation(new TAnimNameParamOp(animation, fileName));
    Document->ApplyOperation(new TAnimFlagsParamOp(animation, true, false, false));
    return *this;
}

TNodeRampParameter* TSampleNode::FindRamp(const char* name) const
{
    TNodeParameter* param = FindParameter(name);
    ASSERT_TEXT_MSG(param->Type == PK_RAMP || param->Type == PK_POLYRAMP,
                    "param->Type == PK_RAMP || param->Type == PK_POLYRAMP", name);
    return static_cast<TNodeRampParameter*>(param);
}

void TSampleNode::SetPoints(TNodeRampParameter* ramp, int channel, const vector<TRampPoint>& anchors) const
{
    ASSERT_TEXT(channel < ramp->GetDimensions(), "channel < ramp->GetDimensions()");
    vector<TRampPoint> points;
    for (int i = 0; i < anchors.size(); ++i) {
        if (i > 0) {
            points.push_back(Between(anchors[i - 1], anchors[i], 1.0 / 3));
            points.push_back(Between(anchors[i - 1], anchors[i], 2.0 / 3));
        }
        points.push_back(anchors[i]);
    }
    Document->ApplyOperation(new TRampChangePointsOp(ramp, channel, points));
}

const TSampleNode& TSampleNode::Curve(const char* name, int channel,
                                      std::initializer_list<TRampPoint> points) const
{
    vector<TRampPoint> anchors;
    for (const TRampPoint& point : points)
        anchors.push_back(point);
    SetPoints(FindRamp(name), channel, anchors);
    return *this;
}

const TSampleNode& TSampleNode::Curves(const char* name, std::initializer_list<TRampPoint> points) const
{
    const int channels = FindRamp(name)->GetDimensions();
    for (int channel = 0; channel < channels; ++channel)
        Curve(name, channel, points);
    return *this;
}

const TSampleNode& TSampleNode::Colours(const char* name, std::initializer_list<TColourKey> keys) const
{
    static constexpr float TColourKey::*Channels[] = {&TColourKey::Red, &TColourKey::Green, &TColourKey::Blue,
                                                      &TColourKey::Alpha};
    TNodeRampParameter* ramp = FindRamp(name);
    int channel = 0;
    for (float TColourKey::*component : Channels) {
        vector<TRampPoint> anchors;
        for (const TColourKey& key : keys)
            anchors.push_back({key.X, key.*component});
        SetPoints(ramp, channel++, anchors);
    }
    return *this;
}

const TSampleNode& TSampleNode::Priority(int priority) const
{
    TNodeProperties properties;
    properties.Name = Node->GetNodeType()->Name;
    properties.Priority = priority;
    Document->ApplyOperation(new TNodePropertiesOp(Node, properties));
    return *this;
}

const TSampleNode& TSampleNode::Wire(const char* output, const TSampleNode& destination,
                                     const char* input) const
{
    const int source = Node->GetNodeType()->FindOutput(output);
    const int target = destination.Node->GetNodeType()->FindInput(input);
    ASSERT_TEXT_MSG(source != -1, "source != -1", output);
    ASSERT_TEXT_MSG(target != -1, "target != -1", input);
    ASSERT_TEXT_MSG(destination.Node->GetInput(target) == nullptr, "GetInput(target) == 0", input);
    ASSERT_TEXT_MSG(CanConnect(Node, source, destination.Node, target), "CanConnect", input);
    Document->ApplyOperation(new TAddGraphEdgeOp(*Document, Node, source, destination.Node, target));
    return *this;
}

TSampleBuilder::TSampleBuilder(TCindermillApp& app) : App(app), Document(app)
{
    const bool made = Document.New();
    ASSERT_TEXT(made, "made");
}

TSampleNode TSampleBuilder::Add(const char* typeName)
{
    const TNodeType* type = App.GetNodeTypes().FindType(typeName);
    ASSERT_TEXT_MSG(type != nullptr, "type != 0", typeName);
    TAddGraphNodeOp* op = new TAddGraphNodeOp(Document, *type, 0, 0);
    Document.ApplyOperation(op);
    return TSampleNode(Document, op->GetNode());
}

bool TSampleBuilder::Save(const char* path)
{
    LayOutGraph(Document);
    Document.GetOperationStack()->Clear(Document);
    return Document.SaveAs(path);
}
