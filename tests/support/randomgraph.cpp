#include "support/randomgraph.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/animflagsparamop.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/graph/operations/polytypeusertypeop.h"
#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/graph/operations/ramplockop.h"
#include "particles/cindermill/graph/operations/rampmovepointparamop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/operations/valueparamop.h"

#include <iterator>

TRandomGraph::TRandomGraph(TCindermillApp& app, TDocument& document, TDice& dice)
    : App(app), Document(document), Dice(dice)
{
}

void TRandomGraph::Build(int edits)
{
    const uint32_t systems = Below(4);
    for (uint32_t i = 0; i < systems; ++i)
        AddSystem();
    for (int i = 0; i < edits; ++i)
        Edit();
}

TToolNode* TRandomGraph::Add(const char* name)
{
    const TNodeTypeLibrary& types = App.GetNodeTypes();
    const TNodeType* type = types.FindType(name);
    if (type == nullptr)
        type = types.GetType(static_cast<int>(Below(static_cast<uint32_t>(types.GetNumTypes()))));
    return Add(*type);
}

TToolNode* TRandomGraph::Add(const TNodeType& type)
{
    const int x = static_cast<int>(Below(1000));
    const int y = static_cast<int>(Below(1000));
    TAddGraphNodeOp* op = new TAddGraphNodeOp(Document, type, x, y);
    TToolNode* node = op->GetNode();
    Document.ApplyOperation(op);
    return node;
}

TToolNode* TRandomGraph::AddOneOf(std::initializer_list<const char*> types)
{
    return Add(types.begin()[Below(static_cast<uint32_t>(types.size()))]);
}

bool TRandomGraph::Connect(TToolNode* source, int output, TToolNode* destination, int input)
{
    if (source == destination || output >= source->GetNumOutputs() || input >= destination->GetNumInputs() ||
        destination->GetInput(input) != nullptr || !CanConnect(source, output, destination, input))
        return false;
    Document.ApplyOperation(new TAddGraphEdgeOp(Document, source, output, destination, input));
    return true;
}

bool TRandomGraph::Connect(TToolNode* source, const char* output, TToolNode* destination, const char* input)
{
    const int from = source->GetNodeType()->FindOutput(output);
    const int to = destination->GetNodeType()->FindInput(input);
    return from != -1 && to != -1 && Connect(source, from, destination, to);
}

bool TRandomGraph::Connect(TToolNode* source, TToolNode* destination, const char* input)
{
    const int to = destination->GetNodeType()->FindInput(input);
    return to != -1 && Connect(source, 0, destination, to);
}

void TRandomGraph::AddSystem()
{
    if (App.GetNodeTypes().GetNumTypes() == 0)
        return;
    TToolNode* emission = AddOneOf({"Point Emitter", "Grid", "Sphere Surface"});
    if (!Chance(0.3) || !FireByParticles(emission)) {
        TToolNode* emitter = Add("Emitter");
        Connect(emitter, emission, "Emission Trigger");
        if (Chance(0.3))
            Connect(Add("Constant"), emitter, "Rate");
    }
    TToolNode* stage = AddOneOf({"Quad Render Stage", "Blended Quad Render Stage", "Sprite Render Stage",
                                 "Blended Sprite Render Stage", "Velocity Trail Render Stage"});
    for (TNodeParameter* parameter : stage->GetNodeType()->Parameters)
        if (parameter->Type == PK_TEXTURE && !Chance(0.02))
            Document.ApplyOperation(
                new TTextureParamOp(static_cast<TNodeTextureParameter*>(parameter), "spark.dds"));
    AddMotion(emission, stage);
    AddLife(stage);
}

bool TRandomGraph::FireByParticles(TToolNode* emission)
{
    for (int tries = 0; tries < 20 && GetNumNodes() > 1; ++tries) {
        TToolNode* node = AnyNode();
        if (node != emission && node->GetNumOutputs() > 0 && node->GetNodeType()->Category == TU_PROCESS &&
            Connect(node, node->GetNumOutputs() - 1, emission, 0))
            return true;
    }
    return false;
}

void TRandomGraph::AddMotion(TToolNode* emission, TToolNode* stage)
{
    const char* place = stage->GetNodeType()->FindInput("Transform") != -1 ? "Transform" : "Position";
    if (Chance(0.15)) {
        Connect(emission, stage, place);
        return;
    }
    TToolNode* integrate = Add("Integrate");
    Connect(emission, integrate, "Position");
    TToolNode* velocity = AddOneOf({"Velocity Cone", "Random Value", "Noise", "Build Vector"});
    const char* port = nullptr;
    for (uint32_t left = Below(4); left > 0; --left) {
        TToolNode* force =
            AddOneOf({"Gravity", "Wind", "Turbulence", "Damping", "Attractor", "Collision Plane"});
        if (port == nullptr ? Connect(velocity, force, "Velocity")
                            : Connect(velocity, port, force, "Velocity")) {
            velocity = force;
            port = "Velocity";
            if (Chance(0.5))
                Connect(emission, force, "Position");
        }
    }
    if (port == nullptr)
        Connect(velocity, integrate, "Velocity");
    else
        Connect(velocity, port, integrate, "Velocity");
    Connect(integrate, stage, place);
    if (stage->GetNodeType()->FindInput("Velocity") != -1)
        Connect(velocity, port != nullptr ? port : "Velocity", stage, "Velocity");
}

void TRandomGraph::AddLife(TToolNode* stage)
{
    if (Chance(0.2))
        return;
    TToolNode* age = Add("Age");
    const char* const shaped[][2] = {{"Colour Over Life", "Colour"},
                                     {"Scale Over Life", "Scale"},
                                     {"Animated Texture", "UVs"},
                                     {"Shaper", "Colour"},
                                     {"Scalar Over Life", "Blend"}};
    for (const auto& [type, input] : shaped) {
        if (!Chance(0.4) || stage->GetNodeType()->FindInput(input) == -1)
            continue;
        TToolNode* node = Add(type);
        Connect(age, node, "Time");
        Connect(node, stage, input);
    }
    if (Chance(0.2))
        Connect(age, Add("Event Trigger"), "Trigger");
}

void TRandomGraph::Edit()
{
    static constexpr struct
    {
        TEditFunction Function;
        uint32_t Weight;
    } edits[] = {
        {&TRandomGraph::ChangeParameter, 40},
        {&TRandomGraph::AddNode, 8},
        {&TRandomGraph::AddEdge, 14},
        {&TRandomGraph::MoveNodes, 4},
        {&TRandomGraph::DeleteNodes, 4},
        {&TRandomGraph::ChangeEdge, 4},
        {&TRandomGraph::DeleteEdge, 4},
        {&TRandomGraph::Bypass, 4},
        {&TRandomGraph::ChangeProperties, 4},
        {&TRandomGraph::CopyAndPaste, 2},
        {&TRandomGraph::Cut, 1},
        {&TRandomGraph::UndoSome, 8},
        {&TRandomGraph::RedoSome, 5},
        {&TRandomGraph::AddSystem, 1},
    };
    uint32_t total = 0;
    for (const auto& edit : edits)
        total += edit.Weight;
    uint32_t chosen = Below(total);
    for (const auto& edit : edits) {
        if (chosen < edit.Weight) {
            (this->*edit.Function)();
            return;
        }
        chosen -= edit.Weight;
    }
}

TToolNode* TRandomGraph::AnyNode()
{
    const uint32_t count = static_cast<uint32_t>(GetNumNodes());
    return static_cast<TToolNode*>(Document.GetGraph()->GetNode(static_cast<int>(Below(count))));
}

TToolEdge* TRandomGraph::AnyEdge()
{
    const uint32_t count = static_cast<uint32_t>(Document.GetGraph()->GetNumEdges());
    if (count == 0)
        return nullptr;
    return static_cast<TToolEdge*>(Document.GetGraph()->GetEdge(static_cast<int>(Below(count))));
}

vector<TToolNode*> TRandomGraph::SomeNodes()
{
    vector<TToolNode*> nodes;
    for (uint32_t left = Below(4); left > 0 && GetNumNodes() > 0; --left) {
        TToolNode* node = AnyNode();
        if (nodes.index_of(node) == -1)
            nodes.push_back(node);
    }
    return nodes;
}

bool TRandomGraph::FindPorts(TToolNode*& source, int& output, TToolNode*& destination, int& input)
{
    for (int tries = 0; tries < 10 && GetNumNodes() > 1; ++tries) {
        source = AnyNode();
        destination = AnyNode();
        if (source == destination || source->GetNumOutputs() == 0 || destination->GetNumInputs() == 0)
            continue;
        output = static_cast<int>(Below(static_cast<uint32_t>(source->GetNumOutputs())));
        input = static_cast<int>(Below(static_cast<uint32_t>(destination->GetNumInputs())));
        if (destination->GetInput(input) == nullptr && CanConnect(source, output, destination, input))
            return true;
    }
    return false;
}

void TRandomGraph::AddNode()
{
    const TNodeTypeLibrary& types = App.GetNodeTypes();
    if (types.GetNumTypes() > 0)
        Add(*types.GetType(static_cast<int>(Below(static_cast<uint32_t>(types.GetNumTypes())))));
}

void TRandomGraph::AddEdge()
{
    TToolNode* source = nullptr;
    TToolNode* destination = nullptr;
    int output = 0;
    int input = 0;
    if (FindPorts(source, output, destination, input))
        Document.ApplyOperation(new TAddGraphEdgeOp(Document, source, output, destination, input));
}

void TRandomGraph::MoveNodes()
{
    const int dx = static_cast<int>(Below(200)) - 100;
    const int dy = static_cast<int>(Below(200)) - 100;
    Document.ApplyOperation(new TMoveGraphNodeOp(SomeNodes(), dx, dy));
}

void TRandomGraph::DeleteNodes()
{
    Document.ApplyOperation(new TDeleteGraphNodeOp(SomeNodes()));
}

void TRandomGraph::ChangeEdge()
{
    TToolEdge* edge = AnyEdge();
    TToolNode* source = nullptr;
    TToolNode* destination = nullptr;
    int output = 0;
    int input = 0;
    if (edge == nullptr || !FindPorts(source, output, destination, input))
        return;
    // One end moves, or both.
    if (Chance(0.4)) {
        source = static_cast<TToolNode*>(edge->GetSrcNode());
        output = edge->GetSrcPort();
        if (source == destination || !CanConnect(source, output, destination, input))
            return;
    }
    Document.ApplyOperation(new TChangeGraphEdgeOp(edge, source, output, destination, input));
}

void TRandomGraph::DeleteEdge()
{
    if (TToolEdge* edge = AnyEdge())
        Document.ApplyOperation(new TDeleteGraphEdgeOp(edge));
}

void TRandomGraph::Bypass()
{
    if (GetNumNodes() == 0)
        return;
    TToolNode* node = AnyNode();
    const TNodeType& type = *node->GetNodeType();
    if (type.HasFlag(FL_BYPASSABLE))
        Document.ApplyOperation(new TBypassFlagOp(node, !type.IsBypassed()));
}

void TRandomGraph::ChangeProperties()
{
    if (GetNumNodes() == 0)
        return;
    TToolNode* node = AnyNode();
    TNodeProperties properties;
    properties.Name = Chance(0.7) ? node->GetNodeType()->Name : TString("Renamed");
    properties.Priority = static_cast<int>(Below(256));
    properties.DynamicBounds = Chance(0.3);
    properties.StaticBounds = Chance(0.3);
    properties.BoundsMin = TVector3(-1, SomeFloat(), 0);
    properties.BoundsMax = TVector3(1, 2, SomeFloat());
    Document.ApplyOperation(new TNodePropertiesOp(node, properties));
}

void TRandomGraph::CopyAndPaste()
{
    Document.ClearSelection();
    for (TToolNode* node : SomeNodes())
        Document.SelectNode(node, false);
    Document.CopySelection();
    Document.Paste();
}

void TRandomGraph::Cut()
{
    Document.ClearSelection();
    for (TToolNode* node : SomeNodes())
        Document.SelectNode(node, false);
    Document.CutSelection();
}

void TRandomGraph::UndoSome()
{
    for (uint32_t left = 1 + Below(5); left > 0; --left)
        Document.Undo();
}

void TRandomGraph::RedoSome()
{
    for (uint32_t left = 1 + Below(5); left > 0; --left)
        Document.Redo();
}

void TRandomGraph::ChangeParameter()
{
    if (GetNumNodes() == 0)
        return;
    TToolNode* node = AnyNode();
    const TNodeType& type = *node->GetNodeType();
    vector<TNodeParameter*> parameters;
    Collect(type.Parameters, parameters);
    Collect(type.Inputs, parameters);
    if (parameters.empty())
        return;
    TNodeParameter* parameter = parameters[static_cast<int>(Below(static_cast<uint32_t>(parameters.size())))];
    if (parameter->Type != TY_POLYTYPE) {
        ChangeParameter(parameter);
        return;
    }
    TNodePolytypeParameter* polytype = static_cast<TNodePolytypeParameter*>(parameter);
    const int wanted = static_cast<int>(Below(TY_POLYTYPE));
    if (Chance(0.5))
        ChangeValue(polytype->GetCurrentParameter());
    else if (polytype->IsTypeValid(wanted) && type.Inputs.find(parameter) != type.Inputs.end())
        Document.ApplyOperation(new TPolytypeUserTypeOp(node, polytype, wanted));
}

void TRandomGraph::Collect(const vector<TNodeParameter*>& parameters, vector<TNodeParameter*>& result)
{
    for (TNodeParameter* parameter : parameters) {
        result.push_back(parameter);
        if (parameter->Type == PK_GROUP)
            Collect(static_cast<TNodeGroupParameter*>(parameter)->GetChildren(), result);
    }
}

// Small numbers mostly, so that a preview stays quick.
int TRandomGraph::SomeInt(const TNodeParameter& parameter)
{
    if (parameter.Name.Compare("Particle Count") == 0)
        return static_cast<int>(Below(12)) + (Chance(0.05) ? 0 : 1);
    return static_cast<int>(Below(6)) - (Chance(0.05) ? 1 : 0);
}

float TRandomGraph::SomeFloat()
{
    constexpr float rare[] = {0, -0.0f, 1e30f, -1e30f, 1e-30f, 1000};
    if (Chance(0.05))
        return rare[Below(std::size(rare))];
    return static_cast<float>(Below(4001)) / 1000.0f - 1.0f;
}

void TRandomGraph::ChangeParameter(TNodeParameter* parameter)
{
    switch (parameter->Type) {
    case PK_BOOL: {
        auto* flag = static_cast<TNodeBoolParameter*>(parameter);
        Document.ApplyOperation(new TBoolParamOp(flag, !flag->Get()));
        break;
    }
    case PK_GROUP: {
        auto* group = static_cast<TNodeGroupParameter*>(parameter);
        Document.ApplyOperation(new TGroupParamOp(group, !group->Get()));
        break;
    }
    case PK_ENUM: {
        auto* choice = static_cast<TNodeEnumParameter*>(parameter);
        const uint32_t count = static_cast<uint32_t>(choice->GetValues().size());
        if (count == 0)
            break;
        Document.ApplyOperation(new TEnumParamOp(choice, static_cast<int>(Below(count))));
        break;
    }
    case PK_INT:
        Document.ApplyOperation(
            new TIntParamOp(static_cast<TNodeIntParameter*>(parameter), SomeInt(*parameter)));
        break;
    case PK_TEXTURE:
        Document.ApplyOperation(new TTextureParamOp(static_cast<TNodeTextureParameter*>(parameter),
                                                    Chance(0.95) ? "spark.dds" : ""));
        break;
    case PK_ANIMATION: {
        auto* animation = static_cast<TNodeAnimationParameter*>(parameter);
        if (Chance(0.5))
            Document.ApplyOperation(new TAnimNameParamOp(animation, Chance(0.95) ? "path.vori" : ""));
        else
            Document.ApplyOperation(new TAnimFlagsParamOp(animation, Chance(0.5), Chance(0.5), Chance(0.5)));
        break;
    }
    case PK_RAMP:
    case PK_POLYRAMP:
        ChangeRamp(static_cast<TNodeRampParameter*>(parameter));
        break;
    default:
        ChangeValue(parameter);
        break;
    }
}

void TRandomGraph::ChangeValue(TNodeParameter* parameter)
{
    float value[MaxValueFloats];
    parameter->GetValue(value);
    const uint32_t count = static_cast<uint32_t>(GetTypeFloats(parameter->Type));
    const uint32_t changed = Below(count + 1);
    for (uint32_t i = 0; i < count; ++i)
        if (changed == count || i == changed)
            value[i] = SomeFloat();
    switch (parameter->Type) {
    case TY_SCALAR:
        Document.ApplyOperation(new TScalarParamOp(static_cast<TNodeScalarParameter*>(parameter), value));
        break;
    case TY_SCALE:
        Document.ApplyOperation(new TScaleParamOp(static_cast<TNodeScaleParameter*>(parameter), value));
        break;
    case TY_VECTOR3:
        Document.ApplyOperation(new TVector3ParamOp(static_cast<TNodeVector3Parameter*>(parameter), value));
        break;
    case TY_QUATERNION:
        Document.ApplyOperation(
            new TQuaternionParamOp(static_cast<TNodeQuaternionParameter*>(parameter), value));
        break;
    case TY_COLOUR:
        Document.ApplyOperation(new TColourParamOp(static_cast<TNodeColourParameter*>(parameter), value));
        break;
    case TY_TRANSFORM:
        Document.ApplyOperation(
            new TTransformParamOp(static_cast<TNodeTransformParameter*>(parameter), value));
        break;
    case TY_TEXCOORDS:
        Document.ApplyOperation(new TTexCoordParamOp(static_cast<TNodeTexCoordParameter*>(parameter), value));
        break;
    default:
        break;
    }
}

// Anchor, handle, handle, anchor and so on, to the right.
vector<TRampPoint> TRandomGraph::SomePoints()
{
    vector<TRampPoint> points;
    const int count = 1 + 3 * static_cast<int>(Below(4));
    float x = 0;
    for (int i = 0; i < count; ++i) {
        points.push_back(TRampPoint{x, SomeFloat()});
        x += static_cast<float>(Below(100)) / 200.0f;
    }
    return points;
}

void TRandomGraph::ChangeRamp(TNodeRampParameter* ramp)
{
    const int dimensions = ramp->GetDimensions();
    const int channel = static_cast<int>(Below(static_cast<uint32_t>(dimensions)));
    const vector<TRampPoint>& curve = ramp->GetCurve(channel);
    vector<TRampPoint> lists[TNodeRampParameter::MaxDimensions];
    int locks[TNodeRampParameter::MaxDimensions];
    switch (Below(5)) {
    case 0:
        Document.ApplyOperation(new TRampLinearOp(ramp, !ramp->IsLinear()));
        break;
    case 1:
        for (int& lock : locks)
            lock = static_cast<int>(Below(static_cast<uint32_t>(dimensions) + 1)) - 1;
        Document.ApplyOperation(new TRampLockOp(ramp, locks));
        break;
    case 2:
        Document.ApplyOperation(new TRampChangePointsOp(ramp, channel, SomePoints()));
        break;
    case 3:
        for (int i = 0; i < dimensions; ++i)
            lists[i] = SomePoints();
        Document.ApplyOperation(new TRampChangeAllPointsOp(ramp, lists));
        break;
    default:
        if (!curve.empty()) {
            const int point = static_cast<int>(Below(static_cast<uint32_t>(curve.size())));
            const TRampPoint moved{curve[point].X, SomeFloat()};
            Document.ApplyOperation(new TRampMovePointParamOp(ramp, channel, point, moved));
        }
        break;
    }
}
