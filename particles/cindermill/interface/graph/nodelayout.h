#pragma once

#include "library/maths/vector2.h"
#include "library/wimp/gl/renderfont.h"

class TNodeType;

// Where things are in the drawing of a node, in world units from the node's top left.

constexpr float NodeTitleHeight = 15.0f;
constexpr float NodeRowHeight = 15.0f;
// From the panel's edge to the labels of the ports.
constexpr float NodeLabelInset = 9.0f;
// The bypass box and the button stand in the title bar's two ends.
constexpr float NodeBoxSize = 10.0f;
constexpr float NodeBoxLeft = 4.0f;
constexpr float NodeBoxTop = 3.0f;
// From the title bar's ends to the title.
constexpr float NodeTitleInset = 16.0f;

// The fonts of titles and labels.
class TNodeFonts
{
public:
    TNodeFonts();
    const TFontInstance& GetTitle() const { return Title; }
    const TFontInstance& GetLabel() const { return Label; }

private:
    TFontInstance Title;
    TFontInstance Label;
};

// What the closed node of a type measures: its labels and its title must have room.
TVector2 MeasureNode(const TNodeType& type);
// The centre of a port in a panel of a width.
TVector2 GetPortPlace(bool isInput, int index, float width);
// The middle of a port's row.
float GetPortRow(int index);
