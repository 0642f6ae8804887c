#pragma once

#include "particles/cindermill/batch/findings/finding.h"

// What commands can find. Only what stands here can be named in a project file.
struct TFindingKind
{
    const char* Id;
    // Where nobody has judged it otherwise.
    TFindingSeverity Severity;
    // One sentence of what it means.
    const char* Description;
};

int GetNumFindingKinds();
const TFindingKind& GetFindingKind(int index);
// Null for an unknown one.
const TFindingKind* FindFindingKind(const char* id);
// The id for a kind of difference between preview and exported file: "replay.value" for "value".
const char* GetReplayFindingId(const char* difference);
