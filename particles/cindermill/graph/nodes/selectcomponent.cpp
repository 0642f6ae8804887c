#include "particles/cindermill/graph/nodes/selectcomponent.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

#include <cmath>

namespace {

enum TSelectable
{
    SC_X,
    SC_Y,
    SC_Z,
    SC_LENGTH,
    SC_INVERSELENGTH
};

float Select(int component, const TVector3& v)
{
    const float length = static_cast<float>(std::sqrt(ExactDot(v, v)));
    switch (component) {
    case SC_X:
    case SC_Y:
    case SC_Z:
        return v[component];
    case SC_LENGTH:
        return length;
    case SC_INVERSELENGTH:
        return length > 0.001 ? static_cast<float>(1.0 / length) : length;
    default:
        return 0;
    }
}

} // namespace

bool TSelectComponent::Init(TErrorList& errors)
{
    Component = RequireParameter<TNodeEnumParameter>("Component", PK_ENUM, errors);
    return Component != nullptr;
}

void TSelectComponent::Execute(int index, float)
{
    Store(0, index, TPortValue(Select(Selected, LoadVector(0, index))));
}

void TSelectComponent::Export(TExportData& exportData, TErrorList&)
{
    const int component = Component->GetNumber();
    if (component >= SC_X && component <= SC_Z) {
        exportData.PassThrough(0, 0, component, 1, 0);
        return;
    }
    if (component != SC_LENGTH && component != SC_INVERSELENGTH)
        return;
    TDataBlock data;
    AppendU32(data, component == SC_INVERSELENGTH ? 1 : 0);
    exportData.SetData(data);
    exportData.SetCommand("IdLength", 0);
    exportData.AddInput(0, 0, 3);
    exportData.AddOutput(0, 0, -1);
}
