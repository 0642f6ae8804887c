#pragma once

#include "particles/cindermill/graph/operations/operationstack.h"

// What the done operations of a history remember of the states before them, as numbers, for whoever keeps a
// document together with its chunks: an effect's file does not hold it. The numbers of chunks in it are those
// of the file that would be written now.
void GetFormerStates(const TOperationStack& stack, const TChunkFile& chunks, vector<int>& numbers);

// Gives it back to a history that has come from such a file; false, and to none of its operations, where the
// numbers are not of this history.
bool SetFormerStates(TOperationStack& stack, const TChunkFile& chunks, const vector<int>& numbers);
