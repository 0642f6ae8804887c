#include "particles/cindermill/interface/controls/texcoordparametercontrols.h"

void TNodeTexCoordParameterControls::BuildControls()
{
    constexpr double Min = -1;
    constexpr double Max = 2;
    constexpr double Step = 0.01;
    // Down the first column, then down the second.
    static constexpr const char* Labels[] = {"Left:", "Top:", "Right:", "Bottom:"};
    for (int i = 0; i < 4; ++i) {
        const TVector2 place(static_cast<float>(i / 2) * ColumnStep + LabelWidth,
                             static_cast<float>(i % 2) * TexCoordRowStep);
        AddField({Labels[i], place, LabelWidth, Min, Max, Step, true});
    }
}
