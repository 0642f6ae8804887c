#include "particles/effectgraph/parsing.h"

#include "particles/effectgraph/rampparameter.h"

#include <cmath>
#include <limits>

static std::string Curve(const std::string& text)
{
    return "<defaultvalues>" + text + "</defaultvalues>";
}

static std::string Ramp(const std::string& type, const std::string& curves)
{
    return Element("Ramp", "<type>" + type + "</type>" + curves);
}

TEST(TNodeRampParameter, TypesGiveDimensions)
{
    const char* kinds[] = {"scalar", "scale", "vector3", "quaternion", "COLOUR"};
    const int dimensions[] = {1, 2, 3, 3, 4};
    for (int i = 0; i < 5; ++i) {
        const TParsed parsed(Ramp(kinds[i], ""));
        EXPECT_EQ(parsed.As<TNodeRampParameter>().GetDimensions(), dimensions[i]);
        EXPECT_EQ(parsed.As<TNodeRampParameter>().GetRampType(), i);
    }
    EXPECT_EQ(Text(TParsed(Ramp("scale= x, y ", "")).As<TNodeRampParameter>().GetLabels()), "x, y");
    EXPECT_EQ(TParsed(Ramp("what=x", "")).Error, "Unknown ramp type what");
    EXPECT_EQ(TParsed(Element("Ramp", "")).Error, "Ramp parameter missing type tag");
}

TEST(TNodeRampParameter, WithoutDefaultsItIsTheStraightLine)
{
    const TParsed parsed(Ramp("scale", ""));
    const TNodeRampParameter& ramp = parsed.As<TNodeRampParameter>();
    for (int d = 0; d < 2; ++d) {
        ASSERT_EQ(ramp.GetCurve(d).size(), 4);
        EXPECT_EQ(ramp.GetCurve(d)[1], (TRampPoint{1.0f / 3, 1.0f / 3}));
        EXPECT_EQ(ramp.GetCurve(d)[3], (TRampPoint{1, 1}));
        EXPECT_EQ(ramp.GetLocks()[d], -1);
    }
    EXPECT_FALSE(ramp.IsLinear());
    EXPECT_EQ(ramp.GetLength(), 1.0f);
}

TEST(TNodeRampParameter, DimensionsNotGivenCopyTheOneBefore)
{
    const TParsed parsed(Ramp("colour", Curve("{0,1}") + Curve("{0,2},{3,4}")));
    const TNodeRampParameter& ramp = parsed.As<TNodeRampParameter>();
    EXPECT_EQ(ramp.GetCurve(0).size(), 1);
    EXPECT_EQ(ramp.GetCurve(1).size(), 4);
    EXPECT_EQ(ramp.GetCurve(2).size(), 4);
    EXPECT_EQ(ramp.GetCurve(3)[3], (TRampPoint{3, 4}));
}

TEST(TNodeRampParameter, HandlesLieOnTheLine)
{
    const TParsed parsed(Ramp("scalar", Curve("{0,0}, {3,6}")));
    const vector<TRampPoint>& curve = parsed.As<TNodeRampParameter>().GetCurve(0);
    EXPECT_EQ(curve[1], (TRampPoint{1, 2}));
    EXPECT_EQ(curve[2], (TRampPoint{2, 4}));
}

TEST(TNodeRampParameter, DecreasingXIsRaised)
{
    const TParsed parsed(Ramp("scalar", Curve("{2,0},{1,5}")));
    ASSERT_TRUE(parsed.Ok);
    EXPECT_EQ(parsed.As<TNodeRampParameter>().GetCurve(0)[3], (TRampPoint{2, 5}));
}

TEST(TNodeRampParameter, BadPointsQuoteTheWholeDefault)
{
    EXPECT_EQ(TParsed(Ramp("scalar", Curve("{0,0},{0.5}"))).Error,
              "Badly formatted ramp default - expecting list of vector2s: {0,0},{0.5}");
    EXPECT_EQ(TParsed(Ramp("scalar", Curve("{0,0},1"))).Error, "Badly formatted ramp default: {0,0},1");
    EXPECT_EQ(TParsed(Ramp("scalar", Curve("{"))).Error, "Badly formatted ramp default: {");
}

TEST(TNodeRampParameter, PolyRampHasFourDimensionsAndAnOutput)
{
    const TParsed parsed(Element("PolyRamp", Curve("{0,1}") + "<output>Out</output>"));
    const TNodePolyRampParameter& ramp = parsed.As<TNodePolyRampParameter>();
    EXPECT_EQ(ramp.GetDimensions(), 4);
    EXPECT_EQ(ramp.GetRampType(), 4);
    EXPECT_EQ(ramp.GetCurve(3).size(), 1);
    EXPECT_EQ(Text(ramp.GetOutput()), "Out");
    TNodeType type;
    TOutputPort output;
    output.Name = "Other";
    type.Outputs.push_back(output);
    EXPECT_EQ(ramp.FindOutput(type), -1);
    output.Name = "OUT";
    type.Outputs.push_back(output);
    EXPECT_EQ(ramp.FindOutput(type), 1);
    EXPECT_EQ(TParsed(Element("PolyRamp", Curve("{0,1}"))).Error, "PolyRampParameter missing output tag");
}

static TNodeRampParameter* MakeRamp(TParsed& parsed)
{
    return &parsed.As<TNodeRampParameter>();
}

TEST(TNodeRampParameter, EvaluateHoldsTheEnds)
{
    TParsed parsed(Ramp("scalar", Curve("{1,2},{3,6}")));
    const TNodeRampParameter* ramp = MakeRamp(parsed);
    EXPECT_EQ(ramp->Evaluate(-5, 0), 2.0f);
    EXPECT_EQ(ramp->Evaluate(1, 0), 2.0f);
    EXPECT_EQ(ramp->Evaluate(3, 0), 6.0f);
    EXPECT_EQ(ramp->Evaluate(9, 0), 6.0f);
    EXPECT_NEAR(ramp->Evaluate(2, 0), 4, 1e-5);
}

TEST(TNodeRampParameter, EvaluateLinear)
{
    TParsed parsed(Ramp("scalar", Curve("{0,0},{2,4},{2.0005,8},{3,8}")));
    TNodeRampParameter* ramp = MakeRamp(parsed);
    ramp->SetLinear(true);
    EXPECT_EQ(ramp->Evaluate(0.5f, 0), 1.0f);
    EXPECT_EQ(ramp->Evaluate(2.0002f, 0), 4.0f);
}

// The same steps with every stored value rounded.
static float BezierAt(const TRampPoint* p, float x)
{
    float lo = 0;
    float hi = 1;
    float m = 0;
    const auto at = [](double a, double b, double c, double d, double t) {
        const double s = 1 - t;
        return static_cast<float>(s * s * s * a + 3 * s * s * t * b + 3 * s * t * t * c + t * t * t * d);
    };
    for (int i = 0; i < 32; ++i) {
        m = static_cast<float>((double(lo) + hi) * 0.5);
        (at(p[0].X, p[1].X, p[2].X, p[3].X, m) < x ? lo : hi) = m;
    }
    return at(p[0].Y, p[1].Y, p[2].Y, p[3].Y, m);
}

TEST(TNodeRampParameter, EvaluateBisectsTheCurve)
{
    TNodeRampParameter ramp;
    const TRampPoint points[] = {{0, 0}, {0.1f, 2}, {0.9f, -1}, {1, 1}, {1.5f, 1}, {1.6f, 3}, {2, 0.5f}};
    vector<TRampPoint> curve;
    for (const TRampPoint& point : points)
        curve.push_back(point);
    ramp.SetCurve(0, curve);
    for (int i = 1; i < 40; ++i) {
        const float x = static_cast<float>(i) * 0.05f;
        EXPECT_EQ(ramp.Evaluate(x, 0), x >= 2 ? 0.5f : BezierAt(points + (x < 1 ? 0 : 3), x)) << x;
    }
}

TEST(TNodeRampParameter, LockedDimensionFollowsTheOtherCurve)
{
    TParsed parsed(Ramp("scale", Curve("{0,1},{1,1}") + Curve("{0,7},{5,7}")));
    TNodeRampParameter* ramp = MakeRamp(parsed);
    const int locks[] = {-1, 0, -1, -1};
    EXPECT_EQ(ramp->GetLength(), 5.0f);
    ramp->SetLocks(locks);
    EXPECT_EQ(ramp->Evaluate(0.5f, 1), ramp->Evaluate(0.5f, 0));
    EXPECT_EQ(ramp->GetCurve(1)[0].Y, 7.0f);
    EXPECT_EQ(ramp->GetLength(), 1.0f);
}

TEST(TNodeRampParameter, LengthIsAtLeastZero)
{
    TParsed parsed(Ramp("scalar", Curve("{-5,1},{-2,1}")));
    EXPECT_EQ(MakeRamp(parsed)->GetLength(), 0.0f);
}

TEST(TNodeRampParameter, LocksOutOfRangeAssertAndChangeNothing)
{
    TParsed parsed(Ramp("colour", ""));
    TNodeRampParameter* ramp = MakeRamp(parsed);
    for (int i = 0; i < 4; ++i) {
        int locks[] = {-1, -1, -1, -1};
        locks[i] = i % 2 == 0 ? 4 : -2;
        const std::string lock = "Locks[" + std::to_string(i) + "]";
        EXPECT_EQ(AssertionOf([&] { ramp->SetLocks(locks); }), lock + " >= -1 && " + lock + " < 4");
        EXPECT_EQ(ramp->GetLocks()[i], -1);
    }
}

TEST(TNodeRampParameter, LocksBeyondTheDimensionsAreNotTaken)
{
    TParsed parsed(Ramp("scale", ""));
    TNodeRampParameter* ramp = MakeRamp(parsed);
    const int locks[] = {1, -1, 99, 3};
    ramp->SetLocks(locks);
    EXPECT_EQ(ramp->GetLocks()[0], 1);
    EXPECT_EQ(ramp->GetLocks()[2], -1);
    EXPECT_EQ(ramp->GetLocks()[3], -1);
}

TEST(TNodeRampParameter, EmptyAndOddCurvesAreSafe)
{
    TNodeRampParameter ramp;
    EXPECT_EQ(ramp.Evaluate(1, 0), 0.0f);
    EXPECT_EQ(ramp.GetLength(), 0.0f);
    vector<TRampPoint> curve;
    for (int i = 0; i < 6; ++i) {
        curve.push_back(TRampPoint{static_cast<float>(i), static_cast<float>(i)});
        ramp.SetCurve(0, curve);
        for (float x = -1; x < 7; x += 0.25f)
            EXPECT_TRUE(std::isfinite(ramp.Evaluate(x, 0)));
    }
    // Behind the last whole segment nothing fits.
    EXPECT_EQ(ramp.Evaluate(4.5f, 0), 5.0f);
    EXPECT_EQ(ramp.Evaluate(std::numeric_limits<float>::quiet_NaN(), 0), 5.0f);
}

TEST(TNodeRampParameter, EditsTellTheListeners)
{
    TParsed parsed(Ramp("scale", Curve("{0,1},{1,1}")));
    TNodeRampParameter* ramp = MakeRamp(parsed);
    int calls = 0;
    ramp->AddCallback([](TNodeParameter*, void* data) { ++*static_cast<int*>(data); }, &calls);
    ramp->SetPoint(1, 3, TRampPoint{2, 2});
    EXPECT_EQ(ramp->GetCurve(1)[3], (TRampPoint{2, 2}));
    EXPECT_EQ(ramp->GetCurve(0)[3], (TRampPoint{1, 1}));
    const vector<TRampPoint> curves[4];
    ramp->SetCurves(curves);
    EXPECT_EQ(ramp->GetCurve(1).size(), 0);
    ramp->SetLinear(true);
    EXPECT_EQ(calls, 3);
    EXPECT_NE(AssertionOf([&] { ramp->SetPoint(0, 0, TRampPoint()); }), "");
    EXPECT_NE(AssertionOf([&] { ramp->SetPoint(4, 0, TRampPoint()); }), "");
}
