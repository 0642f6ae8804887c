#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderobject.h"

// A text that takes no hits.
class TStatic : public TRegistered<TStatic, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TStatic";
    explicit TStatic(const char* text = "", float fontSize = 10.0f);

    void SetText(const char* text);
    const TString& GetText() const { return Text; }
    // Of the text as it is shown.
    const TVector2& GetSize() const { return Size; }
    // With a width, the text is cut there with an ellipsis. 0 for all of it.
    void SetWidth(float width);

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Describe(TAccessibleTraits& traits) override;

private:
    void Measure();

    TString Text;
    // Cut to the width.
    TString Shown;
    TFontInstance Font;
    TVector2 Size = TVector2(0, 0);
    float Width = 0.0f;
};
