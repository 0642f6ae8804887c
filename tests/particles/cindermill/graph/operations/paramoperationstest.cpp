#include "particles/cindermill/graph/operations/animflagsparamop.h"
#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/graph/operations/operationfixture.h"
#include "particles/cindermill/graph/operations/polytypeusertypeop.h"
#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/graph/operations/ramplockop.h"
#include "particles/cindermill/graph/operations/rampmovepointparamop.h"
#include "particles/cindermill/graph/operations/valueparamop.h"

namespace {

// A node with a parameter of each kind; the operations that follow start with a fresh time.
struct TParams : TFakeDocument
{
    TParams()
    {
        Node = AddNode("n", GetEveryType());
        Stack->Clear(*this);
        TakeEvents();
    }

    template <class TParameter>
    TParameter* Get(const char* name) const
    {
        return static_cast<TParameter*>(Node->GetNodeType()->FindParameter(name));
    }
    TNodeRampParameter* Ramp() const { return Get<TNodeRampParameter>("Ramp"); }

    TFakeClock Clock{10000};
    TToolNode* Node;
};

std::string Floats(std::initializer_list<float> values)
{
    std::string bytes;
    for (const float value : values)
        bytes += F32(value);
    return bytes;
}

std::string TopBody(TFakeDocument& doc)
{
    TOperation* op = doc.Stack->GetOperation(doc.Stack->GetNumOperations() - 1);
    const TChunkFileBytes::TEntry entry = SavedChunk(doc.Chunks, op);
    EXPECT_EQ(op->GetSize(), static_cast<int>(entry.Body.size()));
    EXPECT_EQ(entry.Version, 0u);
    return entry.Body;
}

std::vector<float> ValueOf(const TNodeParameter* param)
{
    float values[MaxValueFloats] = {};
    param->GetValue(values);
    return std::vector<float>(values, values + GetTypeFloats(param->GetValueType()));
}

vector<TRampPoint> Points(std::initializer_list<std::pair<float, float>> points)
{
    vector<TRampPoint> result;
    for (const auto& [x, y] : points)
        result.push_back(TRampPoint{x, y});
    return result;
}

std::string PointList(const vector<TRampPoint>& points)
{
    std::string bytes = I32(points.size());
    for (const TRampPoint& point : points)
        bytes += F32(point.X) + F32(point.Y);
    return bytes;
}

bool Same(const vector<TRampPoint>& a, const vector<TRampPoint>& b)
{
    return PointList(a) == PointList(b);
}

// The class of each value type, with two values that differ in the first and the last component.
template <class TOp, class TParameter>
void CheckValueOp(const char* name, int count)
{
    SCOPED_TRACE(name);
    TParams doc;
    TParameter* param = doc.Get<TParameter>(name);
    const std::vector<float> old = ValueOf(param);
    ASSERT_EQ(static_cast<int>(old.size()), count);
    float value[MaxValueFloats] = {};
    std::string oldBytes;
    std::string newBytes;
    for (int i = 0; i < count; ++i) {
        value[i] = static_cast<float>(i) + 10.5f;
        oldBytes += F32(old[static_cast<size_t>(i)]);
        newBytes += F32(value[i]);
    }
    doc.Apply(new TOp(param, value));
    EXPECT_EQ(ValueOf(param), std::vector<float>(value, value + count));
    EXPECT_EQ(doc.TakeEvents(), "redraw");
    EXPECT_EQ(doc.GraphChanges, 0);
    EXPECT_EQ(TopBody(doc), Ref(param) + oldBytes + newBytes);
    doc.Undo();
    EXPECT_EQ(ValueOf(param), old);
    EXPECT_EQ(doc.TakeEvents(), "redraw");
    doc.Redo();
    EXPECT_EQ(ValueOf(param), std::vector<float>(value, value + count));
}

// Setters run the parameter's callbacks.
struct TCallbackCounter
{
    explicit TCallbackCounter(TNodeParameter* param) : Param(param) { Param->AddCallback(&Called, this); }
    ~TCallbackCounter() { Param->RemoveCallback(&Called, this); }
    static void Called(TNodeParameter*, void* data) { ++static_cast<TCallbackCounter*>(data)->Count; }
    TNodeParameter* Param;
    int Count = 0;
};

} // namespace

TEST(ValueParamOps, BodyDoAndUndoOfEachType)
{
    CheckValueOp<TScalarParamOp, TNodeScalarParameter>("Scalar", 1);
    CheckValueOp<TScaleParamOp, TNodeScaleParameter>("Scale", 2);
    CheckValueOp<TVector3ParamOp, TNodeVector3Parameter>("Vector3", 3);
    CheckValueOp<TQuaternionParamOp, TNodeQuaternionParameter>("Quaternion", 3);
    CheckValueOp<TColourParamOp, TNodeColourParameter>("Colour", 4);
    CheckValueOp<TTransformParamOp, TNodeTransformParameter>("Transform", 6);
    CheckValueOp<TTexCoordParamOp, TNodeTexCoordParameter>("TextureCoords", 4);
}

namespace {

void ApplyScalar(TParams& doc, const char* name, float value)
{
    doc.Apply(new TScalarParamOp(doc.Get<TNodeScalarParameter>(name), &value));
}

void ApplyInt(TParams& doc, const char* name, int value)
{
    doc.Apply(new TIntParamOp(doc.Get<TNodeIntParameter>(name), value));
}

void ApplyVector(TParams& doc, const char* name, float x, float y, float z)
{
    const float value[3] = {x, y, z};
    doc.Apply(new TVector3ParamOp(doc.Get<TNodeVector3Parameter>(name), value));
}

} // namespace

TEST(TScalarParamOp, TwoEditsUpMergeAndOneDownDoesNot)
{
    TParams doc;
    std::string log = LogOf([&] {
        ApplyScalar(doc, "Scalar", 2);
        ApplyScalar(doc, "Scalar", 3);
    });
    EXPECT_EQ(log, "");
    EXPECT_EQ(doc.Stack->GetNumOperations(), 1);
    EXPECT_EQ(TopBody(doc), Ref(doc.Get<TNodeParameter>("Scalar")) + Floats({1, 3}));
    log = LogOf([&] { ApplyScalar(doc, "Scalar", 2.5f); });
    EXPECT_EQ(log, "no join\n");
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    // A further one down goes into the second.
    ApplyScalar(doc, "Scalar", 0);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
}

TEST(TScalarParamOp, UndoingAMergedEditReturnsToTheValueBeforeTheFirst)
{
    TParams doc;
    ApplyScalar(doc, "Scalar", 2);
    ApplyScalar(doc, "Scalar", 3);
    doc.Undo();
    EXPECT_EQ(ValueOf(doc.Get<TNodeParameter>("Scalar"))[0], 1);
    doc.Redo();
    EXPECT_EQ(ValueOf(doc.Get<TNodeParameter>("Scalar"))[0], 3);
}

TEST(TScalarParamOp, AMergeRunsTheCallbacksAndRepaints)
{
    TParams doc;
    ApplyScalar(doc, "Scalar", 2);
    doc.TakeEvents();
    TCallbackCounter counter(doc.Get<TNodeParameter>("Scalar"));
    ApplyScalar(doc, "Scalar", 3);
    EXPECT_EQ(counter.Count, 1);
    EXPECT_EQ(doc.TakeEvents(), "redraw");
}

TEST(TScalarParamOp, AnotherClassLogsALineAndAnotherParameterDoesNot)
{
    TParams doc;
    ApplyInt(doc, "Int", 6);
    EXPECT_EQ(LogOf([&] { ApplyScalar(doc, "Scalar", 2); }), "no join\n");
    EXPECT_EQ(LogOf([&] { ApplyScalar(doc, "Scalar2", 2); }), "");
    // Another parameter and another direction: the parameter is asked first.
    EXPECT_EQ(LogOf([&] { ApplyScalar(doc, "Scalar", -2); }), "");
    EXPECT_EQ(doc.Stack->GetNumOperations(), 4);
}

TEST(TScalarParamOp, OutsideTheWindowNothingIsAsked)
{
    TParams doc;
    ApplyInt(doc, "Int", 6);
    doc.Clock.Set(12000);
    EXPECT_EQ(LogOf([&] { ApplyScalar(doc, "Scalar", 2); }), "");
}

TEST(TIntParamOp, BodyDoAndUndo)
{
    TParams doc;
    TNodeIntParameter* param = doc.Get<TNodeIntParameter>("Int");
    doc.Apply(new TIntParamOp(param, -7));
    EXPECT_EQ(param->Get(), -7);
    EXPECT_EQ(TopBody(doc), Ref(param) + I32(5) + I32(-7));
    EXPECT_EQ(doc.TakeEvents(), "redraw");
    doc.Undo();
    EXPECT_EQ(param->Get(), 5);
}

TEST(TIntParamOp, MergesByDirectionWithoutALine)
{
    TParams doc;
    EXPECT_EQ(LogOf([&] {
                  ApplyInt(doc, "Int", 6);
                  ApplyInt(doc, "Int", 8);
                  EXPECT_EQ(doc.Stack->GetNumOperations(), 1);
                  ApplyInt(doc, "Int", 7);
                  EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
                  ApplyInt(doc, "Int2", -1);
                  EXPECT_EQ(doc.Stack->GetNumOperations(), 3);
              }),
              "");
}

TEST(TIntParamOp, AnUnchangedValueMergesWithAFollowingEditDownwards)
{
    TParams doc;
    ApplyInt(doc, "Int", 5);
    ApplyInt(doc, "Int", 3);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 1);
    EXPECT_EQ(TopBody(doc), Ref(doc.Get<TNodeParameter>("Int")) + I32(5) + I32(3));
    ApplyInt(doc, "Int", 4);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
}

TEST(TVector3ParamOp, TypingInXThenInYMakesTwoStepsAndManyChangesOfXOne)
{
    TParams doc;
    ApplyVector(doc, "Vector3", 1, 0, 0);
    ApplyVector(doc, "Vector3", 2, 0, 0);
    ApplyVector(doc, "Vector3", -9, 0, 0);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 1);
    EXPECT_EQ(TopBody(doc), Ref(doc.Get<TNodeParameter>("Vector3")) + Floats({0, 0, 0, -9, 0, 0}));
    ApplyVector(doc, "Vector3", -9, 1, 0);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    ApplyVector(doc, "Vector3", -9, 2, 1);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 3);
    ApplyVector(doc, "Vector32", 0, 2, 1);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 4);
    doc.Undo();
    doc.Undo();
    doc.Undo();
    doc.Undo();
    EXPECT_EQ(ValueOf(doc.Get<TNodeParameter>("Vector3")), (std::vector<float>{0, 0, 0}));
}

TEST(TVector3ParamOp, AnEditWithNoChangedComponentMergesOnlyWithAnotherOfTheKind)
{
    TParams doc;
    ApplyVector(doc, "Vector3", 0, 0, 0);
    ApplyVector(doc, "Vector3", 0, 0, 0);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 1);
    ApplyVector(doc, "Vector3", 1, 0, 0);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
}

TEST(TVector3ParamOp, DoesNotMergeWithAnotherClass)
{
    TParams doc;
    const float value[3] = {1, 0, 0};
    doc.Apply(new TQuaternionParamOp(doc.Get<TNodeQuaternionParameter>("Quaternion"), value));
    EXPECT_EQ(LogOf([&] { ApplyVector(doc, "Vector3", 1, 0, 0); }), "");
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
}

static void ApplyColour(TParams& doc, float r, float g, float b, float a, int drag)
{
    const float value[4] = {r, g, b, a};
    doc.Apply(new TColourParamOp(doc.Get<TNodeColourParameter>("Colour"), value, drag));
}

TEST(TColourParamOp, OfOneDragMergeWhateverComponentsEachChanges)
{
    TParams doc;
    const std::vector<float> before = ValueOf(doc.Get<TNodeParameter>("Colour"));
    ApplyColour(doc, 0.5f, before[1], before[2], before[3], 7);
    ApplyColour(doc, 0.5f, 0.25f, before[2], before[3], 7);
    ApplyColour(doc, 0.1f, 0.2f, 0.3f, before[3], 7);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 1);
    EXPECT_EQ(ValueOf(doc.Get<TNodeParameter>("Colour")), (std::vector<float>{0.1f, 0.2f, 0.3f, before[3]}));
    doc.Undo();
    EXPECT_EQ(ValueOf(doc.Get<TNodeParameter>("Colour")), before);
}

TEST(TColourParamOp, OfTwoDragsOrOfNoneMergeByTheirComponents)
{
    TParams doc;
    ApplyColour(doc, 0.5f, 0.5f, 1, 1, 7);
    ApplyColour(doc, 0.5f, 0.5f, 0.5f, 1, 8);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    ApplyColour(doc, 0.5f, 0.5f, 0.25f, 1, 9);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    ApplyColour(doc, 0.5f, 0.5f, 0.25f, 0.5f, 0);
    ApplyColour(doc, 0.25f, 0.5f, 0.25f, 0.5f, 0);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 4);
}

TEST(TColourParamOp, ADragOnAnotherParameterOrAfterTwoSecondsOpensANewStep)
{
    TParams doc;
    ApplyColour(doc, 0.5f, 1, 1, 1, 7);
    doc.Clock.Set(11999);
    ApplyColour(doc, 0.25f, 0.5f, 1, 1, 7);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 1);
    doc.Clock.Set(13999);
    ApplyColour(doc, 0.25f, 0.25f, 1, 1, 7);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    const float value[4] = {0, 0, 0, 0};
    doc.Apply(new TColourParamOp(doc.Get<TNodeColourParameter>("Colour2"), value, 7));
    EXPECT_EQ(doc.Stack->GetNumOperations(), 3);
}

TEST(TBoolParamOp, StoresTheNewStateOnly)
{
    TParams doc;
    TNodeBoolParameter* param = doc.Get<TNodeBoolParameter>("Bool");
    doc.Apply(new TBoolParamOp(param, true));
    EXPECT_TRUE(param->Get());
    EXPECT_EQ(TopBody(doc), Ref(param) + U8(1));
    EXPECT_EQ(doc.TakeEvents(), "redraw");
    doc.Undo();
    EXPECT_FALSE(param->Get());
    doc.Redo();
    doc.Apply(new TBoolParamOp(param, false));
    EXPECT_EQ(TopBody(doc), Ref(param) + U8(0));
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    EXPECT_EQ(AssertionOf([&] { delete new TBoolParamOp(param, false); }), "param->Get() != set");
}

TEST(TGroupParamOp, StoresTheNewStateOnly)
{
    TParams doc;
    TNodeGroupParameter* param = doc.Get<TNodeGroupParameter>("Group");
    doc.Apply(new TGroupParamOp(param, true));
    EXPECT_TRUE(param->Get());
    EXPECT_EQ(TopBody(doc), Ref(param) + U8(1));
    EXPECT_EQ(AssertionOf([&] { delete new TGroupParamOp(param, true); }), "param->Get() != set");
    doc.Undo();
    EXPECT_FALSE(param->Get());
}

TEST(TEnumParamOp, HoldsPositionsAndDoesNotMerge)
{
    TParams doc;
    TNodeEnumParameter* param = doc.Get<TNodeEnumParameter>("Enum");
    doc.Apply(new TEnumParamOp(param, 2));
    EXPECT_EQ(param->GetNumber(), 30);
    EXPECT_EQ(TopBody(doc), Ref(param) + I32(0) + I32(2));
    doc.Apply(new TEnumParamOp(param, 1));
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    EXPECT_EQ(TopBody(doc), Ref(param) + I32(2) + I32(1));
    doc.Undo();
    EXPECT_EQ(param->GetIndex(), 2);
}

TEST(TTextureParamOp, HoldsBothNames)
{
    TParams doc;
    TNodeTextureParameter* param = doc.Get<TNodeTextureParameter>("Texture");
    doc.Apply(new TTextureParamOp(param, "spark.dds"));
    EXPECT_EQ(Text(param->GetFileName()), "spark.dds");
    EXPECT_EQ(TopBody(doc), Ref(param) + Padded("") + Padded("spark.dds"));
    doc.Apply(new TTextureParamOp(param, "foam"));
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    // Four letters and their zero take eight bytes.
    EXPECT_EQ(TopBody(doc), Ref(param) + Padded("spark.dds") + std::string("foam\0\0\0\0", 8));
    doc.Undo();
    doc.Undo();
    EXPECT_TRUE(param->GetFileName().IsEmpty());
}

TEST(TAnimNameParamOp, HoldsBothNames)
{
    TParams doc;
    TNodeAnimationParameter* param = doc.Get<TNodeAnimationParameter>("Animation");
    doc.Apply(new TAnimNameParamOp(param, "path.vori"));
    EXPECT_EQ(Text(param->GetFileName()), "path.vori");
    EXPECT_EQ(TopBody(doc), Ref(param) + Padded("") + Padded("path.vori"));
    doc.Undo();
    EXPECT_TRUE(param->GetFileName().IsEmpty());
}

TEST(TAnimFlagsParamOp, HoldsOldAndNewOfEachFlag)
{
    TParams doc;
    TNodeAnimationParameter* param = doc.Get<TNodeAnimationParameter>("Animation");
    param->SetFlags(true, false, false);
    doc.Apply(new TAnimFlagsParamOp(param, false, true, false));
    EXPECT_FALSE(param->UsesPosition());
    EXPECT_TRUE(param->UsesRotation());
    EXPECT_EQ(TopBody(doc), Ref(param) + U8(1) + U8(0) + U8(0) + U8(1) + U8(0) + U8(0));
    doc.Undo();
    EXPECT_TRUE(param->UsesPosition());
    EXPECT_FALSE(param->UsesRotation());
    EXPECT_FALSE(param->UsesScale());
}

TEST(TRampMovePointParamOp, MovesOnePoint)
{
    TParams doc;
    const vector<TRampPoint> old = doc.Ramp()->GetCurve(1);
    const TRampPoint moved{0.5f, 7};
    doc.Apply(new TRampMovePointParamOp(doc.Ramp(), 1, 3, moved));
    EXPECT_TRUE(doc.Ramp()->GetCurve(1)[3] == moved);
    EXPECT_EQ(TopBody(doc), Ref(doc.Ramp()) + I32(1) + I32(3) + Floats({1, 3, 0.5f, 7}));
    EXPECT_EQ(doc.TakeEvents(), "redraw");
    // Its own Merge declines.
    doc.Apply(new TRampMovePointParamOp(doc.Ramp(), 1, 3, TRampPoint{0.6f, 8}));
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    doc.Undo();
    doc.Undo();
    EXPECT_TRUE(Same(doc.Ramp()->GetCurve(1), old));
}

TEST(TRampChangePointsOp, ReplacesOneChannel)
{
    TParams doc;
    const vector<TRampPoint> old = doc.Ramp()->GetCurve(0);
    const vector<TRampPoint> other = doc.Ramp()->GetCurve(1);
    vector<TRampPoint> points = Points({{0, 5}});
    doc.Apply(new TRampChangePointsOp(doc.Ramp(), 0, points));
    // The list was copied.
    points[0].Y = 99;
    EXPECT_TRUE(Same(doc.Ramp()->GetCurve(0), Points({{0, 5}})));
    EXPECT_TRUE(Same(doc.Ramp()->GetCurve(1), other));
    EXPECT_EQ(TopBody(doc), Ref(doc.Ramp()) + I32(0) + PointList(old) + PointList(Points({{0, 5}})));
    doc.Undo();
    EXPECT_TRUE(Same(doc.Ramp()->GetCurve(0), old));
    doc.Redo();
    EXPECT_TRUE(Same(doc.Ramp()->GetCurve(0), Points({{0, 5}})));
}

TEST(TRampChangeAllPointsOp, HoldsFourListsOnEachSide)
{
    TParams doc;
    vector<TRampPoint> old[4];
    vector<TRampPoint> lists[4];
    std::string oldBytes;
    std::string newBytes;
    for (int i = 0; i < 4; ++i) {
        old[i] = doc.Ramp()->GetCurve(i);
        lists[i] = Points({{0, static_cast<float>(i)}});
        oldBytes += PointList(old[i]);
        newBytes += PointList(lists[i]);
    }
    EXPECT_TRUE(old[3].empty());
    doc.Apply(new TRampChangeAllPointsOp(doc.Ramp(), lists));
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(Same(doc.Ramp()->GetCurve(i), lists[i]));
    EXPECT_EQ(TopBody(doc), Ref(doc.Ramp()) + oldBytes + newBytes);
    doc.Undo();
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(Same(doc.Ramp()->GetCurve(i), old[i]));
}

TEST(TRampLockOp, WritesNewLocksBeforeOldAndFillsWithMinusOne)
{
    TParams doc;
    const int first[4] = {-1, 0, 0, 3};
    doc.Apply(new TRampLockOp(doc.Ramp(), first));
    // The ramp has three channels; the fourth lock is not asked.
    EXPECT_EQ(TopBody(doc),
              Ref(doc.Ramp()) + I32(-1) + I32(0) + I32(0) + I32(-1) + I32(-1) + I32(-1) + I32(-1) + I32(-1));
    EXPECT_EQ(doc.Ramp()->GetLocks()[1], 0);
    TCallbackCounter counter(doc.Ramp());
    const int second[3] = {2, -1, -1};
    doc.Apply(new TRampLockOp(doc.Ramp(), second));
    EXPECT_EQ(counter.Count, 1);
    EXPECT_EQ(TopBody(doc),
              Ref(doc.Ramp()) + I32(2) + I32(-1) + I32(-1) + I32(-1) + I32(-1) + I32(0) + I32(0) + I32(-1));
    doc.Undo();
    EXPECT_EQ(doc.Ramp()->GetLocks()[0], -1);
    EXPECT_EQ(doc.Ramp()->GetLocks()[2], 0);
}

TEST(TRampLockOp, ALockOutOfRangeAsserts)
{
    TParams doc;
    for (const int wrong : {-2, 4}) {
        const int locks[3] = {-1, wrong, -1};
        EXPECT_EQ(AssertionOf([&] { delete new TRampLockOp(doc.Ramp(), locks); }),
                  "newlocks[i] >= -1 && newlocks[i] < 4");
    }
}

TEST(TRampLinearOp, StoresTheNewStateOnly)
{
    TParams doc;
    doc.Apply(new TRampLinearOp(doc.Ramp(), true));
    EXPECT_TRUE(doc.Ramp()->IsLinear());
    EXPECT_EQ(TopBody(doc), Ref(doc.Ramp()) + U8(1));
    EXPECT_EQ(AssertionOf([&] { delete new TRampLinearOp(doc.Ramp(), true); }),
              "param->IsLinear() != linear");
    doc.Undo();
    EXPECT_FALSE(doc.Ramp()->IsLinear());
}

namespace {

// p feeds q: p.Out -> q.A, and p.Copy -> s.A. Node r stands alone.
struct TPolytypes : TFakeDocument
{
    TPolytypes()
    {
        P = AddNode("p", GetPolytypeType());
        Q = AddNode("q", GetPolytypeType());
        R = AddNode("r", GetPolytypeType());
        S = AddNode("s", GetPolytypeType());
        Connect("1", P, 0, Q, 0);
        Connect("2", P, 1, S, 0);
        TakeEvents();
        GraphChanges = 0;
    }

    static TNodePolytypeParameter* Port(TToolNode* node, int port)
    {
        return static_cast<TNodePolytypeParameter*>(node->GetNodeType()->GetInput(port));
    }
    static int OutType(TToolNode* node, int port) { return node->GetNodeType()->GetOutput(port).DefaultType; }
    // Inputs A, B and outputs Out, Copy of a node, as digits.
    static std::string TypesOf(TToolNode* node)
    {
        std::string result;
        for (int i = 0; i < 2; ++i)
            result += std::to_string(Port(node, i)->GetCurrentType());
        for (int i = 0; i < 2; ++i)
            result += std::to_string(node->GetNodeType()->GetOutputType(i));
        return result;
    }

    TToolNode* P;
    TToolNode* Q;
    TToolNode* R;
    TToolNode* S;
};

// The types are those that the operation itself has written.
struct TUnresolvedPolytypes : TPolytypes
{
    void GraphChanged() override { ++GraphChanges; }
};

} // namespace

TEST(TPolytypeUserTypeOp, ReachesAllThatLinksAndWiresTie)
{
    TPolytypes doc;
    doc.Apply(new TPolytypeUserTypeOp(doc.Q, doc.Port(doc.Q, 1), TY_VECTOR3));
    for (TToolNode* node : {doc.P, doc.Q, doc.S})
        EXPECT_EQ(doc.TypesOf(node), "2222");
    EXPECT_EQ(doc.TypesOf(doc.R), "0000");
    EXPECT_EQ(doc.TakeEvents(), "changed, redraw");
    EXPECT_EQ(doc.GraphChanges, 1);
    doc.Undo();
    EXPECT_EQ(doc.GraphChanges, 2);
    for (TToolNode* node : {doc.P, doc.Q, doc.R, doc.S})
        EXPECT_EQ(doc.TypesOf(node), "0000");
    doc.Stack->Redo(doc);
    EXPECT_EQ(doc.GraphChanges, 3);
}

TEST(TPolytypeUserTypeOp, BodyHoldsThePortsInTheOrderInWhichTheyAreReached)
{
    TPolytypes doc;
    doc.Apply(new TPolytypeUserTypeOp(doc.Q, doc.Port(doc.Q, 0), TY_VECTOR3));
    TOperation* op = doc.Stack->GetOperation(doc.Stack->GetNumOperations() - 1);
    const std::string body = SavedChunk(doc.Chunks, op).Body;
    EXPECT_EQ(op->GetSize(), static_cast<int>(body.size()));
    auto input = [&](TToolNode* node, int port) { return Ref(doc.Port(node, port)) + I32(TY_SCALAR); };
    auto output = [&](TToolNode* node, int port) { return Ref(node) + I32(port) + I32(TY_SCALAR); };
    // q.A, over the wire to p.Out, its link p.A, and what links to p.A: p.B; then p.Copy over the wire to s.
    EXPECT_EQ(body, I32(6) + input(doc.Q, 0) + input(doc.P, 0) + input(doc.P, 1) + input(doc.S, 0) +
                        input(doc.S, 1) + input(doc.Q, 1) + I32(6) + output(doc.P, 0) + output(doc.P, 1) +
                        output(doc.S, 0) + output(doc.S, 1) + output(doc.Q, 0) + output(doc.Q, 1) +
                        I32(TY_VECTOR3));
}

TEST(TPolytypeUserTypeOp, UndoRestoresTypesThatDifferedBefore)
{
    TUnresolvedPolytypes doc;
    doc.Port(doc.P, 1)->SetUserType(TY_VECTOR3);
    doc.P->GetNodeType()->GetOutput(1).DefaultType = TY_VECTOR3;
    EXPECT_EQ(doc.TypesOf(doc.P), "0202");
    doc.Apply(new TPolytypeUserTypeOp(doc.P, doc.Port(doc.P, 0), TY_VECTOR3));
    EXPECT_EQ(doc.TypesOf(doc.P), "2222");
    doc.Undo();
    EXPECT_EQ(doc.TypesOf(doc.P), "0202");
}

// Wires have settled another type than the one that the user once chose.
TEST(TPolytypeUserTypeOp, UndoRestoresTheUsersTypeAndFromAFileTheOneInForce)
{
    const TTempFolder folder;
    const std::string path = folder.Path("effect");
    TPolytypes doc;
    doc.R->GetNodeType()->GetOutput(0).ValidTypes = 1u << TY_VECTOR3;
    doc.GraphChanged();
    ASSERT_EQ(doc.Port(doc.R, 0)->GetDefaultType(), TY_SCALAR);
    ASSERT_EQ(doc.Port(doc.R, 0)->GetCurrentType(), TY_VECTOR3);
    doc.Apply(new TPolytypeUserTypeOp(doc.R, doc.Port(doc.R, 0), TY_VECTOR3));
    EXPECT_EQ(doc.Port(doc.R, 0)->GetDefaultType(), TY_VECTOR3);
    ASSERT_TRUE(doc.Chunks.Save(path.c_str()));
    doc.Undo();
    EXPECT_EQ(doc.Port(doc.R, 0)->GetDefaultType(), TY_SCALAR);
    TFakeDocument loaded;
    loaded.Chunks.Clear();
    ASSERT_TRUE(loaded.Chunks.Load(path.c_str()));
    vector<TChunk*> roots;
    loaded.Chunks.GetChunksOfClass(TOperationStack::NameID(), roots);
    loaded.Chunks.GetChunksOfClass(TEffectGraph::NameID(), roots);
    loaded.Stack = static_cast<TOperationStack*>(roots[0]);
    loaded.Graph = static_cast<TEffectGraph*>(roots[1]);
    loaded.Undo();
    const TNodeType& type = *loaded.Graph->GetNode(2)->GetNodeType();
    EXPECT_EQ(static_cast<TNodePolytypeParameter*>(type.GetInput(0))->GetDefaultType(), TY_VECTOR3);
}

TEST(TPolytypeUserTypeOp, AnOutputThatCannotHaveTheTypeKeepsItsOwn)
{
    TUnresolvedPolytypes doc;
    doc.P->GetNodeType()->GetOutput(1).ValidTypes = 1u << TY_SCALAR;
    doc.Apply(new TPolytypeUserTypeOp(doc.P, doc.Port(doc.P, 0), TY_VECTOR3));
    EXPECT_EQ(doc.OutType(doc.P, 0), TY_VECTOR3);
    EXPECT_EQ(doc.OutType(doc.P, 1), TY_SCALAR);
    doc.Undo();
    EXPECT_EQ(doc.OutType(doc.P, 0), TY_SCALAR);
    EXPECT_EQ(doc.OutType(doc.P, 1), TY_SCALAR);
}

TEST(TPolytypeUserTypeOp, AParameterOfAnotherNodeAsserts)
{
    TPolytypes doc;
    EXPECT_EQ(AssertionOf([&] { delete new TPolytypeUserTypeOp(doc.P, doc.Port(doc.Q, 0), TY_VECTOR3); }),
              "i < node->GetNodeType()->GetNumInputs()");
}

TEST(TPolytypeUserTypeOp, DoesNotMerge)
{
    TFakeClock clock(10000);
    TPolytypes doc;
    const int before = doc.Stack->GetNumOperations();
    doc.Apply(new TPolytypeUserTypeOp(doc.R, doc.Port(doc.R, 0), TY_VECTOR3));
    doc.Apply(new TPolytypeUserTypeOp(doc.R, doc.Port(doc.R, 0), TY_SCALAR));
    EXPECT_EQ(doc.Stack->GetNumOperations(), before + 2);
}

TEST(ParamOperations, AHistoryComesBackFromAFileByteForByteAndStillWorks)
{
    const TTempFolder folder;
    const std::string first = folder.Path("first");
    const std::string second = folder.Path("second");
    {
        TParams doc;
        const float values[6] = {1, 2, 3, 4, 5, 6};
        const int locks[3] = {1, -1, 0};
        vector<TRampPoint> lists[4];
        lists[2] = Points({{0, 1}, {2, 3}});
        doc.Apply(new TScalarParamOp(doc.Get<TNodeScalarParameter>("Scalar"), values));
        doc.Apply(new TScaleParamOp(doc.Get<TNodeScaleParameter>("Scale"), values));
        doc.Apply(new TVector3ParamOp(doc.Get<TNodeVector3Parameter>("Vector3"), values));
        doc.Apply(new TQuaternionParamOp(doc.Get<TNodeQuaternionParameter>("Quaternion"), values));
        doc.Apply(new TColourParamOp(doc.Get<TNodeColourParameter>("Colour"), values));
        doc.Apply(new TTransformParamOp(doc.Get<TNodeTransformParameter>("Transform"), values));
        doc.Apply(new TTexCoordParamOp(doc.Get<TNodeTexCoordParameter>("TextureCoords"), values));
        doc.Apply(new TBoolParamOp(doc.Get<TNodeBoolParameter>("Bool"), true));
        doc.Apply(new TEnumParamOp(doc.Get<TNodeEnumParameter>("Enum"), 1));
        doc.Apply(new TIntParamOp(doc.Get<TNodeIntParameter>("Int"), 1));
        doc.Apply(new TTextureParamOp(doc.Get<TNodeTextureParameter>("Texture"), "t"));
        doc.Apply(new TRampMovePointParamOp(doc.Ramp(), 0, 0, TRampPoint{0, 9}));
        doc.Apply(new TRampChangePointsOp(doc.Ramp(), 1, Points({{0, 1}})));
        doc.Apply(new TRampChangeAllPointsOp(doc.Ramp(), lists));
        doc.Apply(new TRampLockOp(doc.Ramp(), locks));
        doc.Apply(new TRampLinearOp(doc.Ramp(), true));
        doc.Apply(new TGroupParamOp(doc.Get<TNodeGroupParameter>("Group"), true));
        doc.Apply(new TAnimNameParamOp(doc.Get<TNodeAnimationParameter>("Animation"), "a"));
        doc.Apply(new TAnimFlagsParamOp(doc.Get<TNodeAnimationParameter>("Animation"), true, true, true));
        EXPECT_EQ(doc.Stack->GetNumOperations(), 19);
        ASSERT_TRUE(doc.Chunks.Save(first.c_str()));
    }
    TFakeDocument loaded;
    loaded.Chunks.Clear();
    ASSERT_TRUE(loaded.Chunks.Load(first.c_str()));
    ASSERT_TRUE(loaded.Chunks.Save(second.c_str()));
    EXPECT_EQ(ReadBytes(first), ReadBytes(second));
    vector<TChunk*> roots;
    loaded.Chunks.GetChunksOfClass(TOperationStack::NameID(), roots);
    loaded.Chunks.GetChunksOfClass(TEffectGraph::NameID(), roots);
    loaded.Stack = static_cast<TOperationStack*>(roots[0]);
    loaded.Graph = static_cast<TEffectGraph*>(roots[1]);
    EXPECT_TRUE(loaded.Stack->Check());
    while (loaded.Stack->CanUndo())
        loaded.Undo();
    // All values are those of a new node again.
    TFakeDocument fresh;
    TToolNode* node = fresh.AddNode("n", GetEveryType());
    const TNodeType& type = *loaded.Graph->GetNode(0)->GetNodeType();
    for (int i = 0; i < type.GetNumParameters(); ++i) {
        const TNodeParameter* expected = node->GetNodeType()->GetParameter(i);
        if (expected->Type == PK_GROUP)
            continue;
        EXPECT_EQ(SavedChunk(loaded.Chunks, type.GetParameter(i)).Body,
                  SavedChunk(fresh.Chunks, expected).Body)
            << expected->Name.Print();
    }
    while (loaded.Stack->CanRedo())
        loaded.Redo();
    const std::string third = folder.Path("third");
    ASSERT_TRUE(loaded.Chunks.Save(third.c_str()));
    EXPECT_EQ(ReadBytes(first), ReadBytes(third));
}

TEST(ParamOperations, PolytypeHistoryComesBackFromAFile)
{
    const TTempFolder folder;
    const std::string first = folder.Path("first");
    const std::string second = folder.Path("second");
    {
        TPolytypes doc;
        doc.Apply(new TPolytypeUserTypeOp(doc.P, doc.Port(doc.P, 0), TY_VECTOR3));
        ASSERT_TRUE(doc.Chunks.Save(first.c_str()));
    }
    TChunkFile chunks;
    ASSERT_TRUE(chunks.Load(first.c_str()));
    ASSERT_TRUE(chunks.Save(second.c_str()));
    EXPECT_EQ(ReadBytes(first), ReadBytes(second));
}
