#pragma once

#include "particles/cindermill/interface/graph/wireinsertion.h"

class TGraphScene;
class TNodeType;
class TRenderer;
class TVector2;

// The wire that a dragged node would go into if it was let go now. It is drawn so that one sees it.
class TWireAim
{
public:
    explicit TWireAim(TGraphScene& scene) : Scene(scene) {}

    // The wire at the point, which is as wide as so many units, if the node can go in between. The node has
    // no wires, and may be in no graph.
    void Aim(TEffectNode& node, const TVector2& point, float reach);
    // The same for a new node of the type.
    void AimType(const TNodeType& type, const TVector2& point, float reach);
    // How wide a wire is for a pointer in the view.
    static float GetReach(const TRenderer& renderer);
    void Clear();
    // An edge that goes is aimed at no more.
    void Forget(const TToolEdge* edge);
    bool IsAimed() const { return Insertion.Edge != nullptr; }
    const TInsertion& GetInsertion() const { return Insertion; }

private:
    TToolEdge* FindWire(const TEffectNode& node, const TVector2& point, float reach) const;
    void Show(bool shown);

    TGraphScene& Scene;
    TInsertion Insertion;
};

// Adds a node of the type with its middle at the point; into the wire there, if there is one that can take
// it. One step of the history.
TToolNode* DropNode(TGraphScene& scene, const TNodeType& type, const TVector2& point, float reach);
