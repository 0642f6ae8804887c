#include "particles/cindermill/interface/controls/ramptext.h"

#include "library/containers/append.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace {

class TRampWriter
{
public:
    void Add(const char* text) { Add(text, text + std::strlen(text)); }
    void Add(float value)
    {
        char digits[32];
        const std::to_chars_result end = std::to_chars(digits, digits + sizeof(digits), value);
        Add(digits, end.ptr);
    }
    void Get(TString& text) const { text.Assign(Characters.begin(), Characters.end()); }

private:
    void Add(const char* begin, const char* end)
    {
        const int count = static_cast<int>(end - begin);
        if (count > 0)
            std::memcpy(Extend(Characters, count), begin, static_cast<size_t>(count));
    }

    vector<char> Characters;
};

class TRampReader
{
public:
    explicit TRampReader(const char* text) : At(text != nullptr ? text : ""), End(At + std::strlen(At)) {}

    bool Take(char ch)
    {
        SkipSpaces();
        if (At == End || *At != ch)
            return false;
        ++At;
        return true;
    }
    bool IsAtEnd()
    {
        SkipSpaces();
        return At == End;
    }
    bool ReadCurve(vector<TRampPoint>& points)
    {
        points.clear();
        do {
            TRampPoint point;
            if (!Take('{') || !ReadNumber(point.X) || !Take(',') || !ReadNumber(point.Y) || !Take('}'))
                return false;
            Append(points, point);
        } while (Take(','));
        return points.size() % 3 == 1;
    }

private:
    void SkipSpaces()
    {
        while (At != End && (*At == ' ' || *At == '\t' || *At == '\n' || *At == '\r'))
            ++At;
    }
    bool ReadNumber(float& value)
    {
        SkipSpaces();
        const std::from_chars_result read = std::from_chars(At, End, value);
        At = read.ptr;
        return read.ec == std::errc() && std::isfinite(value);
    }

    const char* At;
    const char* End;
};

} // namespace

void WriteRampText(const vector<TRampPoint>* curves, int count, TString& text)
{
    TRampWriter writer;
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            writer.Add("; ");
        for (int k = 0; k < curves[i].size(); ++k) {
            writer.Add(k > 0 ? ", {" : "{");
            writer.Add(curves[i][k].X);
            writer.Add(",");
            writer.Add(curves[i][k].Y);
            writer.Add("}");
        }
    }
    writer.Get(text);
}

int ReadRampText(const char* text, vector<TRampPoint>* curves, int max)
{
    TRampReader reader(text);
    vector<TRampPoint> points;
    int count = 0;
    do {
        if (!reader.ReadCurve(points))
            return -1;
        if (count < max)
            curves[count] = points;
        ++count;
    } while (reader.Take(';'));
    return reader.IsAtEnd() ? count : -1;
}
