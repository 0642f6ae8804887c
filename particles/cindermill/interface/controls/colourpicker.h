#pragma once

#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/interface/controls/combobox.h"
#include "particles/cindermill/interface/controls/controldrag.h"
#include "particles/cindermill/interface/controls/numberinput.h"
#include "particles/cindermill/interface/controls/pickedcolour.h"
#include "particles/cindermill/interface/controls/static.h"

class TPickerPrograms;

enum TPickerMode
{
    PM_HSL,
    PM_RGB
};

// What of a picker is dragged in.
enum TPickerArea
{
    PA_NONE,
    // Two components, across and up.
    PA_SQUARE,
    // The third, up.
    PA_STRIP,
    PA_ALPHA
};

// Chooses a colour: by its numbers, in areas that show what each place would give, as hue, saturation and
// luminance or as red, green and blue. Each change of a person sends RE_VALUECHANGED to the parent.
class TColourPicker : public TRegistered<TColourPicker, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TColourPicker";
    static constexpr float AreaTop = 12.0f;

    explicit TColourPicker(TControlHost& host);

    void Build();
    const TVector2& GetSize() const { return Size; }
    // Red, green, blue, alpha, out of range too; sends nothing.
    void SetColour(const float* rgba);
    const float* GetColour() const { return Colour.GetRgba(); }
    const float* GetHsla() const { return Colour.GetHsla(); }
    void SetMode(TPickerMode mode);
    TPickerMode GetMode() const { return Mode; }
    // Where an area lies.
    void GetArea(TPickerArea area, TVector2& min, TVector2& max) const;
    TPickerArea GetDragArea() const { return DragArea; }
    // Whose marker the arrow keys move: the last one pressed in, while the picker has the focus.
    TPickerArea GetKeyArea() const { return GetFocus() == this ? KeyArea : PA_NONE; }
    // The number of the drag that a change belongs to, another for each; 0 for none.
    int GetDrag() const { return DragArea != PA_NONE ? DragNumber : 0; }
    // Within the change that a drag's end without a choice sends: the colour is the one from before it.
    bool IsTakenBack() const { return TakenBack; }
    TComboBox& GetCombo() { return Combo; }
    TNumberInput& GetInput(int i) { return Inputs[i]; }
    // In place of those that all pickers share. They stay the caller's.
    void SetPrograms(TPickerPrograms& programs) { Programs = &programs; }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Event(const TRenderEvent& event) override;
    bool Describe(TAccessibleTraits& traits) override;
    void NamePart(const TRenderObject& part, TString& name) const override;
    bool EnterValue(const char* text) override;
    void TakeKeys(TRenderer* renderer) override;

private:
    static constexpr int NumRows = TPickedColour::NumComponents;

    enum THeading
    {
        HD_SQUARE,
        HD_STRIP,
        HD_ALPHA,
        HD_RESULT,
        HD_NUMHEADINGS
    };

    struct TPickDrag : public TControlDrag
    {
        explicit TPickDrag(TColourPicker& picker) : TControlDrag(picker), Picker(picker) {}
        void OnDrag(const TVector2& point, int keyFlags) override;
        void OnDragEnd() override;
        void OnDragCancel() override;

        TColourPicker& Picker;
    };

    void Layout();
    void ShowLabels();
    void ShowNumbers();
    TPickerArea AreaAt(const TVector2& point) const;
    bool OnPress(const TRenderEvent& event);
    bool OnKey(int key);
    void MoveMarker(int across, int up);
    void Pick(const TVector2& point);
    void SetComponent(int i, float value);
    void OnInput(int i);
    void TakeBack();
    void Notify();
    const float* GetShown() const;
    void RenderSquare(TRenderer& renderer);
    void RenderStrip(TRenderer& renderer);
    void RenderAlpha(TRenderer& renderer);
    void RenderFocus(TRenderer& renderer);
    void RenderMarkers(TRenderer& renderer);

    TControlHost& Host;
    TComboBox Combo;
    TStatic RowLabels[NumRows];
    TNumberInput Inputs[NumRows];
    TStatic Headings[HD_NUMHEADINGS];
    // Of the areas and the result, left and right.
    float Lefts[HD_NUMHEADINGS] = {};
    float Rights[HD_NUMHEADINGS] = {};
    TVector2 Size = TVector2(0, 0);
    TPickerMode Mode = PM_HSL;
    TPickedColour Colour;
    TPickedColour Before;
    TPickerArea DragArea = PA_NONE;
    TPickerArea KeyArea = PA_NONE;
    int DragNumber = 0;
    bool TakenBack = false;
    TPickDrag Drag;
    TPickerPrograms* Programs;
};
