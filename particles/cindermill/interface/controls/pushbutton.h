#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderobject.h"

class TControlHost;

// A button with a text. Pressed and let go over it, it sends RE_VALUECHANGED to its parent; as a toggle it
// changes its state first.
class TPushButton : public TRegistered<TPushButton, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TPushButton";
    explicit TPushButton(TControlHost& host) : Host(host) {}

    void Build(const char* text, const TVector2& size, float fontSize = 10.0f);
    void SetText(const char* text);
    void SetToggle(bool toggle) { Toggle = toggle; }
    // Sends nothing.
    void SetPressed(bool pressed);
    bool IsPressed() const { return Pressed; }
    // Faint, and takes no presses.
    void SetEnabled(bool enabled);
    bool IsEnabled() const { return Enabled; }
    // RE_VALUECHANGED by default; the ramp's buttons send RE_NODEREFRESH.
    void SetCode(int code) { Code = code; }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;

private:
    TControlHost& Host;
    TString Text;
    TFontInstance Font;
    TVector2 Size = TVector2(0, 0);
    int Code = RE_VALUECHANGED;
    bool Toggle = false;
    bool Pressed = false;
    bool Enabled = true;
    // The button went down here and is held; it is let go over the button.
    bool Held = false;
    bool Over = false;
};
