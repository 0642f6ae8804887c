#pragma once

#include "particles/cindermill/graph/replay/commandplaces.h"
#include "particles/cindermill/graph/replay/replaycall.h"
#include "particles/effectgraph/export/efxfile.h"

// The streams of one phase of a group.
class TReplayPhase
{
public:
    void Decode(const TEfxFile& file, const TEfxPhase& phase, TCommandPlaces& places);
    // For particles that are told by their records: `From` is unpacked, `To` is packed.
    void Run(const TReplayRun& run);
    // Writes a number to where the execute stream has a patch of the name.
    void Patch(uint32_t nameId, float value);
    // By the order in which the record is packed: where each row lies.
    vector<int> GetPackedCells() const;
    const vector<TDecodedCommand>& GetExecute() const { return Execute; }

private:
    static void DecodeStream(const TEfxFile& file, const TEfxStream& stream, TCommandPlaces& places,
                             vector<TDecodedCommand>& commands);
    static void RunStream(const vector<TDecodedCommand>& commands, const TReplayRun& run,
                          const TReplayColumns& rows);

    struct TPatch
    {
        uint32_t NameId;
        // Into the image.
        uint32_t Offset;
    };

    int NumRows = 0;
    vector<TDecodedCommand> Unpack;
    vector<TDecodedCommand> Execute;
    vector<TDecodedCommand> Pack;
    vector<TPatch> Patches;
    TReplayGrid Rows;
};
