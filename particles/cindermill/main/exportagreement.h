#pragma once

#include "library/containers/owner.h"
#include "library/system/clock.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/replay/replayverdict.h"
#include "particles/effectgraph/error.h"

class TCindermillApp;
class TDocument;
class TDocumentComparison;

// What a comparison may take, in nanoseconds.
struct TAgreementLimits
{
    // Of one pass between other work, which a single frame may exceed, and nothing else.
    uint64_t Pass = 4000000;
    // More than that for so many frames in a row, or for all of them, and the rest is not compared. A single
    // one may be slow because of what else the machine does.
    uint64_t Frame = 100000000;
    int SlowFrames = 5;
    uint64_t Whole = 30000000000;
    // Values that all groups can hold.
    int64_t Values = 32000000;
    // What measures all that.
    uint64_t (*Clock)() = GetPerformanceCounter;
};

// Why there was no comparison, in one line.
TString TellNotCompared(const char* fault);

// Whether a document's preview and the file that it exports agree: compared in small parts while nothing else
// is to be done. It holds for the effect as it stands, until the next edit.
class TExportAgreement
{
public:
    TExportAgreement(TCindermillApp& app, TDocument& document);
    ~TExportAgreement();

    // Compares from the beginning. The document's schedule must be that of the graph.
    void Begin();
    // The same of a file that has just been exported. `told` is what was said of it.
    void BeginForFile(const char* path, const char* told);
    // An edit begins: what is known is forgotten, and no node is touched any more.
    void Drop();
    // Whether it is time for a part of it.
    bool IsDue() const { return IsRunning() && GetNow() >= NextPass; }
    void RunPass();
    // True once when something else is to be told.
    bool TakeChange();
    // By the limits' clock; until its next pass it rests.
    uint64_t GetNow() const { return Limits.Clock(); }
    uint64_t GetNextPass() const { return NextPass; }
    void SetLimits(const TAgreementLimits& limits) { Limits = limits; }

    bool IsRunning() const { return Comparison.Get() != nullptr; }
    // Since the last edit.
    bool IsBegun() const { return IsRunning() || Known || !Fault.IsEmpty(); }
    // The comparison is over, and the verdict holds.
    bool IsKnown() const { return Known; }
    const TReplayVerdict& GetVerdict() const { return Verdict; }
    // "Comparing preview and export: frame 40 of 150".
    void GetProgress(TString& text) const;
    // What stays in sight after an export: what it comes to, the reasons that are known.
    const vector<TVerdictLine>& GetLines() const { return Lines; }
    // The whole of it, line by line, or why there is none.
    void GetText(TString& text) const;
    // Once after an export: what was told of it and what it comes to. False if there is nothing to tell.
    bool TakeStatus(TString& text);
    // What was told of the export.
    const TString& GetTold() const { return Told; }

private:
    void Start(const char* path);
    bool CanBegin(const char* path);
    bool RunParts(uint64_t begin);
    bool RunFrames(uint64_t begin);
    bool RunEnd(uint64_t begin);
    void Fail(const char* fault);
    void MakeLines();

    TCindermillApp& App;
    TDocument& Document;
    TAgreementLimits Limits;
    TOwner<TDocumentComparison> Comparison;
    // Nodes that draw from the generators of all effects have their own here.
    TRandomRun Randoms;
    // The frames are over: of those that were run, what they come to.
    bool IsAtEnd = false;
    TOwner<TVerdictSearch> Search;
    TReplayVerdict Verdict;
    TString Fault;
    vector<TVerdictLine> Lines;
    bool Known = false;
    // It was begun by an export.
    bool OfFile = false;
    TString Told;
    bool IsStatusDue = false;
    // Something has come or gone since Run last told so.
    bool HasChanged = false;
    int NumSlowFrames = 0;
    // By the limits' clock: when the next part is due, when the next progress, and what was taken.
    uint64_t NextPass = 0;
    uint64_t NextProgress = 0;
    uint64_t Taken = 0;
};
