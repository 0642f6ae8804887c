#include "particles/cindermill/graph/nodes/animatedtexture.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

namespace {

enum TLoopMode
{
    LM_CLAMP,
    LM_LOOP,
    LM_PINGPONG
};

int GetInt(const TNodeIntParameter* parameter)
{
    return parameter != nullptr ? parameter->Get() : 0;
}

int GetNumber(const TNodeEnumParameter* parameter)
{
    return parameter != nullptr ? parameter->GetNumber() : 0;
}

float GetFraction(int64_t part, int64_t divisions)
{
    return divisions != 0 ? static_cast<float>(static_cast<double>(part) / static_cast<double>(divisions))
                          : 0.0f;
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
    int64_t frame = FloatToInt(static_cast<double>(Tiles) * (static_cast<double>(time) / Range));
    switch (Mode) {
    case LM_CLAMP:
        if (frame > Tiles - 1)
            frame = Tiles - 1;
        return frame < 0 ? 0 : frame;
    case LM_LOOP:
        return RemainderOrZero(frame, Tiles);
    case LM_PINGPONG:
        frame = RemainderOrZero(frame, 2 * Tiles - 2);
        return frame >= Tiles ? 2 * Tiles - 2 - frame : frame;
    default:
        return frame;
    }
}

void TAnimatedTexture::Execute(int index, float)
{
    const int64_t frame = ChooseFrame(LoadScalar(0, index));
    const int64_t column = RemainderOrZero(frame, Columns);
    // By the rows' number and not the columns', as the console does.
    const int64_t row = DivideOrZero(frame, Rows);
    Store(0, index,
          TPortValue(GetFraction(column, Columns), GetFraction(row, Rows), GetFraction(column + 1, Columns),
                     GetFraction(row + 1, Rows)));
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
