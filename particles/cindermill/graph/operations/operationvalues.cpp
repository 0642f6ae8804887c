#include "particles/cindermill/graph/operations/operationvalues.h"

bool ReadFloats(TBinaryFile& file, float* values, int count)
{
    for (int i = 0; i < count; ++i)
        if (!file.ReadFloat(values[i]))
            return false;
    return true;
}

bool WriteFloats(TBinaryFile& file, const float* values, int count)
{
    for (int i = 0; i < count; ++i)
        if (!file.WriteFloat(values[i]))
            return false;
    return true;
}

bool ReadPoints(TChunkFile* chunkFile, vector<TRampPoint>& points)
{
    uint32_t count = 0;
    if (!chunkFile->ReadCount(count, 8))
        return false;
    points.resize(static_cast<int>(count));
    for (TRampPoint& point : points)
        if (!chunkFile->File.ReadFloat(point.X) || !chunkFile->File.ReadFloat(point.Y))
            return false;
    return true;
}

bool WritePoints(TChunkFile* chunkFile, const vector<TRampPoint>& points)
{
    if (!chunkFile->File.WriteU32(static_cast<uint32_t>(points.size())))
        return false;
    for (const TRampPoint& point : points)
        if (!chunkFile->File.WriteFloat(point.X) || !chunkFile->File.WriteFloat(point.Y))
            return false;
    return true;
}

bool IsChannel(int channel)
{
    return channel >= 0 && channel < TNodeRampParameter::MaxDimensions;
}
