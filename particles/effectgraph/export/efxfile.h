#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

// A stretch of the image of an exported file.
struct TEfxSpan
{
    uint32_t Offset = 0;
    uint32_t Size = 0;
    uint32_t GetEnd() const { return Offset + Size; }
};

struct TEfxCommand
{
    // Into the command table.
    int Index = 0;
    TEfxSpan Data;
    // One byte for each machine row.
    TEfxSpan Inputs;
    TEfxSpan Outputs;
};

struct TEfxStream
{
    TEfxSpan Words;
    vector<TEfxCommand> Commands;
};

struct TEfxPatch
{
    uint32_t NameId = 0;
    int Type = 0;
    // 16-bit offsets into the words of the execute stream.
    TEfxSpan Offsets;
};

struct TEfxPhase
{
    int Rows = 0;
    int InputBuffers = 0;
    int OutputBuffers = 0;
    int ProgramKilobytes = 0;
    int WorkspaceKilobytes = 0;
    TEfxStream Unpack;
    TEfxStream Execute;
    TEfxStream Pack;
    TEfxSpan Params;
    vector<TEfxPatch> Patches;
    TEfxSpan Transforms;
};

struct TEfxStage
{
    static constexpr int NumTextures = 2;

    int CommandIndex = 0;
    TEfxSpan State;
    TEfxSpan Constants;
    // With the terminating zero; empty for none.
    TEfxSpan Textures[NumTextures];
};

struct TEfxGroup
{
    TEfxPhase Emission;
    TEfxPhase Process;
    int ParticleCount = 0;
    int Stride = 0;
    int EventSize = 0;
    int MaxEmission = 0;
    float MaxLifeTime = 0;
    bool IsTriggerGroup = false;
    vector<TEfxStage> Stages;
    TEfxSpan RenderAttributes;
    TEfxSpan Triggers;
    TEfxSpan Events;
    TEfxSpan Bounds;
};

// An exported file, taken apart. Nothing in it is believed before it was held against what is there: blocks
// stand in the writer's order and do not overlap, each pointer is relocated, each command is found by its
// location.
class TEfxFile
{
public:
    // Bytes of the records in the blocks.
    static constexpr uint32_t ParamSize = 32;
    static constexpr uint32_t StageConstantSize = 20;
    static constexpr uint32_t RenderAttributeSize = 8;
    static constexpr uint32_t ListEntrySize = 4;
    static constexpr uint32_t BoundsSize = 32;
    static constexpr uint32_t SharedEntrySize = 8;

    // Once. False with a sentence in `fault` if the file is not a whole and sound one.
    bool Load(const char* path, TString& fault);
    // The same from the bytes of a file.
    bool LoadBytes(const vector<uint8_t>& bytes, TString& fault);

    uint32_t GetImageSize() const { return static_cast<uint32_t>(Image.size()); }
    int GetNumRelocations() const { return Relocations.size(); }
    int GetNumLocations() const { return Locations.size(); }
    const vector<uint32_t>& GetCommandIds() const { return CommandIds; }
    const vector<TEfxGroup>& GetGroups() const { return Groups; }
    const TEfxSpan& GetSharedTable() const { return SharedTable; }
    const TEfxSpan& GetSharedBytes() const { return SharedBytes; }

    // The image's numbers; zeros lie behind its end.
    uint8_t GetU8(uint32_t offset) const;
    uint32_t GetU16(uint32_t offset) const;
    uint32_t GetU32(uint32_t offset) const;
    float GetFloat(uint32_t offset) const;
    // The text of a span that ends in a zero.
    const char* GetText(const TEfxSpan& span) const;

private:
    bool ReadBytes(const char* path);
    bool TakeBytes(const vector<uint8_t>& bytes);
    bool ReadImage(TString& fault);
    bool ReadEffectHeader();
    bool ReadGroup(uint32_t record, TEfxGroup& group);
    bool ReadPhaseWords(uint32_t executeRecord, TEfxPhase& phase);
    void ReadPhaseNumbers(uint32_t record, TEfxPhase& phase);
    bool ReadPatches(uint32_t record, TEfxPhase& phase);
    bool ReadPatchOffsets(const TEfxPhase& phase, TEfxPatch& patch);
    bool ReadStages(uint32_t record, TEfxGroup& group);
    bool ReadLists(uint32_t record, TEfxGroup& group);
    bool ReadShared();
    bool ReadNames();
    bool ReadName(uint32_t field, TEfxSpan& span);
    bool ReadStream(TEfxStream& stream, const TEfxSpan* params);
    bool ReadCommand(TEfxStream& stream, uint32_t& from, uint32_t at, const TEfxSpan* params);
    bool CheckParam(const TEfxSpan& params, int number, const TEfxStream& stream, const TEfxCommand& command);
    bool CheckLists(const TEfxGroup& group);
    bool CheckTransforms(const TEfxPhase& phase);

    // The block that the pointer at `field` names. It must lie behind the one before.
    bool ReadBlock(uint32_t field, uint64_t size, uint32_t alignment, TEfxSpan& span);
    bool ReadPointer(uint32_t field, uint32_t alignment, uint32_t& offset);
    bool Has(uint32_t offset, uint64_t size) const;
    bool TakeLocation(uint32_t offset);
    bool Fail(uint32_t offset, const char* what);

    vector<uint8_t> Image;
    vector<uint32_t> Relocations;
    vector<uint32_t> Locations;
    vector<uint32_t> CommandIds;
    vector<TEfxGroup> Groups;
    TEfxSpan SharedTable;
    TEfxSpan SharedBytes;
    uint32_t GroupTable = 0;
    // Where the next block may begin at the earliest.
    uint32_t NextBlock = 0;
    int PointersSeen = 0;
    int LocationsSeen = 0;
    TString* Fault = nullptr;
};
