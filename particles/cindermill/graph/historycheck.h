#pragma once

class TChunkFile;
class TEffectGraph;
class TOperationStack;

// Whether what the redoable tail of a history made is in nobody's use any more, so that it can be freed. For
// a history that came from a file, which may say anything.
bool CanFreeTail(const TOperationStack& stack, const TEffectGraph& graph, TChunkFile& chunks);
