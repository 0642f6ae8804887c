#include "particles/effectgraph/rampparameter.h"

#include "library/containers/append.h"
#include "particles/effectgraph/nodetype.h"
#include "particles/effectgraph/nodetypefile.h"
#include "particles/effectgraph/refreshrecord.h"
#include "particles/effectgraph/xmltext.h"

struct TRampKind
{
    const char* Name;
    int Dimensions;
};

static constexpr TRampKind RampKinds[] = {
    {"scalar", 1}, {"scale", 2}, {"vector3", 3}, {"quaternion", 3}, {"colour", 4}};
constexpr int NumRampKinds = 5;

bool TNodeRampParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    int32_t dimensions = 0;
    if (!TNodeParameter::Read(size, version, chunkFile) || !file.ReadI32(dimensions))
        return false;
    ASSERT_TEXT(dimensions > 0 && dimensions <= MaxDimensions, "Dimensions > 0 && Dimensions <= 4");
    Dimensions = dimensions;
    if (!file.ReadI32(RampType) || !file.ReadString(Labels))
        return false;
    for (int i = 0; i < Dimensions; ++i)
        if (!ReadCurve(chunkFile, Curves[i]))
            return false;
    for (int& lock : Locks)
        if (!file.ReadI32(lock))
            return false;
    Linear = false;
    Flag2 = false;
    return version < 2 || (file.ReadBool(Linear) && file.ReadBool(Flag2));
}

bool TNodeRampParameter::ReadCurve(TChunkFile* chunkFile, vector<TRampPoint>& curve)
{
    uint32_t count = 0;
    if (!chunkFile->ReadCount(count, 8))
        return false;
    curve.clear();
    curve.reserve(static_cast<int>(count));
    for (uint32_t i = 0; i < count; ++i) {
        TRampPoint point;
        if (!chunkFile->File.ReadFloat(point.X) || !chunkFile->File.ReadFloat(point.Y))
            return false;
        curve.push_back(point);
    }
    return true;
}

bool TNodeRampParameter::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    bool ok = TNodeParameter::Write(chunkFile) && file.WriteI32(Dimensions) && file.WriteI32(RampType) &&
              file.WriteString(Labels);
    for (int i = 0; ok && i < Dimensions; ++i) {
        ok = file.WriteU32(static_cast<uint32_t>(Curves[i].size()));
        for (int n = 0; ok && n < Curves[i].size(); ++n)
            ok = file.WriteFloat(Curves[i][n].X) && file.WriteFloat(Curves[i][n].Y);
    }
    for (int i = 0; ok && i < MaxDimensions; ++i)
        ok = file.WriteI32(Locks[i]);
    return ok && file.WriteBool(Linear) && file.WriteBool(Flag2);
}

int TNodeRampParameter::GetSize()
{
    int size = TNodeParameter::GetSize() + 8 + TBinaryFile::GetStringSize(Labels) + 4 * MaxDimensions + 2;
    for (int i = 0; i < Dimensions; ++i)
        size += 4 + 8 * Curves[i].size();
    return size;
}

bool TNodeRampParameter::ParseXml(TNodeTypeFile& file)
{
    if (!ParseCommon(file))
        return false;
    if (!file.Xml.FindTagFromHere("type"))
        return file.Fail("Ramp parameter missing type tag");
    TString kind;
    if (!file.ReadElement(kind, "Failed to get type text", "Parameter missing type end tag"))
        return false;
    if (kind.SplitAtFirst('=', Labels) != -1)
        Labels.Trim();
    int type = 0;
    while (type < NumRampKinds && kind.Compare(RampKinds[type].Name) != 0)
        ++type;
    if (type == NumRampKinds)
        return file.Fail("Unknown ramp type %s", QuoteText(kind).Print());
    RampType = type;
    Dimensions = RampKinds[type].Dimensions;
    return ParseCurves(file);
}

bool TNodeRampParameter::ParseCurves(TNodeTypeFile& file)
{
    static constexpr TRampPoint Straight[] = {
        {0, 0}, {1.0f / 3.0f, 1.0f / 3.0f}, {2.0f / 3.0f, 2.0f / 3.0f}, {1, 1}};
    int given = 0;
    while (given < MaxDimensions && file.Xml.FindTagFromHere("defaultvalues")) {
        TString text;
        if (!file.GetText(text, "Failed to get defaultvalue text") ||
            !ParseCurve(file, text, Curves[given]) || !file.Leave("Parameter missing defaultvalues end tag"))
            return false;
        ++given;
    }
    if (given == 0) {
        for (const TRampPoint& point : Straight)
            Curves[0].push_back(point);
        given = 1;
    }
    for (int i = given; i < Dimensions; ++i)
        Curves[i] = Curves[i - 1];
    return true;
}

bool TNodeRampParameter::ParseCurve(TNodeTypeFile& file, const TString& text, vector<TRampPoint>& curve)
{
    vector<TString> pieces;
    text.SplitBracketed(pieces, ',');
    for (const TString& piece : pieces) {
        const int length = piece.Length();
        if (length < 2 || piece.Print()[0] != '{' || piece.Print()[length - 1] != '}')
            return file.Fail("Badly formatted ramp default: %s", QuoteText(text).Print());
        TString inside;
        inside.Assign(piece.Print() + 1, piece.Print() + length - 1);
        vector<float> numbers;
        inside.SplitFloats(numbers, ',');
        if (numbers.size() != 2)
            return file.Fail("Badly formatted ramp default - expecting list of vector2s: %s",
                             QuoteText(text).Print());
        TRampPoint point{numbers[0], numbers[1]};
        if (!curve.empty()) {
            const TRampPoint last = curve.back();
            if (point.X < last.X)
                point.X = last.X;
            Append(curve, PointBetween(last, point, 1.0 / 3.0));
            Append(curve, PointBetween(last, point, 2.0 / 3.0));
        }
        Append(curve, point);
    }
    return true;
}

// Curves that the ramp did not have begin as the node type tells them, and no curve follows one that is gone.
void TNodeRampParameter::AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                                          TRefreshRecord& record)
{
    TNodeParameter::AdoptDeclaration(declared, chunkFile, record);
    const TNodeRampParameter& wanted = static_cast<const TNodeRampParameter&>(declared);
    RampType = wanted.RampType;
    Labels = wanted.Labels;
    if (Dimensions == wanted.Dimensions)
        return;
    for (int i = Dimensions; i < wanted.Dimensions; ++i)
        Curves[i] = wanted.Curves[i];
    for (int i = wanted.Dimensions; i < MaxDimensions; ++i)
        Curves[i].clear();
    for (int i = 0; i < MaxDimensions; ++i)
        if (i >= Dimensions || i >= wanted.Dimensions || Locks[i] >= wanted.Dimensions)
            Locks[i] = -1;
    Dimensions = wanted.Dimensions;
    record.SetLost(this);
}

void TNodePolyRampParameter::AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                                              TRefreshRecord& record)
{
    TNodeRampParameter::AdoptDeclaration(declared, chunkFile, record);
    Output = static_cast<const TNodePolyRampParameter&>(declared).Output;
}

bool TNodeRampParameter::FreeLostLocks()
{
    bool found = false;
    for (int& lock : Locks)
        if (!IsLock(lock)) {
            lock = -1;
            found = true;
        }
    return found;
}

TNodeParameter* TNodeRampParameter::Clone() const
{
    TNodeRampParameter* copy = new TNodeRampParameter;
    copy->CopyRamp(*this);
    return copy;
}

void TNodeRampParameter::CopyRamp(const TNodeRampParameter& other)
{
    CopyBase(other);
    Dimensions = other.Dimensions;
    RampType = other.RampType;
    Labels = other.Labels;
    for (int i = 0; i < MaxDimensions; ++i) {
        Curves[i] = other.Curves[i];
        Locks[i] = other.Locks[i];
    }
    Linear = other.Linear;
    Flag2 = other.Flag2;
}

static float EvaluateLinear(const TRampPoint* p, float x)
{
    const float dx = static_cast<float>(double(p[3].X) - p[0].X);
    if (dx < 0.001)
        return p[0].Y;
    return static_cast<float>(p[0].Y + (double(p[3].Y) - p[0].Y) * ((double(x) - p[0].X) / dx));
}

static float Bezier(double a, double b, double c, double d, double m)
{
    return static_cast<float>((1 - m) * (1 - m) * (1 - m) * a + 3 * (1 - m) * (1 - m) * m * b +
                              3 * (1 - m) * m * m * c + m * m * m * d);
}

static float EvaluateCubic(const TRampPoint* p, float x)
{
    constexpr int NumSteps = 32;
    float lo = 0;
    float hi = 1;
    float m = 0;
    for (int step = 0; step < NumSteps; ++step) {
        m = static_cast<float>((double(lo) + hi) * 0.5);
        const float xAtM = Bezier(p[0].X, p[1].X, p[2].X, p[3].X, m);
        if (xAtM < x)
            lo = m;
        else
            hi = m;
    }
    return Bezier(p[0].Y, p[1].Y, p[2].Y, p[3].Y, m);
}

float TNodeRampParameter::Evaluate(float x, int dimension) const
{
    ASSERT(dimension >= 0 && dimension < MaxDimensions);
    const int lock = Locks[dimension];
    const vector<TRampPoint>& curve = Curves[lock >= 0 && lock < MaxDimensions ? lock : dimension];
    return EvaluateCurve(curve.data(), curve.size(), Linear, x);
}

float TNodeRampParameter::EvaluateCurve(const TRampPoint* p, int count, bool linear, float x)
{
    if (count == 0)
        return 0;
    if (x <= p[0].X)
        return p[0].Y;
    if (x >= p[count - 1].X)
        return p[count - 1].Y;
    for (int i = 0; i < count - 3; i += 3)
        if (p[i].X <= x && x < p[i + 3].X)
            return linear ? EvaluateLinear(p + i, x) : EvaluateCubic(p + i, x);
    return p[count - 1].Y;
}

float TNodeRampParameter::GetLength() const
{
    float length = 0;
    for (int i = 0; i < Dimensions; ++i)
        if (Locks[i] == -1 && !Curves[i].empty() && Curves[i].back().X > length)
            length = Curves[i].back().X;
    return length;
}

const vector<TRampPoint>& TNodeRampParameter::GetCurve(int dimension) const
{
    ASSERT(dimension >= 0 && dimension < MaxDimensions);
    return Curves[dimension];
}

bool TNodeRampParameter::SetDimensions(int dimensions)
{
    if (dimensions < 1 || dimensions > MaxDimensions)
        return false;
    Dimensions = dimensions;
    return true;
}

bool TNodeRampParameter::SetRampType(int rampType)
{
    if (rampType < 0 || rampType >= NumRampKinds)
        return false;
    RampType = rampType;
    return true;
}

void TNodeRampParameter::SetLocks(const int* locks)
{
    int wanted[MaxDimensions];
    for (int i = 0; i < MaxDimensions; ++i)
        wanted[i] = i < Dimensions ? locks[i] : -1;
    ASSERT_TEXT(wanted[0] >= -1 && wanted[0] < 4, "Locks[0] >= -1 && Locks[0] < 4");
    ASSERT_TEXT(wanted[1] >= -1 && wanted[1] < 4, "Locks[1] >= -1 && Locks[1] < 4");
    ASSERT_TEXT(wanted[2] >= -1 && wanted[2] < 4, "Locks[2] >= -1 && Locks[2] < 4");
    ASSERT_TEXT(wanted[3] >= -1 && wanted[3] < 4, "Locks[3] >= -1 && Locks[3] < 4");
    for (int i = 0; i < MaxDimensions; ++i)
        Locks[i] = wanted[i];
    NotifyChanged();
}

void TNodeRampParameter::SetLinear(bool linear)
{
    Linear = linear;
    NotifyChanged();
}

void TNodeRampParameter::SetPoint(int dimension, int point, const TRampPoint& value)
{
    ASSERT(dimension >= 0 && dimension < MaxDimensions);
    Curves[dimension][point] = value;
    NotifyChanged();
}

void TNodeRampParameter::SetCurve(int dimension, const vector<TRampPoint>& points)
{
    ASSERT(dimension >= 0 && dimension < MaxDimensions);
    Curves[dimension] = points;
    NotifyChanged();
}

void TNodeRampParameter::SetCurves(const vector<TRampPoint>* points)
{
    for (int i = 0; i < MaxDimensions; ++i)
        Curves[i] = points[i];
    NotifyChanged();
}

TNodePolyRampParameter::TNodePolyRampParameter() : TRegistered(PK_POLYRAMP)
{
    Dimensions = MaxDimensions;
    RampType = NumRampKinds - 1;
}

bool TNodePolyRampParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    return TNodeRampParameter::Read(size, version, chunkFile) && chunkFile->File.ReadString(Output);
}

bool TNodePolyRampParameter::Write(TChunkFile* chunkFile)
{
    return TNodeRampParameter::Write(chunkFile) && chunkFile->File.WriteString(Output);
}

int TNodePolyRampParameter::GetSize()
{
    return TNodeRampParameter::GetSize() + TBinaryFile::GetStringSize(Output);
}

bool TNodePolyRampParameter::ParseXml(TNodeTypeFile& file)
{
    if (!ParseCommon(file) || !ParseCurves(file))
        return false;
    // Fewer than four curves have walked the reader to the element's end.
    file.Xml.RewindTag();
    if (!file.Xml.FindTagFromHere("output"))
        return file.Fail("PolyRampParameter missing output tag");
    return file.ReadElement(Output, "Failed to get output text", "Parameter missing output end tag");
}

TNodeParameter* TNodePolyRampParameter::Clone() const
{
    TNodePolyRampParameter* copy = new TNodePolyRampParameter;
    copy->CopyRamp(*this);
    copy->Output = Output;
    return copy;
}

int TNodePolyRampParameter::FindOutput(const TNodeType& nodeType) const
{
    return nodeType.FindOutput(Output);
}
