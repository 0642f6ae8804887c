#pragma once

#include "library/system/files/blockfile.h"
#include "particles/effectgraph/export/exportresult.h"

// Lays a built export out as the console's memory image. All blocks are made and have their positions when
// the writer is made: the size of the file is known before anything is written, and so is where each command
// index will stand.
class TEfxWriter
{
public:
    static constexpr uint32_t Version = 6;

    // Reads `data`, which must outlive the writer.
    explicit TEfxWriter(const TExportResult& data);
    TEfxWriter(const TEfxWriter&) = delete;
    TEfxWriter& operator=(const TEfxWriter&) = delete;
    int GetFileSize() const;
    // One of these, once. False if a write failed.
    bool Save(TFile& file);
    void SaveTo(vector<uint8_t>& bytes);

private:
    struct TBlock;
    // A pointer in a block: four of its bytes.
    struct TPointer
    {
        int Position = 0;
        const TBlock* Target = nullptr;
    };
    struct TBlock
    {
        TDataBlock Bytes;
        vector<TPointer> Pointers;
        int Alignment = 1;
        // In the image.
        int Offset = 0;
        // What references to the block hold until the image is resolved; 0 for a block without content.
        uint32_t Id = 0;
    };
    struct TPhaseBlocks
    {
        TBlock Unpack;
        TBlock Execute;
        TBlock Pack;
        TBlock Params;
        TBlock Patches;
        TBlock Transforms;
    };
    struct TStageBlocks
    {
        TBlock State;
        TBlock Constants;
        TBlock Names[TRenderStageData::NumTextures];
    };
    struct TGroupBlocks
    {
        TPhaseBlocks Emission;
        TPhaseBlocks Process;
        // The records of all stages, then what each of them refers to.
        TBlock StageRecords;
        vector<TStageBlocks> Stages;
        TBlock RenderAttributes;
        TBlock Triggers;
        TBlock Events;
        TBlock Bounds;
    };

    // What the blocks hold.
    static void FillPhase(TPhaseBlocks& blocks, const TExportPhase& phase);
    static void FillStage(TStageBlocks& blocks, const TRenderStageData& stage);
    static void AppendStageRecord(TBlock& records, const TStageBlocks& blocks, const TRenderStageData& stage);
    static void AppendPointer(TBlock& block, const TBlock& target);
    void FillGroup(int group);
    void FillShared();

    // Where they lie.
    void LayoutAll();
    void LayoutGroup(TGroupBlocks& blocks);
    void LayoutNames(TGroupBlocks& blocks);
    void Place(TBlock& block, int alignment);
    void AddFilled(TBlock& block, int alignment);
    int CountLocations() const;
    void ListLocations(vector<uint32_t>& result) const;

    // The image, in its order.
    void WriteImage();
    void WriteEffectHeader();
    void WriteGroupRecord(int group);
    void WritePhaseHeader(const TExportPhase& phase, const TPhaseBlocks& blocks);
    void WriteBlock(const TBlock& block);
    void WriteBytes(const TDataBlock& bytes, int begin, int end);

    const TExportResult& Data;
    vector<TGroupBlocks> Groups;
    TBlock SharedTable;
    TBlock SharedBytes;
    // In the order of the file.
    vector<const TBlock*> Order;
    int ImageSize = 0;
    int NumPointers = 0;
    uint32_t NextId;
    TBlockFile Image;
};
