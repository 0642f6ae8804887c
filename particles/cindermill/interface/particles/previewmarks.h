#pragma once

struct TPreviewLook;
class TDocument;
class TVector3;
class TVector4;

// What an artist may have drawn over an effect: boxes, velocities, the shapes of what emits. Bind the line
// program around it.
class TPreviewMarks
{
public:
    explicit TPreviewMarks(TDocument& document) : Document(document) {}
    void Draw(const TPreviewLook& look) const;

private:
    bool IsDrawn(const TPreviewLook& look, int group) const;
    void DrawBoxes(const TPreviewLook& look) const;
    void DrawBoxesOf(int node) const;
    void DrawVelocities(const TPreviewLook& look) const;
    void DrawVelocities(int group) const;
    void DrawEmitters() const;

    TDocument& Document;
};

// The box round all particles that are drawn, of one group or of all. False if there is none.
bool GetParticleBox(TDocument& document, int onlyGroup, TVector3& min, TVector3& max);
