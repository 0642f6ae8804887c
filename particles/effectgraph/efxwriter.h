#pragma once

#include "library/system/files/blockfile.h"
#include "particles/effectgraph/exportdata.h"

// Lays a built export out as the console's memory image. All places are settled when the writer is made: the
// size of the file is known before anything is written, and so is where each command index will stand.
class TEfxWriter
{
public:
    static constexpr uint32_t Version = 6;

    // Reads `data`, which must outlive the writer.
    explicit TEfxWriter(const TExportData& data);
    int GetFileSize() const;
    // Once. False if a write failed.
    bool Save(TFile& file);

private:
    // In the order in which they follow each other in the file.
    enum TBlockKind
    {
        EB_EMISSIONEXECUTE,
        EB_EMISSIONPARAMS,
        EB_PROCESSEXECUTE,
        EB_PROCESSPARAMS,
        EB_EMISSIONUNPACK,
        EB_EMISSIONPACK,
        EB_PROCESSUNPACK,
        EB_PROCESSPACK,
        EB_EMISSIONPATCHES,
        EB_PROCESSPATCHES,
        EB_STAGES,
        EB_RENDERATTRIBUTES,
        EB_TRIGGERS,
        EB_EVENTS,
        EB_EMISSIONTRANSFORMS,
        EB_PROCESSTRANSFORMS,
        EB_BOUNDS,
        EB_NUMKINDS
    };

    struct TBlock
    {
        int Size = 0;
        // In the image.
        int Offset = 0;
        // What references to the block hold until the image is resolved; 0 for a block without content.
        uint32_t Id = 0;
    };
    struct TStageBlocks
    {
        TBlock State;
        TBlock Constants;
        TBlock Names[TRenderStageData::NumTextures];
    };
    struct TGroupBlocks
    {
        TBlock Blocks[EB_NUMKINDS];
        vector<TStageBlocks> Stages;
    };

    // Places, in file order.
    void PlaceAll();
    void PlaceGroup(const TExportGroup& group, TGroupBlocks& blocks);
    void Place(TBlock& block, int size, int alignment);
    static void GetContent(const TExportGroup& group, int kind, TDataBlock& bytes);
    static int SizeOf(const TExportGroup& group, int kind);
    int CountLocations() const;
    void ListLocations(vector<uint32_t>& result) const;

    // Contents, in file order.
    void WriteEffectHeader();
    void WriteGroupRecord(int group);
    void WritePhaseHeader(const TPhaseHeader& header, const TBlock& unpack, const TBlock& execute,
                          const TBlock& pack, const TBlock& params, const TBlock& patches, int numPatches);
    void WriteGroupBlocks(int group);
    void WriteStages(int group);
    void WriteShared();
    void WriteNames();
    void Begin(const TBlock& block, int alignment);
    void WriteData(const TDataBlock& bytes);

    const TExportData& Data;
    vector<TGroupBlocks> GroupBlocks;
    TBlock SharedTable;
    TBlock SharedBytes;
    int ImageSize = 0;
    int NumPointers = 0;
    uint32_t NextId;
    TBlockFile Image;
};
