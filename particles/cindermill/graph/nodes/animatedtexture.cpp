#include "particles/cindermill/graph/nodes/animatedtexture.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/cindermill/graph/nodes/nodetiles.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

namespace {

int GetInt(const TNodeIntParameter* parameter)
{
    return parameter != nullptr ? parameter->Get() : 0;
}

int GetNumber(const TNodeEnumParameter* parameter)
{
    return parameter != nullptr ? parameter->GetNumber() : 0;
}

} // namespace

bool TAnimatedTexture::Init(TErrorList&)
{
    const TNodeType* type = GetNodeType();
    TimeRange = type->FindParameterOf<TNodeScalarParameter>("Time Range", TY_SCALAR);
    XDivisions = type->FindParameterOf<TNodeIntParameter>("X Divisions", PK_INT);
    YDivisions = type->FindParameterOf<TNodeIntParameter>("Y Divisions", PK_INT);
    TileCount = type->FindParameterOf<TNodeIntParameter>("Tile Count", PK_INT);
    LoopMode = type->FindParameterOf<TNodeEnumParameter>("Loop Mode", PK_ENUM);
    return true;
}

float TAnimatedTexture::GetTimeRange() const
{
    return TimeRange != nullptr ? TimeRange->Get() : 0.0f;
}

void TAnimatedTexture::BeginRun()
{
    Range = GetTimeRange();
    Columns = GetInt(XDivisions);
    Rows = GetInt(YDivisions);
    Tiles = GetInt(TileCount);
    Mode = GetNumber(LoopMode);
}

int64_t TAnimatedTexture::ChooseFrame(float time) const
{
    const int64_t frame = FloatToInt(static_cast<double>(Tiles) * (static_cast<double>(time) / Range));
    return ChooseTile(frame, Tiles, Mode);
}

void TAnimatedTexture::Execute(int index, float)
{
    const int64_t frame = ChooseFrame(LoadScalar(0, index));
    const int64_t column = RemainderOrZero(frame, Columns);
    // By the rows' number and not the columns', as the console does.
    const int64_t row = DivideOrZero(frame, Rows);
    Store(0, index,
          TPortValue(GetTileFraction(column, Columns), GetTileFraction(row, Rows),
                     GetTileFraction(column + 1, Columns), GetTileFraction(row + 1, Rows)));
}

void TAnimatedTexture::Export(TExportData& exportData, TErrorList&)
{
    TDataBlock data;
    AppendFloat(data, GetTimeRange());
    const int values[] = {GetInt(XDivisions), GetInt(YDivisions), GetInt(TileCount), GetNumber(LoopMode)};
    for (const int value : values)
        AppendU8(data, static_cast<uint32_t>(value) & 0xFF);
    exportData.SetData(data);
    exportData.SetCommand("IdAnimatedTexture", 0);
    exportData.AddInput(0, 0, -1);
    exportData.AddOutput(0, 0, -1);
}
