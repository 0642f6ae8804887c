#include "particles/cindermill/interface/controls/vectorparametercontrols.h"

#include "particles/effectgraph/valueparameters.h"

void TVectorParameterControls::BuildControls()
{
    static constexpr const char* Letters[] = {"X", "Y", "Z"};
    constexpr double Limit = TNumberInput::FloatLimit;
    constexpr double Step = 0.1;
    const int count = GetValueParameter().GetNumFloats();
    if (count == 1) {
        AddField({nullptr, TVector2(0, 0), 0, -Limit, Limit, Step, true});
        return;
    }
    for (int i = 0; i < count; ++i)
        AddField({Letters[i], TVector2(static_cast<float>(i) * ColumnStep + LetterWidth, 0), LetterWidth,
                  -Limit, Limit, Step, true});
}
