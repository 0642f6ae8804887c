#pragma once

class TChunkFile;
class TEffectGraph;
class TOperationStack;

// Whether what the operations from `first` on made, all of them undone, is in nobody's use any more, so that
// it can be freed. For a history that came from a file, which may say anything.
bool CanFreeTail(const TOperationStack& stack, int first, const TEffectGraph& graph, TChunkFile& chunks);
