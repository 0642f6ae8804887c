#pragma once

#include "library/wimp/window.h"
#include "particles/cindermill/interface/particles/particlerenderwindow.h"
#include "particles/cindermill/interface/particles/particletimeline.h"

class TDocument;

// The window in which a document's effect runs. It is the clock of the document's engine. Closing it hides
// it.
class TParticleWindow : public TWindow
{
public:
    // The document stays the caller's and outlives the window. A refusal of the window system is an
    // assertion.
    bool Create(TDocument& document);
    // One idle pass: the camera, the time, the effect.
    void Tick();
    // The engine's.
    float GetTime() const;

    bool OnMessage(const TMessage& message) override;

    TParticleRenderWindow& GetRenderWindow() { return Render; }
    TParticleTimeline& GetTimeline() { return Timeline; }

private:
    void Layout();

    TParticleRenderWindow Render;
    TParticleTimeline Timeline;
    TDocument* Doc = nullptr;
};
