#pragma once

#include "particles/cindermill/interface/graph/tooledgerenderer.h"

class TDocument;
class TGraphScene;
class TPort;
class TToolEdge;

// What a wire that was on its way comes to: from a port to another, new or one that was there already.
struct TWireEnds
{
    const TPort* From = nullptr;
    // Null for nowhere.
    const TPort* To = nullptr;
    TToolEdge* Picked = nullptr;
};

// A wire on its way from a port to another, whatever leads it: the ports that can take it are marked, and a
// rubber wire runs to where it is aimed at.
class TWireDraft
{
public:
    explicit TWireDraft(TGraphScene& scene);

    // From an input that is wired, it is the wire there that is taken up by its end.
    void Begin(TPort& port);
    // The end snaps to the port, if there is one that can take it.
    void Aim(const TVector2& point, TPort* port);
    // All is as before.
    void End();
    bool IsOn() const { return From != nullptr; }
    // The fixed end.
    TPort* GetFrom() const { return From; }
    TPort* GetAim() const { return AimedAt; }
    TWireEnds GetEnds() const { return TWireEnds{From, AimedAt, Picked}; }
    const TToolEdgeRenderer& GetRubber() const { return Rubber; }

private:
    void MarkPorts(bool on);

    TGraphScene& Scene;
    TPort* From = nullptr;
    // The edge if there was one before.
    TToolEdge* Picked = nullptr;
    TPort* AimedAt = nullptr;
    TToolEdgeRenderer Rubber;
};

// Makes the edge, or moves the one that was taken up. In one step; what stands at the input is replaced.
void ConnectPorts(TDocument& document, const TWireEnds& ends);
// Says in the status bar why no wire can run between the two.
void TellWireRefusal(TGraphScene& scene, const TPort& from, const TPort& to);
