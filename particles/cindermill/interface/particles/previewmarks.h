#pragma once

#include "library/maths/vector4.h"

struct TPreviewLook;
class TDocument;
class TVector3;

// What an artist may have drawn over an effect: boxes, velocities, the shapes of what emits. Bind the line
// program around it. All of it is seen before what is behind the effect.
class TPreviewMarks
{
public:
    TPreviewMarks(TDocument& document, const TVector4& behind) : Document(document), Behind(behind) {}
    void Draw(const TPreviewLook& look) const;

private:
    bool IsDrawn(const TPreviewLook& look, int group) const;
    void DrawBoxes(const TPreviewLook& look) const;
    void DrawBoxesOf(int node) const;
    void DrawVelocities(const TPreviewLook& look) const;
    void DrawVelocities(int group) const;
    void DrawEmitters() const;
    void DrawBox(const TVector4& colour, const TVector3& min, const TVector3& max) const;

    TDocument& Document;
    TVector4 Behind;
};

// The box round all particles that are drawn, of one group or of all. False if there is none.
bool GetParticleBox(TDocument& document, int onlyGroup, TVector3& min, TVector3& max);
