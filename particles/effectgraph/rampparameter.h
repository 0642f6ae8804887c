#pragma once

#include "particles/effectgraph/nodeparameter.h"

class TNodeType;

struct TRampPoint
{
    float X = 0;
    float Y = 0;
    bool operator==(const TRampPoint& other) const { return X == other.X && Y == other.Y; }
};

// From `a` at 0 to `b` at 1, and beyond.
inline TRampPoint PointBetween(const TRampPoint& a, const TRampPoint& b, double part)
{
    return TRampPoint{static_cast<float>(a.X + (double(b.X) - a.X) * part),
                      static_cast<float>(a.Y + (double(b.Y) - a.Y) * part)};
}

// Up to four curves over one time-like axis. A curve is a chain of cubic Bezier segments: anchor, handle,
// handle, anchor, and so on.
class TNodeRampParameter : public TRegistered<TNodeRampParameter, TNodeParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeRampParameter";
    static constexpr int MaxDimensions = 4;

    TNodeRampParameter() : TNodeRampParameter(PK_RAMP) {}
    int GetVersion() override { return 2; }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override;

    void AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                          TRefreshRecord& record) override;

    // The curve of a dimension, or of the one it is locked to, at x.
    float Evaluate(float x, int dimension) const;
    // Of any curve; 0 for one without points.
    static float EvaluateCurve(const TRampPoint* points, int count, bool linear, float x);
    // The greatest last x of the unlocked dimensions, at least 0.
    float GetLength() const;

    int GetDimensions() const { return Dimensions; }
    int GetRampType() const { return RampType; }
    const TString& GetLabels() const { return Labels; }
    const vector<TRampPoint>& GetCurve(int dimension) const;
    const int* GetLocks() const { return Locks; }
    bool IsLinear() const { return Linear; }
    // A byte that files carry along; nothing goes by it.
    bool HasSpareFlag() const { return Flag2; }
    // A lock that came from a file may name no curve.
    static bool IsLock(int lock) { return lock >= -1 && lock < MaxDimensions; }
    // Frees the curves whose locks name none; whether there were any.
    bool FreeLostLocks();
    // What a node type tells of a ramp; false, with nothing changed, for a number that no ramp has.
    bool SetDimensions(int dimensions);
    bool SetRampType(int rampType);
    void SetLabels(const TString& labels) { Labels = labels; }
    void SetSpareFlag(bool flag) { Flag2 = flag; }
    // Each of these tells the listeners.
    void SetLocks(const int* locks);
    void SetLinear(bool linear);
    void SetPoint(int dimension, int point, const TRampPoint& value);
    void SetCurve(int dimension, const vector<TRampPoint>& points);
    void SetCurves(const vector<TRampPoint>* points);

protected:
    explicit TNodeRampParameter(int kind) : TRegistered(kind) {}
    bool ParseCurves(TNodeTypeFile& file);
    static bool ParseCurve(TNodeTypeFile& file, const TString& text, vector<TRampPoint>& curve);
    static bool ReadCurve(TChunkFile* chunkFile, vector<TRampPoint>& curve);
    void CopyRamp(const TNodeRampParameter& other);

    int Dimensions = 1;
    int RampType = 0;
    TString Labels;
    vector<TRampPoint> Curves[MaxDimensions];
    int Locks[MaxDimensions] = {-1, -1, -1, -1};
    bool Linear = false;
    bool Flag2 = false;
};

// A ramp whose number of components follows an output port of its node.
class TNodePolyRampParameter : public TRegistered<TNodePolyRampParameter, TNodeRampParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodePolyRampParameter";
    TNodePolyRampParameter();
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override;

    void AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                          TRefreshRecord& record) override;

    const TString& GetOutput() const { return Output; }
    void SetOutput(const TString& output) { Output = output; }
    // The index of the output port that it follows, -1 if there is none of that name.
    int FindOutput(const TNodeType& nodeType) const;

private:
    TString Output;
};
