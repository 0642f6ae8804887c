#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/interface/controls/pushbutton.h"
#include "particles/cindermill/interface/controls/valueparametercontrols.h"

// Position and rotation. Closed, the row shows the position; open, tabs choose what stands below it. A
// transform has no scale: that tab shows ones.
class TNodeTransformParameterControls
    : public TRegistered<TNodeTransformParameterControls, TValueParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeTransformParameterControls";
    enum TTab
    {
        TT_TRANSLATE,
        TT_ROTATE,
        TT_SCALE,
        TT_NUMTABS
    };

    void Refresh() override;
    void NamePart(const TRenderObject& part, TString& name) const override;
    // What is open is neither saved nor an operation.
    void SetOpen(bool open);
    bool IsOpen() const { return Open; }
    void ShowTab(int tab);
    int GetTab() const { return Tab; }
    TPushButton& GetFoldButton() { return *Fold; }
    TPushButton& GetTabButton(int tab) { return *Tabs[tab]; }

protected:
    void BuildControls() override;
    void OnChildChanged(const TRenderEvent& event) override;
    float GetLabelHeight() const override { return RowHeight; }

private:
    void Layout();

    TOwner<TPushButton> Fold;
    TOwner<TPushButton> Tabs[TT_NUMTABS];
    bool Open = false;
    int Tab = TT_TRANSLATE;
};
