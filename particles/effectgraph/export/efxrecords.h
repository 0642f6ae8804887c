#pragma once

#include "particles/effectgraph/export/exportresult.h"

// The records of an exported file without pointers, as bytes at the end of a block.
void AppendWords(TDataBlock& block, const vector<uint32_t>& words);
void AppendExecuteParams(TDataBlock& block, const TCommandStream& stream);
void AppendPatchTable(TDataBlock& block, const TCommandStream& stream);
void AppendPhaseHeader(TDataBlock& block, const TPhaseHeader& header);
void AppendGroupFields(TDataBlock& block, const TExportGroup& group, const TGroupRecord& record);
void AppendTransforms(TDataBlock& block, const vector<TExportTransform>& transforms);
void AppendBounds(TDataBlock& block, const vector<TExportBounds>& bounds);
void AppendTriggers(TDataBlock& block, const vector<TExportTrigger>& triggers);
void AppendEvents(TDataBlock& block, const vector<TExportEvent>& events);
void AppendRenderAttributes(TDataBlock& block, const vector<TRenderAttribute>& attributes);
void AppendStageConstants(TDataBlock& block, const vector<TStageConstant>& constants);
void AppendSharedTable(TDataBlock& block, const vector<TSharedData>& shared);
