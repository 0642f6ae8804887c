#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/wimp/gl/renderfont.h"
#include "particles/cindermill/interface/controls/clickable.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

// A button with a text. Pressed and let go over it, it sends RE_VALUECHANGED to its parent; as a toggle it
// changes its state first.
class TPushButton : public TRegistered<TPushButton, TClickable>
{
public:
    static constexpr const char* RegisteredName = "TPushButton";
    explicit TPushButton(TControlHost& host) : TRegistered(host) {}

    void Build(const char* text, const TVector2& size, float fontSize = 10.0f);
    void SetText(const char* text);
    const TString& GetText() const { return Text; }
    void SetToggle(bool toggle) { Toggle = toggle; }
    // Sends nothing.
    void SetPressed(bool pressed);
    bool IsPressed() const { return Pressed; }
    // RE_VALUECHANGED by default; the ramp's buttons send RE_NODEREFRESH.
    void SetCode(int code) { Code = code; }

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
    int Code = RE_VALUECHANGED;
    bool Toggle = false;
    bool Pressed = false;
};
