#pragma once

#include "library/containers/owner.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"

struct TReplayDifference;
struct TReplayNote;
class TEffectNode;
class TEffectSchedule;
class TReplayReport;
class TToldDifferences;

enum TVerdictKind
{
    VK_AGREES,
    // Nothing tells why.
    VK_DIFFERS,
    // For a reason that is told.
    VK_TOLD,
    // Nothing differs for it here.
    VK_NOTE,
    // Nothing differs in the frames that there was time for, which is not to say that the rest agrees.
    VK_CUTSHORT
};

// A sentence about an effect, without its end, and where to look. The node may go; it is not touched.
struct TVerdictLine
{
    TVerdictKind Kind = VK_NOTE;
    TString Text;
    // Null where no single one can be told.
    const TEffectNode* Node = nullptr;
};

// What a comparison of the preview with the exported file comes to, in words. It needs neither the comparison
// nor the effect afterwards.
class TReplayVerdict
{
public:
    TReplayVerdict() = default;
    // Of a comparison that is over, and that was to have so many frames.
    TReplayVerdict(const TEffectSchedule& schedule, const TReplayReport& report, int wantedFrames);

    // As many as `replay` of the batch program has lines.
    int GetNumDifferences() const { return Differences.size(); }
    int GetNumWithoutReason() const { return NumWithoutReason; }
    // Where the first difference seems to come from, one without a reason ahead of others; null for nowhere.
    const TEffectNode* GetFirstNode() const { return Headline.Node; }

    // "3 differences between preview and export, the first at Gravity".
    const TVerdictLine& GetHeadline() const { return Headline; }
    // The same, and what differs first.
    const TVerdictLine& GetSummary() const { return Summary; }
    // In the order in which they were met, those without a reason first.
    const vector<TVerdictLine>& GetDifferences() const { return Differences; }
    // The notes for which something differs.
    const vector<TVerdictLine>& GetReasons() const { return Reasons; }
    // All others.
    const vector<TVerdictLine>& GetNotes() const { return Notes; }

private:
    friend class TVerdictSearch;

    void MakeHeadline(int numFrames, int wantedFrames);
    void MakeSummary(const TReplayReport& report);

    TVerdictLine Headline;
    TVerdictLine Summary;
    vector<TVerdictLine> Differences;
    vector<TVerdictLine> Reasons;
    vector<TVerdictLine> Notes;
    int NumWithoutReason = 0;
};

// Comes to the verdict of a comparison in parts, so that others may work in between.
class TVerdictSearch
{
public:
    // Refers to both, which may not change until it is done. As TReplayVerdict has it.
    TVerdictSearch(const TEffectSchedule& schedule, const TReplayReport& report, int wantedFrames);
    ~TVerdictSearch();
    bool IsDone() const { return Done; }
    // One difference, or one note, or what is said of them all.
    void RunPart();
    // When it is done.
    const TReplayVerdict& GetVerdict() const { return Verdict; }

private:
    void AddDifference(const TReplayDifference& difference);
    void AddNote(int note);
    void Finish();

    const TReplayReport& Report;
    const int WantedFrames;
    TOwner<TToldDifferences> Told;
    // By note: whether something differs for it.
    vector<bool> IsReason;
    // Differences for which there is a reason come behind all others.
    vector<TVerdictLine> Explained;
    TReplayVerdict Verdict;
    int NextDifference = 0;
    int NextNote = 0;
    bool Done = false;
};
