#include "particles/cindermill/interface/graph/nodelayout.h"

#include "particles/effectgraph/nodetype.h"

namespace {

constexpr const char* NodeFont = "Arial (TrueType)";
constexpr float TitleFontSize = 12.0f;
constexpr float LabelFontSize = 10.0f;
// Ports stand a little out of the panel.
constexpr float PortOverhang = 1.0f;

float GetTextWidth(const TFontInstance& font, const TString& text)
{
    TVector2 size;
    font.GetTextSize(text.Print(), size);
    return size[0];
}

float Larger(float a, float b)
{
    return a > b ? a : b;
}

} // namespace

TNodeFonts::TNodeFonts()
{
    Title.Create(NodeFont, TitleFontSize);
    Label.Create(NodeFont, LabelFontSize);
}

TVector2 MeasureNode(const TNodeType& type)
{
    const TNodeFonts fonts;
    float inputs = 0;
    float outputs = 0;
    for (int i = 0; i < type.GetNumInputs(); ++i)
        inputs = Larger(inputs, GetTextWidth(fonts.GetLabel(), type.GetInput(i)->Name));
    for (int i = 0; i < type.GetNumOutputs(); ++i)
        outputs = Larger(outputs, GetTextWidth(fonts.GetLabel(), type.GetOutput(i).Name));
    const float title = GetTextWidth(fonts.GetTitle(), type.Name);
    const int rows = type.GetNumInputs() > type.GetNumOutputs() ? type.GetNumInputs() : type.GetNumOutputs();
    const float width = static_cast<float>(double(inputs) + outputs + 2 * 5 + 50);
    const float titleWidth = static_cast<float>(double(title) + 2 * 10 + 12);
    return TVector2(Larger(width, titleWidth), static_cast<float>(double(NodeRowHeight) * rows + 10 + 5));
}

float GetPortRow(int index)
{
    return static_cast<float>(NodeTitleHeight + double(NodeRowHeight) * (index + 0.5) - 0.5);
}

TVector2 GetPortPlace(bool isInput, int index, float width)
{
    return TVector2(isInput ? -PortOverhang : width + PortOverhang, GetPortRow(index));
}
