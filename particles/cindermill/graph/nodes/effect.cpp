#include "particles/cindermill/graph/nodes/effect.h"

#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

namespace {

// The game reads these by their names. Switches are words, all ones for on.
void ShareParameter(TExportData& exportData, const TNodeParameter& parameter)
{
    constexpr uint32_t on = 0xFFFFFFFFu;
    TDataBlock data;
    if (parameter.Type < TY_POLYTYPE) {
        TPortValue value;
        parameter.GetValue(value.GetFloats());
        for (int c = 0; c < GetTypeFloats(parameter.Type); ++c)
            AppendFloat(data, value[c]);
    } else if (parameter.Type == PK_BOOL)
        AppendU32(data, static_cast<const TNodeBoolParameter&>(parameter).Get() ? on : 0);
    else if (parameter.Type == PK_ENUM)
        AppendU32(data, static_cast<uint32_t>(static_cast<const TNodeEnumParameter&>(parameter).GetNumber()));
    else if (parameter.Type == PK_INT)
        AppendU32(data, static_cast<uint32_t>(static_cast<const TNodeIntParameter&>(parameter).Get()));
    else if (parameter.Type == PK_GROUP)
        AppendU32(data, static_cast<const TNodeGroupParameter&>(parameter).Get() ? on : 0);
    else
        return;
    exportData.AddSharedData(parameter.Name.Print(), data.data(), data.size());
}

} // namespace

bool TEffect::Init(TErrorList&)
{
    Time = 0;
    return true;
}

void TEffect::Execute(int index, float dt)
{
    Time = static_cast<float>(static_cast<double>(Time) + dt);
    WriteOutput(0, index, TPortValue(Time));
    const int first = GetFirstUserParameter();
    for (int i = first; i < GetNodeType()->GetNumParameters(); ++i) {
        TPortValue value;
        GetNodeType()->GetParameter(i)->GetValue(value.GetFloats());
        WriteOutput(i + 1 - first, index, value);
    }
}

void TEffect::Export(TExportData& exportData, TErrorList&)
{
    ExportLifeTime(exportData);
    const int first = GetFirstUserParameter();
    for (int i = first; i < GetNodeType()->GetNumParameters(); ++i)
        ExportUserParameter(exportData, i);
    // The first parameter is the life time's switch, which the command has told.
    for (int i = 1; i < first; ++i)
        ShareParameter(exportData, *GetNodeType()->GetParameter(i));
}

void TEffect::ExportLifeTime(TExportData& exportData) const
{
    const auto* group = GetNodeType()->FindParameterOf<TNodeGroupParameter>("Max Life Time", PK_GROUP);
    ASSERT_TEXT(group != nullptr, "group != 0");
    const auto* param =
        GetNodeType()->FindParameterOf<TNodeScalarParameter>("Max Life Time.Life Time", TY_SCALAR);
    ASSERT_TEXT(param != nullptr, "param != 0");
    TDataBlock data;
    AppendFloat(data, group->Get() ? param->Get() : 0.0f);
    exportData.SetData(data);
    exportData.SetCommand("IdEffect", 0);
    exportData.AddOutput(0, 0, -1);
    const float clock = 0;
    exportData.AddGroupConstants(&clock, 1);
}

void TEffect::ExportUserParameter(TExportData& exportData, int index) const
{
    const TNodeParameter* parameter = GetNodeType()->GetParameter(index);
    TPortValue value;
    parameter->GetValue(value.GetFloats());
    const int count = GetTypeRows(parameter->GetValueType());
    TDataBlock data;
    for (int c = 0; c < count; ++c)
        AppendFloat(data, value[c]);
    exportData.SetData(data);
    exportData.AddPatch(parameter->Name.Print(), static_cast<uint32_t>(count), 0);
    exportData.SetCommand("IdConstantEmitter", 0);
    exportData.AddOutput(index + 1 - GetFirstUserParameter(), 0, -1);
}
