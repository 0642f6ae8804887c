#pragma once

#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/renderpath.h"

class TGraphScene;
class TPort;
class TToolNode;
class TWireDraft;

// The ports of the graph under the keys. With the focus one port is marked, of the node that was selected
// last: the arrows lead on to its others and along wires to those of other nodes, which are selected then.
// Return takes up a wire there, which the arrows lead to what can take it. The walk ends as soon as something
// else has the focus or is selected, or the node goes; a wire on its way ends with any change of the graph.
class TPortWalk : public TRenderObject
{
public:
    explicit TPortWalk(TGraphScene& scene) : Scene(scene) {}

    // Begins at the node's first port, in the view of the renderer. False for a node without ports.
    bool Enter(TToolNode& node, TRenderer& renderer);
    void EnterAt(TPort& port, TRenderer& renderer);
    bool IsOn() const { return Node != nullptr && GetFocus() == this; }
    bool IsWiring() const { return Wiring; }
    // The port that has the keys: where the wire would end that is on its way, or else where the walk is.
    // Null for none.
    TPort* GetMarked() const;
    // As Return with the port marked: takes up a wire there, or lets the one that is on its way end there.
    // Does nothing to a wire that the port does not take but tell why.
    void Press(TPort& port);
    // The focus goes back to the graph.
    void Leave();
    // Gives up the wire that is on its way. False if none is.
    bool DropWire();

    // Of the document: what is selected has changed, a node has left the graph.
    void OnSelection();
    void OnNodeGone(const TToolNode& node);

    // The outline of the marked port, in the view that has the keys. The canvas draws it over all others.
    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Event(const TRenderEvent& event) override;

private:
    TWireDraft& GetDraft() const;
    TPort* GetPort() const;
    bool OnKey(int key);
    void OnFocusLost();
    void OnEscape();
    void MoveTo(TPort& port);
    void Show();
    void WalkPorts(int key);
    void WalkSide(int index);
    void WalkAcross(bool toInputs);
    void WalkBranches(int direction);
    void WalkTargets(int key);
    void BeginWire(TPort& port);
    void AimAt(TPort* port);
    void FinishWire();
    void TakeWireOff();
    void Search();

    TGraphScene& Scene;
    TToolNode* Node = nullptr;
    bool Input = true;
    int Index = 0;
    // The canvas's draft is the walk's.
    bool Wiring = false;
    TRenderPath Ring;
};
