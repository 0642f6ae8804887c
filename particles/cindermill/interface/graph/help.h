#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderobjects.h"
#include "library/wimp/gl/renderpath.h"

// The help line: a short text near the pointer, in the view where the pointer rests.
class THelp : public TRegistered<THelp, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "THelp";
    // Shown, it stands on top of the root's objects.
    explicit THelp(TRenderObjects& root);

    // At a world point, until Hide.
    void Show(const char* text, const TVector2& point);
    // True if something was shown.
    bool Hide();
    bool IsShown() const { return Root.HasObject(this); }
    const TString& GetText() const { return Text; }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;

private:
    void Measure(float zoom);
    void BreakLines(float width);

    TRenderObjects& Root;
    TString Text;
    // The view that shows it; null for all.
    const TRenderer* View = nullptr;
    TFontInstance Font;
    float FontSize = 0.0f;
    vector<TString> Lines;
    TVector2 Size = TVector2(0, 0);
    float LineHeight = 0.0f;
    TRenderPath Box;
};
