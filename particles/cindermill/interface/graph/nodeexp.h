#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/ownerlist.h"
#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/interface/graph/nodepanel.h"
#include "particles/cindermill/interface/graph/port.h"

class TNodeParameterControls;

// The parts of an open node that take clicks.
enum TNodeExpRegion
{
    XR_NONE = -1,
    XR_CLOSE = 0,
    XR_GRIP = 1,
    XR_BODY = 2
};

// The drawing of an open node: the closed one's, and below the ports a panel with the controls of its
// parameters. By itself, without a node, it shows what a node of a type will look like.
class TNodeExp : public TRegistered<TNodeExp, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TNodeExp";
    static constexpr int NumPaths = 39;

    TNodeExp();
    ~TNodeExp() override;

    // A picture of a type, for a drag from the palette; as large as a closed new node. It is drawn at its
    // Origin, and takes no hits.
    void BuildFor(const TNodeType& type);
    TVector2 GetSize() const { return Panel.GetSize(); }

    // For a node; the size is the closed one's, and grows by what the panel needs.
    void Build(const TNodeType& type, const TVector2& closedSize);
    // Takes ownership. The port is that of the input whose value the controls edit, or -1.
    void AddControls(TNodeParameterControls* controls, int inputPort);
    void DeleteControls();
    int GetNumControls() const { return Controls.size(); }
    TNodeParameterControls& GetControls(int i) const { return *Controls[i].Object; }
    int GetControlsPort(int i) const { return Controls[i].Port; }
    bool IsControlsVisible(int i) const { return Controls[i].Visible; }
    // True if that changed anything; the layout is then to be done anew.
    bool ShowControls(int i, bool visible);
    bool HasVisibleControls() const;

    void SetVisualState(int code) { Panel.SetVisualState(code); }
    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    // The controls only.
    TRenderObject* HitTest(const TVector2& point) override;
    bool IsFieldPanel() const override { return true; }
    int GetRegion(const TVector2& point) const;
    // How far the close button stands from its place: it stays in a view that the panel reaches out of on the
    // right.
    float GetButtonShift(const TRenderer& view) const;
    bool HitsButton(const TVector2& point, const TRenderer* view) const;
    TNodePanel& GetPanel() { return Panel; }

private:
    struct TControls
    {
        TNodeParameterControls* Object = nullptr;
        int Port = -1;
        bool Visible = true;
    };

    // Puts the visible controls below each other; returns the room that they take.
    TVector2 LayoutControls(float top);

    TNodePanel Panel;
    // Of each group of controls.
    vector<TControls> Controls;
    TOwnerList<TNodeParameterControls> Owned;
    // Of a picture.
    TOwnerList<TPort> Ports;
};
