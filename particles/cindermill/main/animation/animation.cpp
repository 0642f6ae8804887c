#include "particles/cindermill/main/animation/animation.h"

#include "library/containers/ownerlist.h"
#include "library/maths/matrix43.h"
#include "library/maths/quaternion.h"
#include "library/maths/scalar.h"
#include "library/system/files/xmlcheck.h"
#include "library/system/files/xmlfile.h"
#include "library/system/message.h"
#include "library/system/path.h"

#include <cmath>
#include <cstdlib>

namespace {

constexpr int MaxComponents = 4;

enum TChannelIndex
{
    CH_POSITION,
    CH_ROTATION,
    CH_SCALE
};

// Numbers straight from a file: runs of characters between separators.
class TFloatReader
{
public:
    explicit TFloatReader(TFile& file) : File(file) {}

    // 0 when the file has ended.
    float Next()
    {
        char token[MaxToken + 1];
        int length = 0;
        char ch = 0;
        while (ReadChar(ch) && IsSeparator(ch)) {
        }
        while (!IsSeparator(ch) && !Ended) {
            token[length++] = ch;
            if (length == MaxToken)
                break;
            ReadChar(ch);
        }
        token[length] = 0;
        return static_cast<float>(std::strtod(token, nullptr));
    }

private:
    static constexpr int MaxToken = 64;

    // Bytes of 128 and above count as negative, and so as separators too.
    static bool IsSeparator(char ch) { return static_cast<signed char>(ch) < 33; }
    bool ReadChar(char& ch)
    {
        Ended = File.IsEof() || !File.Read(&ch, 1);
        return !Ended;
    }

    TFile& File;
    bool Ended = false;
};

// Walks a .vori file down to its channels and shows what it misses.
class TVoriReader
{
public:
    explicit TVoriReader(const char* path) : Path(path), ShownPath(GetShownPath(path)) {}
    ~TVoriReader()
    {
        if (Xml.IsOpen())
            Xml.Close();
    }

    bool Open();
    bool ReadChannel(int index, TAnimChannel& channel);
    // Of tags that do not match, which the reader has gone on past: told, and given.
    const TString& TellTags() const;

private:
    bool CheckTags();
    void TellRefusal() const;
    void TellFault(const TXmlFault& fault) const;
    // The reader pushes no empty element: what is searched inside of it is not there.
    bool Find(const char* tag) { return !Xml.IsEmptyTag() && Xml.FindTag(tag); }
    bool FindFromHere(const char* tag) { return Xml.FindTagFromHere(tag); }
    int GetCount(const char* attribute);
    // Whether the file could hold so many numbers.
    bool CanHold(int64_t numFloats) { return numFloats <= Xml.GetRemaining(); }
    bool ReadData(int index, TAnimChannel& channel);
    void ReadKeys(int numKeys, int keyStride, vector<TVector4>& keys);
    void ReadTimes(int numKeys, vector<float>& times);
    // Back from wherever the numbers ended.
    void LeaveValues();
    bool Fail(const char* tag) const;
    bool FailChannel(const char* tag, int index) const;

    TXmlFile Xml;
    TXmlFault TagFault;
    const char* Path;
    // As the messages name it.
    const TString ShownPath;
};

bool TVoriReader::Fail(const char* tag) const
{
    ShowMessage("Failed to find %s tag in file %s. Is it a valid vori animation file?", tag,
                ShownPath.Print());
    return false;
}

bool TVoriReader::FailChannel(const char* tag, int index) const
{
    ShowMessage("Failed to find %s tag %d/3 in file %s. Is it a valid vori animation file?", tag, index,
                ShownPath.Print());
    return false;
}

bool TVoriReader::Open()
{
    if (!Xml.OpenRead(Path)) {
        TellRefusal();
        return false;
    }
    if (!CheckTags())
        return false;
    if (!Xml.FindTag("VOR")) {
        ShowMessage("Failed to find VOR tag in file %s. Is it a valid vori file?", ShownPath.Print());
        return false;
    }
    if (!Find("animclip"))
        return Fail("animClip");
    return Find("anim") || Fail("anim");
}

// With the system's reason, if the file is there.
void TVoriReader::TellRefusal() const
{
    TString text;
    text.Format("Failed to open %s for reading", ShownPath.Print());
    TString reason;
    if (GetReadFault(Path, reason)) {
        text += "\n";
        text += reason;
    }
    ShowMessage("%s", text.Print());
}

// A zero byte between numbers parts them like a blank; in a tag it would cut a name.
bool TVoriReader::CheckTags()
{
    TXmlFault zero;
    CheckXml(Path, TagFault, zero);
    if (zero.Kind != TXmlFault::ZeroInTag)
        return true;
    TellFault(zero);
    return false;
}

void TVoriReader::TellFault(const TXmlFault& fault) const
{
    ShowMessage("%s [%d] : %s", ShownPath.Print(), fault.Line, fault.Text.Print());
}

const TString& TVoriReader::TellTags() const
{
    if (TagFault.Kind != TXmlFault::None)
        TellFault(TagFault);
    return TagFault.Text;
}

int TVoriReader::GetCount(const char* attribute)
{
    TString text;
    if (!Xml.GetAttribute(attribute, text))
        return 0;
    const int count = text.ToInt();
    return count > 0 ? count : 0;
}

bool TVoriReader::ReadChannel(int index, TAnimChannel& channel)
{
    const bool found = index == 0 ? Find("animChannel") : FindFromHere("animChannel");
    if (!found)
        return FailChannel("animChannel", index);
    if (!Find("animData"))
        return FailChannel("animData", index);
    if (!ReadData(index, channel))
        return false;
    Xml.LeaveTag();
    Xml.LeaveTag();
    return true;
}

bool TVoriReader::ReadData(int index, TAnimChannel& channel)
{
    const bool isEmpty = Xml.IsEmptyTag();
    const int numKeys = isEmpty ? 0 : GetCount("numKeys");
    const int keyStride = isEmpty ? 0 : GetCount("keyStride");
    if (!Find("keyValues") || !CanHold(static_cast<int64_t>(numKeys) * keyStride) || !CanHold(numKeys))
        return FailChannel("keyValues", index);
    if (!Xml.IsEmptyTag()) {
        ReadKeys(numKeys, keyStride, channel.Keys);
        LeaveValues();
    }
    if (!Xml.FindTag("keyTimes") || !CanHold(numKeys))
        return FailChannel("keyTimes", index);
    if (!Xml.IsEmptyTag()) {
        ReadTimes(numKeys, channel.Times);
        LeaveValues();
    }
    // A track has as many keys as both lists tell.
    if (channel.Keys.size() != channel.Times.size()) {
        channel.Keys.clear();
        channel.Times.clear();
    }
    return true;
}

void TVoriReader::ReadKeys(int numKeys, int keyStride, vector<TVector4>& keys)
{
    TFloatReader reader(Xml);
    keys.reserve(numKeys);
    for (int k = 0; k < numKeys; ++k) {
        TVector4 key;
        for (int c = 0; c < keyStride; ++c) {
            const float value = reader.Next();
            if (c < MaxComponents)
                key[c] = value;
        }
        keys.push_back(key);
    }
}

void TVoriReader::ReadTimes(int numKeys, vector<float>& times)
{
    TFloatReader reader(Xml);
    times.reserve(numKeys);
    for (int k = 0; k < numKeys; ++k)
        times.push_back(reader.Next());
}

void TVoriReader::LeaveValues()
{
    Xml.RewindContent();
    Xml.LeaveTag();
}

float Interpolate(float a, float b, double w)
{
    return static_cast<float>(a + (static_cast<double>(b) - a) * w);
}

// The rotation of a track's value, which linear interpolation has shortened.
TMatrix43 GetRotationMatrix(const TVector4& value)
{
    double sum = 0;
    for (int i = 0; i < 4; ++i)
        sum += static_cast<double>(value[i]) * value[i];
    TMatrix43 result;
    if (sum == 0)
        return result;
    TQuaternion rotation;
    for (int i = 0; i < 4; ++i)
        rotation[i] = static_cast<float>(value[i] / std::sqrt(sum));
    const TMatrix3 basis = rotation.GetMatrix();
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            result[r][c] = basis[r][c];
    return result;
}

float ToDegrees(float radians)
{
    return static_cast<float>(static_cast<double>(radians) / DegreesToRadians);
}

} // namespace

TVector4 TAnimChannel::Evaluate(float t) const
{
    const int last = Times.size() - 1;
    if (t <= Times[0])
        return Keys[0];
    int i = 0;
    while (i < last && !(Times[i] <= t && t < Times[i + 1]))
        ++i;
    if (i == last)
        return Keys[last];
    const double w = (static_cast<double>(t) - Times[i]) / (static_cast<double>(Times[i + 1]) - Times[i]);
    TVector4 result;
    for (int c = 0; c < MaxComponents; ++c)
        result[c] = Interpolate(Keys[i][c], Keys[i + 1][c], w);
    return result;
}

bool TAnimation::Load(const char* path)
{
    FileName = path;
    TVoriReader reader(FileName.Print());
    if (!reader.Open())
        return false;
    for (int i = 0; i < NumChannels; ++i)
        if (!reader.ReadChannel(i, Channels[i]))
            return false;
    TagFault = reader.TellTags();
    const vector<float>& times = Channels[0].Times;
    Length = times.empty() ? 0 : times.back();
    return true;
}

void TAnimation::Evaluate(float t, unsigned mask, float* out) const
{
    const TVector4 absent[NumChannels] = {TVector4(0, 0, 0, 0), TVector4(0, 0, 0, 1), TVector4(1, 1, 1, 0)};
    TVector4 values[NumChannels];
    for (int i = 0; i < NumChannels; ++i) {
        const bool used = (mask >> i & 1) != 0 && !Channels[i].Keys.empty();
        values[i] = used ? Channels[i].Evaluate(t) : absent[i];
    }
    for (int c = 0; c < 3; ++c)
        out[c] = values[CH_POSITION][c];
    TMatrix43 matrix = GetRotationMatrix(values[CH_ROTATION]);
    TMatrix43 scale;
    scale.SetScale(values[CH_SCALE][0], values[CH_SCALE][1], values[CH_SCALE][2]);
    matrix *= scale;
    float angles[3];
    matrix.GetRotation(angles[0], angles[1], angles[2]);
    for (int c = 0; c < 3; ++c)
        out[3 + c] = ToDegrees(angles[c]);
}

static TOwnerList<TAnimation>& GetCache()
{
    static TOwnerList<TAnimation> cache;
    return cache;
}

TAnimation* FindLoadedAnimation(const char* path)
{
    for (TAnimation* animation : GetCache())
        if (animation->GetFileName().Compare(path) == 0)
            return animation;
    return nullptr;
}

TAnimation* GetAnimation(const char* path)
{
    if (TAnimation* loaded = FindLoadedAnimation(path))
        return loaded;
    TOwner<TAnimation> animation(new TAnimation);
    if (!animation->Load(path))
        return nullptr;
    GetCache().push_back(animation.Release());
    return GetCache().back();
}
