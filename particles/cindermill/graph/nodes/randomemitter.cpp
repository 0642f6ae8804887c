#include "particles/cindermill/graph/nodes/randomemitter.h"

#include "particles/cindermill/graph/nodes/emissionmaths.h"

namespace {

TClassRandom& GetShared()
{
    static TClassRandom random;
    return random;
}

} // namespace

void TRandomEmitter::Execute(int index, float)
{
    const TPortValue low = Load(0, index);
    const TPortValue high = Load(1, index);
    TPortValue result;
    for (int c = 0; c < GetLoadFloats(0); ++c)
        result[c] = DrawBetween(ChooseRandom(GetShared(), c), low[c], high[c]);
    Store(0, index, result);
}

void TRandomEmitter::Export(TExportData& exportData, TErrorList&)
{
    const int count = GetTypeFloats(GetInputType(0));
    for (int c = 0; c < count; ++c) {
        exportData.SetCommand("IdRandomEmitter", 0);
        exportData.AddInput(0, c, 1);
        exportData.AddInput(1, c, 1);
        exportData.AddOutput(0, c, 1);
    }
    // Where a wire gives fewer components than the port has, the others are 0.
    const int rest = GetTypeFloats(GetNodeType()->GetOutputType(0)) - count;
    if (!exportData.ConvertsInput(0) || rest <= 0)
        return;
    TDataBlock zeros;
    for (int c = 0; c < rest; ++c)
        AppendFloat(zeros, 0);
    exportData.SetData(zeros);
    exportData.SetCommand("IdConstantEmitter", 0);
    exportData.AddOutput(0, count, rest);
}
