#pragma once

#include "library/system/files/chunkfile.h"
#include "particles/effectgraph/rampparameter.h"

// What several operations have in their chunks.

bool ReadFloats(TBinaryFile& file, float* values, int count);
bool WriteFloats(TBinaryFile& file, const float* values, int count);
bool ReadPoints(TChunkFile* chunkFile, vector<TRampPoint>& points);
bool WritePoints(TChunkFile* chunkFile, const vector<TRampPoint>& points);
bool IsChannel(int channel);
