#pragma once

#include "library/wimp/gl/renderobject.h"
#include "particles/cindermill/interface/graph/nodepanel.h"

// The parts of a closed node that take clicks.
enum TNodeRegion
{
    NR_NONE = -1,
    NR_BODY = 0,
    NR_GRIP = 1,
    NR_BUTTON = 2
};

// The drawing of a closed node: title bar with the button that opens it, ports' labels, size grip.
class TNode : public TRenderObject
{
public:
    static constexpr int NumPaths = 25;

    void Build(const TNodeType& type, const TVector2& size);
    void SetVisualState(int code) { Panel.SetVisualState(code); }
    void Render(TRenderer& renderer) override { Panel.Render(renderer); }
    void GetBounds(TVector2& min, TVector2& max) override;
    // The point is relative to the node's position.
    int GetRegion(const TVector2& point) const;
    TVector2 GetSize() const { return Panel.GetSize(); }
    TNodePanel& GetPanel() { return Panel; }

private:
    TNodePanel Panel;
};
