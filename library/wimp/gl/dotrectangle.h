#pragma once

// In dots from the top left; the right and lower edges are outside.
struct TDotRectangle
{
    int Min[2] = {0, 0};
    int Max[2] = {0, 0};

    bool operator==(const TDotRectangle& rhs) const = default;
    bool IsEmpty() const { return Min[0] >= Max[0] || Min[1] >= Max[1]; }
    bool Contains(const TDotRectangle& other) const
    {
        return other.Min[0] >= Min[0] && other.Min[1] >= Min[1] && other.Max[0] <= Max[0] &&
               other.Max[1] <= Max[1];
    }
    TDotRectangle Intersect(const TDotRectangle& other) const
    {
        TDotRectangle result = *this;
        for (int i = 0; i < 2; ++i) {
            result.Min[i] = other.Min[i] > Min[i] ? other.Min[i] : Min[i];
            result.Max[i] = other.Max[i] < Max[i] ? other.Max[i] : Max[i];
        }
        return result;
    }
    TDotRectangle Unite(const TDotRectangle& other) const
    {
        TDotRectangle result = *this;
        for (int i = 0; i < 2; ++i) {
            result.Min[i] = other.Min[i] < Min[i] ? other.Min[i] : Min[i];
            result.Max[i] = other.Max[i] > Max[i] ? other.Max[i] : Max[i];
        }
        return result;
    }
    // The rectangle, with so many dots for each of its own.
    TDotRectangle Enlarge(int factor) const
    {
        return TDotRectangle{{Min[0] * factor, Min[1] * factor}, {Max[0] * factor, Max[1] * factor}};
    }
};
