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
constexpr float NodeBoxLeft = 3.0f;
constexpr float NodeBoxTop = 3.0f;
// What a panel is wider than its title, on each side of it.
constexpr float NodeTitleInset = 16.0f;

// The fonts of titles and labels. In a view that is zoomed out they are larger, as far as a panel has room;
// there they still look no larger than usual.
class TNodeFonts
{
public:
    TNodeFonts();
    // For the panel of a node of the type, so wide.
    void Fit(const TNodeType& type, float width);
    static bool IsFar(float zoom);
    const TFontInstance& GetTitle(float zoom = 1) const { return IsFar(zoom) ? FarTitle : Title; }
    const TFontInstance& GetLabel(float zoom = 1) const { return IsFar(zoom) ? FarLabel : Label; }

private:
    TFontInstance Title;
    TFontInstance Label;
    TFontInstance FarTitle;
    TFontInstance FarLabel;
};

// What the closed node of a type measures: its labels and its title must have room.
TVector2 MeasureNode(const TNodeType& type);
// Where the title begins that is so wide, in a panel of a width: in the middle, unless that is too close to
// what stands in the title bar's ends.
float GetTitleLeft(const TNodeType& type, float titleWidth, float width);
// The centre of a port in a panel of a width.
TVector2 GetPortOffset(bool isInput, int index, float width);
// The middle of a port's row.
float GetPortRow(int index);
// The share of its usual segments that a round outline of a node needs.
float GetNodeSmoothness(float zoom);
