#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/wimp/gl/renderfont.h"
#include "particles/cindermill/interface/controls/clickable.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

// A check box with its text at the right. A click, or the space key with the focus, changes it and sends
// RE_VALUECHANGED to its parent.
class TTickBox : public TRegistered<TTickBox, TClickable>
{
public:
    static constexpr const char* RegisteredName = "TTickBox";
    static constexpr float BoxSize = 12.0f;
    explicit TTickBox(TControlHost& host) : TRegistered(host) {}

    void Build(const char* text, float fontSize = 10.0f);
    // Sends nothing.
    void SetChecked(bool checked);
    bool IsChecked() const { return Checked; }
    const TVector2& GetSize() const { return Size; }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Describe(TAccessibleTraits& traits) override;

protected:
    void OnClick() override;

private:
    TString Text;
    TFontInstance Font;
    TControlBox Box;
    TVector2 Size = TVector2(0, 0);
    bool Checked = false;
};
