#pragma once

#include "window/panelhand.h"

#include "particles/cindermill/interface/controls/colourpicker.h"

// A colour in an open panel, used by hand and by operations alike. Keeps hue and saturation as the picker
// does where the colour does not tell them.
class TPickerHand
{
public:
    // Folds the picker open.
    TPickerHand(TPanelHand& panel, const char* name);
    // Closes it.
    void Fold();

    TColourPicker& Picker();
    void ChooseMode(TPickerMode mode);
    // Drags from an area's middle.
    void Drag(TPickerArea area, int dx, int dy);
    void Enter(int component, const char* text);
    void ClickArrow(int component, bool up);
    // Farther than there are steps: the number stays at 0.
    void DragArrowToTheEnd(int component);

private:
    void Set(int component, float value);
    void Apply();

    TPanelHand& Panel;
    const char* Name;
    TPickedColour Colour;
};
