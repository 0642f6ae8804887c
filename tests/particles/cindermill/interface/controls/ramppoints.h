#pragma once

#include "particles/cindermill/interface/controls/rampcurve.h"

#include <vector>

#include <gtest/gtest.h>

// Points of ramps, as tests write them.
using TPoints = std::vector<TRampPoint>;

inline std::ostream& operator<<(std::ostream& out, const TRampPoint& point)
{
    return out << "{" << point.X << ", " << point.Y << "}";
}

inline vector<TRampPoint> ToVector(const TPoints& points)
{
    vector<TRampPoint> result;
    for (const TRampPoint& point : points)
        result.push_back(point);
    return result;
}

inline TPoints FromVector(const vector<TRampPoint>& points)
{
    return TPoints(points.begin(), points.end());
}

// One segment from 0 to 1, all of one value.
inline TPoints Flat(float value)
{
    return {{0, value}, {1.0f / 3.0f, value}, {2.0f / 3.0f, value}, {1, value}};
}

inline void ExpectPoints(const vector<TRampPoint>& points, const TPoints& wanted, float tolerance = 1e-6f)
{
    ASSERT_EQ(points.size(), static_cast<int>(wanted.size()));
    for (int i = 0; i < points.size(); ++i) {
        EXPECT_NEAR(points[i].X, wanted[i].X, tolerance) << "point " << i;
        EXPECT_NEAR(points[i].Y, wanted[i].Y, tolerance) << "point " << i;
    }
}
