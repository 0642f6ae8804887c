#pragma once

#include "library/maths/matrix43.h"
#include "library/maths/vector4.h"

// Draws lines while it lives, with the line program bound. Points are in a frame of their own.
class TWires
{
public:
    enum TKind
    {
        // Each pair of points is a line.
        WK_LINES,
        // Each point is joined to the one before.
        WK_STRIP
    };

    // A colour whose alpha is below 1 is mixed with what is behind.
    TWires(const TVector4& colour, const TMatrix43& frame, TKind kind = WK_LINES);
    ~TWires();
    TWires(const TWires&) = delete;
    TWires& operator=(const TWires&) = delete;

    void Point(const TVector3& point);
    void Line(const TVector3& from, const TVector3& to);

    // Shapes from -1 to 1 on each axis; a grid lies in the x-z plane.
    void Grid(int xDivisions, int yDivisions);
    void Sphere();
    void Box();
    void Cylinder();

private:
    // A circle about the centre, from one axis' end to the other's.
    void Ring(const TVector3& centre, const TVector3& a, const TVector3& b);

    TMatrix43 Frame;
    bool Blended;
};
