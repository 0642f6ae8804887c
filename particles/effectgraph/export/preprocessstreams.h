#pragma once

#include "particles/effectgraph/export/commandstream.h"

// Tidies the three streams of one phase of one group, gives their rows machine rows, and logs how they are
// used. The result is the number of machine rows that the phase needs; where there are not so many, an
// assertion names the phase and the group.
int PreprocessStreams(TCommandStream& unpack, TCommandStream& execute, TCommandStream& pack,
                      const char* phase, int group);

// Merges each constant emitter with the later ones that may run in its place.
void MergeConstantEmitters(TCommandStream& execute);

// Moves each prune behind the last command that it may follow: up to the next writer of the value that it
// tests.
void PostponePrunes(TCommandStream& execute);
