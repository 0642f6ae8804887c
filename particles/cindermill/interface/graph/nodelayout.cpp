#include "particles/cindermill/interface/graph/nodelayout.h"

#include "particles/cindermill/interface/controls/controlpaint.h"
#include "particles/effectgraph/nodetype.h"

#include <algorithm>

namespace {

constexpr float TitleFontSize = 12.0f;
constexpr float LabelFontSize = 10.0f;
// What is tried in views that are zoomed out.
constexpr float FarTitleSizes[] = {15, 14, 13};
constexpr float FarLabelSizes[] = {13, 12, 11};
// Between texts that stand beside each other, and what stands beside them, zoomed out.
constexpr float FarSpace = 3.0f;
// Between the title and what stands beside it, if there is room.
constexpr float TitleSpace = 5.0f;
// Ports stand a little out of the panel.
constexpr float PortOverhang = 1.0f;

float GetTextWidth(const TFontInstance& font, const TString& text)
{
    TVector2 size;
    font.GetTextSize(text.Print(), size);
    return size[0];
}

bool HasTitleRoom(const TNodeType& type, const TFontInstance& font, float width)
{
    constexpr float BoxEnd = NodeBoxLeft + NodeBoxSize;
    const float first = type.HasFlag(FL_BYPASSABLE) ? BoxEnd : NodeBoxLeft;
    return first + GetTextWidth(font, type.Name) + 2 * FarSpace <= width - BoxEnd;
}

bool HaveLabelsRoom(const TNodeType& type, const TFontInstance& font, float width)
{
    for (int i = 0; i < type.GetNumInputs() || i < type.GetNumOutputs(); ++i) {
        const float input = i < type.GetNumInputs() ? GetTextWidth(font, type.GetInput(i)->Name) : 0;
        const float output = i < type.GetNumOutputs() ? GetTextWidth(font, type.GetOutput(i).Name) : 0;
        if (input + output + 2 * NodeLabelInset + 2 * FarSpace > width)
            return false;
    }
    return true;
}

} // namespace

TNodeFonts::TNodeFonts()
{
    Title.Create(ControlFont, TitleFontSize);
    Label.Create(ControlFont, LabelFontSize);
    FarTitle = Title;
    FarLabel = Label;
}

bool TNodeFonts::IsFar(float zoom)
{
    return zoom < FarZoom;
}

void TNodeFonts::Fit(const TNodeType& type, float width)
{
    FarTitle = Title;
    FarLabel = Label;
    for (const float size : FarTitleSizes) {
        TFontInstance font;
        if (!font.Create(ControlFont, size) || !HasTitleRoom(type, font, width))
            continue;
        FarTitle = font;
        break;
    }
    for (const float size : FarLabelSizes) {
        TFontInstance font;
        if (!font.Create(ControlFont, size) || !HaveLabelsRoom(type, font, width))
            continue;
        FarLabel = font;
        break;
    }
}

TVector2 MeasureNode(const TNodeType& type)
{
    const TNodeFonts fonts;
    float inputs = 0;
    float outputs = 0;
    for (int i = 0; i < type.GetNumInputs(); ++i)
        inputs = std::max(inputs, GetTextWidth(fonts.GetLabel(), type.GetInput(i)->Name));
    for (int i = 0; i < type.GetNumOutputs(); ++i)
        outputs = std::max(outputs, GetTextWidth(fonts.GetLabel(), type.GetOutput(i).Name));
    const float title = GetTextWidth(fonts.GetTitle(), type.Name);
    const int rows = type.GetNumInputs() > type.GetNumOutputs() ? type.GetNumInputs() : type.GetNumOutputs();
    const float width = static_cast<float>(double(inputs) + outputs + 2 * 5 + 50);
    const float titleWidth = static_cast<float>(double(title) + 2.0 * NodeTitleInset);
    return TVector2(std::max(width, titleWidth), static_cast<float>(double(NodeRowHeight) * rows + 10 + 5));
}

float GetTitleLeft(const TNodeType& type, float titleWidth, float width)
{
    const float boxEnd = NodeBoxLeft + NodeBoxSize;
    const float first = (type.HasFlag(FL_BYPASSABLE) ? boxEnd : NodeBoxLeft) + TitleSpace;
    const float last = width - boxEnd - TitleSpace - titleWidth;
    const float middle = (width - titleWidth) * 0.5f;
    if (first > last)
        return (first + last) * 0.5f;
    return middle < first ? first : middle > last ? last : middle;
}

float GetPortRow(int index)
{
    return static_cast<float>(NodeTitleHeight + double(NodeRowHeight) * (index + 0.5) - 0.5);
}

TVector2 GetPortOffset(bool isInput, int index, float width)
{
    return TVector2(isInput ? -PortOverhang : width + PortOverhang, GetPortRow(index));
}

float GetNodeSmoothness(float zoom)
{
    constexpr float FarShare = 0.5f;
    return TNodeFonts::IsFar(zoom) ? FarShare : 1;
}
