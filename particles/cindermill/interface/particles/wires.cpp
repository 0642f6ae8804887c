#include "particles/cindermill/interface/particles/wires.h"

#include <GL/glew.h>

#include <cmath>
#include <cstdint>

namespace {

constexpr int RingSteps = 50;
// Of a sphere: parallels and meridians, ten in all.
constexpr int NumParallels = 5;
constexpr int NumMeridians = 5;
// More lines than this are as good as a filled square: then some of them stand for all.
constexpr int MaxDivisions = 1000;
constexpr double Pi = 3.14159265358979323846;

int CountDrawn(int divisions)
{
    return divisions < MaxDivisions ? divisions : MaxDivisions;
}

// Of the drawn lines, from -1 to 1.
float PlaceOfLine(int i, int divisions)
{
    const int drawn = CountDrawn(divisions);
    if (drawn == 0)
        return -1;
    const int64_t line = int64_t{i} * divisions / drawn;
    return static_cast<float>(static_cast<double>(line) * (2.0 / divisions) - 1.0);
}

} // namespace

TWires::TWires(const TVector4& colour, const TMatrix43& frame, TKind kind)
    : Frame(frame), Blended(colour[3] < 1)
{
    if (Blended) {
        glEnable(GL_BLEND);
        glBlendEquation(GL_FUNC_ADD);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }
    glColor4fv(colour.Component);
    glBegin(kind == WK_STRIP ? GL_LINE_STRIP : GL_LINES);
}

TWires::~TWires()
{
    glEnd();
    if (Blended)
        glDisable(GL_BLEND);
}

void TWires::Point(const TVector3& point)
{
    glVertex3fv(Frame.TransformPoint(point).Component);
}

void TWires::Line(const TVector3& from, const TVector3& to)
{
    Point(from);
    Point(to);
}

void TWires::Grid(int xDivisions, int yDivisions)
{
    for (int i = 0; i <= CountDrawn(xDivisions); ++i) {
        const float x = PlaceOfLine(i, xDivisions);
        Line(TVector3(x, 0, -1), TVector3(x, 0, 1));
    }
    for (int i = 0; i <= CountDrawn(yDivisions); ++i) {
        const float z = PlaceOfLine(i, yDivisions);
        Line(TVector3(-1, 0, z), TVector3(1, 0, z));
    }
}

void TWires::Ring(const TVector3& centre, const TVector3& a, const TVector3& b)
{
    TVector3 last = centre + a;
    for (int i = 1; i <= RingSteps; ++i) {
        const double angle = 2 * Pi * i / RingSteps;
        const TVector3 next =
            centre + a * static_cast<float>(std::cos(angle)) + b * static_cast<float>(std::sin(angle));
        Line(last, next);
        last = next;
    }
}

void TWires::Sphere()
{
    for (int i = 0; i < NumParallels; ++i) {
        const double latitude = Pi * (i + 1) / (NumParallels + 1) - Pi / 2;
        const float radius = static_cast<float>(std::cos(latitude));
        Ring(TVector3(0, static_cast<float>(std::sin(latitude)), 0), TVector3(radius, 0, 0),
             TVector3(0, 0, radius));
    }
    for (int i = 0; i < NumMeridians; ++i) {
        const double longitude = Pi * i / NumMeridians;
        Ring(TVector3(0, 0, 0),
             TVector3(static_cast<float>(std::cos(longitude)), 0, static_cast<float>(std::sin(longitude))),
             TVector3(0, 1, 0));
    }
}

void TWires::Box()
{
    for (int corner = 0; corner < 8; ++corner) {
        const TVector3 from((corner & 1) != 0 ? 1.0f : -1.0f, (corner & 2) != 0 ? 1.0f : -1.0f,
                            (corner & 4) != 0 ? 1.0f : -1.0f);
        for (int axis = 0; axis < 3; ++axis) {
            if (from[axis] > 0)
                continue;
            TVector3 to = from;
            to[axis] = 1;
            Line(from, to);
        }
    }
}

void TWires::Cylinder()
{
    constexpr int numSides = 10;
    for (float y = -1; y <= 1; ++y)
        Ring(TVector3(0, y, 0), TVector3(1, 0, 0), TVector3(0, 0, 1));
    for (int i = 0; i < numSides; ++i) {
        const double angle = 2 * Pi * i / numSides;
        const float x = static_cast<float>(std::cos(angle));
        const float z = static_cast<float>(std::sin(angle));
        Line(TVector3(x, -1, z), TVector3(x, 1, z));
    }
}
