#pragma once

#include "particles/cindermill/graph/replay/replaycall.h"
#include "particles/effectgraph/export/efxfile.h"

// The streams of one phase of a group.
class TReplayPhase
{
public:
    void Decode(const TEfxFile& file, const TEfxPhase& phase);
    // For particles that are told by their records: `from` is unpacked, `to` is packed.
    void Run(const vector<TReplayRecord*>& from, const vector<TReplayRecord*>& to, float dt,
             TReplayListener& listener);
    // Writes a number to where the execute stream has a patch of the name.
    void Patch(uint32_t nameId, float value);
    // By the order in which the record is packed: where each row lies.
    vector<int> GetPackedCells() const;

private:
    static void DecodeStream(const TEfxFile& file, const TEfxStream& stream,
                             vector<TReplayCommand>& commands);
    static void RunStream(const vector<TReplayCommand>& commands, TReplayColumns& columns,
                          const vector<TReplayRecord*>& records, float dt, TReplayListener& listener);

    struct TPatch
    {
        uint32_t NameId;
        // Into the image.
        uint32_t Offset;
    };

    int NumRows = 0;
    vector<TReplayCommand> Unpack;
    vector<TReplayCommand> Execute;
    vector<TReplayCommand> Pack;
    vector<TPatch> Patches;
};
