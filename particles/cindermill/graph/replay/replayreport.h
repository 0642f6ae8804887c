#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "particles/cindermill/graph/replay/replaycell.h"

class TEffectNode;

enum TDifferenceKind
{
    // Both know it, and it is not the same.
    DK_VALUE,
    // Nothing in the file writes it.
    DK_UNDEFINED,
    // It hangs on what cannot be replayed.
    DK_UNKNOWN,
    // The number of living particles.
    DK_COUNT,
    // What a render stage is given beside its particles.
    DK_STAGE,
    DK_NUMKINDS
};
// "value" to "stage".
const char* GetDifferenceKindName(TDifferenceKind kind);

// Where a compared number stands. -1 for what it has not.
struct TReplayPlace
{
    // The first is 1; 0 is before all frames.
    int Frame = 0;
    float Time = 0;
    int Group = -1;
    int Particle = -1;
    int Global = -1;
    int Attribute = -1;
    TString Name;
    // TValueType.
    int Type = -1;
    int Component = -1;
    // The node where the difference seems to come from; null where no single one can be told.
    const TEffectNode* Node = nullptr;
};

// The first difference of a group, an attribute and a kind, and how many of them there were.
struct TReplayDifference
{
    TReplayPlace Place;
    TDifferenceKind Kind = DK_VALUE;
    float Preview = 0;
    // Only for DK_VALUE, DK_COUNT and DK_STAGE.
    float Replay = 0;
    int64_t Times = 0;
    // The largest distance; infinite where one is no number.
    double Worst = 0;
};

// What differs, and how, in one sentence without its end.
TString DescribeDifference(const TReplayDifference& difference);

// What cannot be replayed, or is replayed by a guess, or differs for a reason that the effect tells.
struct TReplayNote
{
    // "Age in group 1: ...", without a line end.
    TString Text;
    // Null for what is the whole group's.
    const TEffectNode* Node = nullptr;
    int Group = -1;
    // Whether preview and replay may differ for it. What the console alone does, they do alike.
    bool MayDiffer = false;
    // Whether other particles may live for it, and not just other values.
    bool DecidesParticles = false;
};

// What a comparison has come to.
class TReplayReport
{
public:
    // Sorts of numbers that were compared: all, and which of them were equal, undefined and unknown. What is
    // left differs.
    int64_t NumCompared = 0;
    int64_t NumEqual = 0;
    int64_t NumUndefined = 0;
    int64_t NumUnknown = 0;
    int64_t NumParticles = 0;
    int NumFrames = 0;

    const vector<TReplayDifference>& GetDifferences() const { return Differences; }
    vector<TReplayDifference>& GetDifferences() { return Differences; }
    const vector<TReplayNote>& GetNotes() const { return Notes; }
    // "%d values compared, ...".
    TString GetSummary() const;

    // The one that counts differences of the place and kind, null if there is none yet.
    TReplayDifference* Find(int group, int attribute, TDifferenceKind kind);
    void Add(const TReplayDifference& difference);
    // One number that both have: counts it, and tells whether it is the same.
    bool Compare(float preview, float replay);
    // The same, and keeps the difference: for what stands in the file before any frame.
    void CompareFixed(const TReplayPlace& place, TDifferenceKind kind, float preview, float replay);
    // The same of a value, at a place that gets the name and the component where it differs: a text is made
    // for a difference only.
    void CompareNamed(TReplayPlace& place, const char* name, float preview, float replay, int component);
    void AddNote(const TReplayNote& note);

private:
    vector<TReplayDifference> Differences;
    vector<TReplayNote> Notes;
};

// Equal also where both are no number.
bool IsSameNumber(float a, float b);
// How far two numbers are apart.
double GetDistance(float a, float b);
