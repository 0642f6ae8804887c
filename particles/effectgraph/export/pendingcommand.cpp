#include "particles/effectgraph/export/pendingcommand.h"

#include "library/containers/nametocrc.h"
#include "particles/effectgraph/export/exportfield.h"

namespace {
// A transform in the data that the phase's Execute stream was told last.
void AddTransform(TExportPhase& phase, int type, int offset)
{
    TExportTransform transform;
    transform.Name.Format("transform %d", phase.Transforms.size());
    transform.Type = ToWordField(type, "transform type");
    phase.Transforms.push_back(transform);
    phase.Execute.AddPatch(
        TCommandPatch{NameToCrc(transform.Name.Print()), 0, static_cast<uint32_t>(offset)});
}
} // namespace

void TPendingCommand::SetData(const void* data, int size)
{
    ASSERT_TEXT(!DataSet, "LastData == 0");
    Data.clear();
    AppendBytes(Data, data, size);
    DataSet = true;
}

void TPendingCommand::SetCommand(const char* name, int workspace)
{
    Name = NameToCrc(name);
    Workspace = workspace;
    CommandSet = true;
}

bool TPendingCommand::ReplaceOutputRow(uint32_t row, uint32_t by)
{
    const int i = OutputRows.index_of(row);
    if (!CommandSet || i == -1)
        return false;
    OutputRows[i] = by;
    return true;
}

void TPendingCommand::AddConstant(uint32_t row, float value)
{
    ConstantRows.push_back(row);
    Constants.push_back(value);
}

void TPendingCommand::AddPatch(const char* name, uint32_t type, uint32_t offset)
{
    Patches.push_back(TCommandPatch{NameToCrc(name), type, offset});
}

void TPendingCommand::AddDataTransform(int type, int offset)
{
    DataTransforms.push_back(TTransform{type, offset});
}

void TPendingCommand::AddConstantTransform(int type)
{
    ConstantTransforms.push_back(TTransform{type, Constants.size() * 4});
}

bool TPendingCommand::IsEmpty() const
{
    return !DataSet && !CommandSet && InputRows.empty() && OutputRows.empty() && Constants.empty() &&
           DataTransforms.empty() && ConstantTransforms.empty() && Patches.empty();
}

void TPendingCommand::Flush(TExportPhase& phase, TRowMaker& maker)
{
    FlushConstants(phase);
    maker.Flush(phase.Execute);
    FlushCommand(phase);
    *this = TPendingCommand();
}

void TPendingCommand::FlushConstants(TExportPhase& phase) const
{
    if (Constants.empty())
        return;
    TDataBlock block;
    for (const float value : Constants)
        AppendFloat(block, value);
    phase.Execute.AddData(block);
    for (const TTransform& transform : ConstantTransforms)
        AddTransform(phase, transform.Type, transform.Offset);
    phase.Execute.AddCommand(NameToCrc("IdConstantEmitter"), 0, ConstantRows.size(), 0);
    phase.Execute.AddOutputRows(ConstantRows);
}

void TPendingCommand::FlushCommand(TExportPhase& phase) const
{
    if (!CommandSet)
        return;
    // Without data of its own the patches would fall on the command before.
    ASSERT_TEXT(DataSet || (DataTransforms.empty() && Patches.empty()),
                "!Commands.empty() && Commands.back().Data != 0");
    if (DataSet)
        phase.Execute.AddData(Data);
    for (const TTransform& transform : DataTransforms)
        AddTransform(phase, transform.Type, transform.Offset);
    for (const TCommandPatch& patch : Patches)
        phase.Execute.AddPatch(patch);
    phase.Execute.AddCommand(Name, InputRows.size(), OutputRows.size(), static_cast<uint32_t>(Workspace));
    phase.Execute.AddInputRows(InputRows);
    phase.Execute.AddOutputRows(OutputRows);
}
