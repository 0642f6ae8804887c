#pragma once

#include "particles/cindermill/graph/engine/effectexec.h"
#include "particles/cindermill/graph/engine/unseenservices.h"
#include "particles/cindermill/graph/replay/differencesource.h"
#include "particles/cindermill/graph/replay/effectreplay.h"
#include "particles/cindermill/graph/replay/replayreport.h"

struct TReplayOptions
{
    // As many as the longest life needs, and 50: see CountReplayFrames.
    static constexpr int FramesOfTheLongestLife = -1;

    int Frames = FramesOfTheLongestLife;
    // Seconds of a frame.
    float Dt = 0.02f;
    // Of all that is drawn at random.
    uint32_t Seed = 0;
};

// At least 100, at most 1,000.
int CountReplayFrames(const TEffectSchedule& schedule, float dt);

// Holds what the preview of an effect shows against what its exported file does: an engine and the replay of
// the file's bytes, side by side. The engine is its own, with births apart as the console has them; nothing
// is written, and no texture is read.
//
//     TReplayComparison comparison(schedule, services);
//     if (comparison.Export(errors) && comparison.Run(options, errors))
//         ... comparison.GetReport().GetDifferences(), GetNotes() ...
//
// Between other work the same is done in parts: Begin, then RunFrame until IsComplete, then RunEnd until
// IsEnded.
class TReplayComparison
{
public:
    // Refers to both. The policies of `services` play no part.
    TReplayComparison(const TEffectSchedule& schedule, TExecServices& services);
    ~TReplayComparison();
    TReplayComparison(const TReplayComparison&) = delete;
    TReplayComparison& operator=(const TReplayComparison&) = delete;

    // The file's bytes. False with errors if there are none; errors that leave a file may come with true.
    bool Export(TErrorList& errors);
    // What Run reads back.
    vector<uint8_t>& GetBytes() { return Bytes; }
    // From the first frame on; false with errors if the file is not sound or the engine fails. What was
    // compared until then stands.
    bool Run(const TReplayOptions& options, TErrorList& errors);
    // What needs no frame. Nothing of the schedule and its nodes may change from here to the end.
    bool Begin(const TReplayOptions& options, TErrorList& errors);
    bool RunFrame(TErrorList& errors);
    bool IsComplete() const { return Report.NumFrames >= NumFrames; }
    // How many frames there are to be.
    int GetNumFrames() const { return NumFrames; }
    // A part of what only the whole tells, of as many frames as were run. The replay goes with the first.
    bool RunEnd(TErrorList& errors);
    bool IsEnded() const { return Sources.Get() != nullptr && Sources->IsDone(); }
    const TReplayReport& GetReport() const { return Report; }

private:
    // What is asked of each attribute in each frame.
    struct TAttribute
    {
        int Group = 0;
        int Attribute = 0;
        // Which births bring from elsewhere and do not keep.
        bool MayBeUndefined = false;
        int NumComponents = 0;
        int Usage = 0;
    };
    struct TColumns
    {
        TReplayColumn Components[MaxValueFloats];
    };
    // A value as the preview has it.
    struct TShown
    {
        const TAttribute& Attribute;
        const float* Value;
        int Particle;
    };

    bool InitEngine(const TReplayOptions& options, TErrorList& errors);
    bool LoadBytes(TEfxFile& file, TErrorList& errors) const;
    void ListAttributes();
    void CompareFrame();
    bool CompareCounts(int group);
    void CompareAttribute(const TAttribute& attribute);
    void CompareValue(const TShown& shown, const TColumns& columns);
    void CompareComponent(const TShown& shown, int component, const TReplayCell& cell);
    void Differ(const TShown& shown, int component, TDifferenceKind kind, float replay);
    void DifferInCount(int group, TDifferenceKind kind, int preview, int replay);
    void Count(TReplayDifference* known, const TReplayDifference& difference);

    const TEffectSchedule& Schedule;
    TUnseenServices Services;
    TEffectExec Engine;
    vector<uint8_t> Bytes;
    // Of a comparison that has begun.
    TEfxFile File;
    TOwner<TEffectReplay> Replay;
    int NumFrames = 0;
    float Dt = 0;
    TReplayReport Report;
    // Of a comparison whose frames are over.
    TOwner<TDifferenceSources> Sources;
    vector<TAttribute> Attributes;
    // By group: whether its particles are those of the preview until now.
    vector<bool> InStep;
    int Frame = 0;
};
