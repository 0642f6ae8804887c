#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

// What a recovery file tells of the effect that it holds.
struct TRecoveryNote
{
    // The artist's own file; empty for an effect that was never saved.
    TString Path;
    // When it was written: seconds since the epoch, in UTC.
    int64_t Time = 0;
    // What the artist's own file held when the effect was loaded from it or saved to it; a size of -1 if that
    // is not known.
    int64_t FileSize = -1;
    uint64_t FileHash = 0;
    // What its history remembers; see GetFormerStates. Empty in the files of older programs.
    vector<int> Former;
};

// Turns the bytes of an effect file into those of a recovery file: the note stands behind the effect, where
// whoever opens effects does not look, and a checksum behind both.
void AddRecoveryNote(vector<uint8_t>& effect, const TRecoveryNote& note);
// The bytes that AddRecoveryNote adds.
int GetRecoveryNoteSize(const TRecoveryNote& note);
// False, with the reason, for a file that is not as it was written.
bool ReadRecoveryNote(const char* path, TRecoveryNote& note, TString& fault, bool* isUnread = nullptr);
