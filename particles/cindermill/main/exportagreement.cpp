#include "particles/cindermill/main/exportagreement.h"

#include "library/containers/shortentext.h"
#include "library/system/file.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/documentcomparison.h"

namespace {

// One that lasts longer is told of while it goes on, from time to time.
constexpr uint64_t LongComparison = 1000000000;
constexpr uint64_t ProgressTime = 500000000;
// A pass that lasts longer is felt in the window, and followed by as many times its length for others.
constexpr uint64_t SlowPass = 16000000;
constexpr uint64_t SlowPassRest = 4;

// While it lives, draws leave those of the preview alone.
class TOwnDraws
{
public:
    explicit TOwnDraws(TRandomRun& run) : Run(run) { Run.Enter(); }
    ~TOwnDraws() { Run.Leave(); }
    TOwnDraws(const TOwnDraws&) = delete;
    TOwnDraws& operator=(const TOwnDraws&) = delete;

private:
    TRandomRun& Run;
};

int64_t CountValues(const TEffectSchedule& schedule)
{
    int64_t count = 0;
    for (int group = 0; group < schedule.GetNumGroups(); ++group) {
        int floats = 0;
        for (int attrib = 0; attrib < schedule.GetNumAttributes(group); ++attrib)
            floats += GetTypeFloats(schedule.GetAttributeType(group, attrib));
        count += static_cast<int64_t>(floats) * schedule.GetParticleCount(group);
    }
    return count;
}

TString GetFirstText(const TErrorList& errors)
{
    TString text;
    if (!errors.empty())
        (*errors.begin())->GetText(text);
    text.Trim();
    return text;
}

void AddLines(const vector<TVerdictLine>& lines, const char* heading, TString& text)
{
    if (lines.empty())
        return;
    text += "\n";
    text += heading;
    for (const TVerdictLine& line : lines) {
        text += "\n";
        text += line.Text;
    }
    text += "\n";
}

} // namespace

TString TellNotCompared(const char* fault)
{
    TString text;
    if (fault == nullptr || *fault == 0)
        text = "Preview and export were not compared, and nothing tells why";
    else
        text.Format("Preview and export were not compared: %s", OneLineText(fault).Print());
    return text;
}

TExportAgreement::TExportAgreement(TCindermillApp& app, TDocument& document) : App(app), Document(document) {}

TExportAgreement::~TExportAgreement() = default;

void TExportAgreement::Begin()
{
    Start(nullptr);
}

void TExportAgreement::BeginForFile(const char* path, const char* told)
{
    Start(path);
    OfFile = true;
    IsStatusDue = true;
    Told = told;
    MakeLines();
}

void TExportAgreement::Start(const char* path)
{
    Drop();
    HasChanged = true;
    NextPass = GetNow();
    NextProgress = NextPass + LongComparison;
    Taken = 0;
    NumSlowFrames = 0;
    Randoms.Restart(TReplayOptions().Seed);
    const TOwnDraws own(Randoms);
    if (!CanBegin(path))
        Comparison.Reset();
}

// Errors that leave a file were told by the export.
bool TExportAgreement::CanBegin(const char* path)
{
    if (CountValues(Document.GetSchedule()) > Limits.Values) {
        Fail("the effect is too large to be compared here");
        return false;
    }
    Comparison.Reset(new TDocumentComparison(App, Document));
    TErrorList errors;
    // What has just been exported to a file is not exported once more.
    if (path != nullptr && !ReadFileBytes(path, Comparison->GetComparison().GetBytes())) {
        Fail("the exported file cannot be read");
        return false;
    }
    if (path == nullptr && !Comparison->Export(errors)) {
        Fail(GetFirstText(errors));
        return false;
    }
    errors.Clear();
    if (Comparison->GetComparison().Begin(TReplayOptions(), errors))
        return true;
    Fail(GetFirstText(errors));
    return false;
}

void TExportAgreement::Drop()
{
    HasChanged = HasChanged || IsBegun();
    IsAtEnd = false;
    Search.Reset();
    Comparison.Reset();
    Verdict = TReplayVerdict();
    Lines.clear();
    Fault = nullptr;
    Known = false;
    OfFile = false;
    IsStatusDue = false;
}

bool TExportAgreement::TakeChange()
{
    const bool changed = HasChanged;
    HasChanged = false;
    return changed;
}

void TExportAgreement::RunPass()
{
    const uint64_t begin = GetNow();
    bool goesOn = false;
    {
        const TOwnDraws own(Randoms);
        goesOn = RunParts(begin);
    }
    const uint64_t end = GetNow();
    NextPass = end + (end - begin) * (end - begin > SlowPass ? SlowPassRest : 1);
    if (!goesOn) {
        Search.Reset();
        Comparison.Reset();
    }
    if (!goesOn || end >= NextProgress) {
        NextProgress = end + ProgressTime;
        HasChanged = true;
        MakeLines();
    }
}

// False when it is over.
bool TExportAgreement::RunParts(uint64_t begin)
{
    if (!IsAtEnd && !RunFrames(begin))
        return false;
    return !IsAtEnd || RunEnd(begin);
}

// False where it fails.
bool TExportAgreement::RunFrames(uint64_t begin)
{
    TReplayComparison& comparison = Comparison->GetComparison();
    uint64_t last = begin;
    TErrorList errors;
    while (!comparison.IsComplete()) {
        if (!comparison.RunFrame(errors)) {
            Fail(GetFirstText(errors));
            return false;
        }
        const uint64_t now = GetNow();
        Taken += now - last;
        NumSlowFrames = now - last > Limits.Frame ? NumSlowFrames + 1 : 0;
        if (NumSlowFrames >= Limits.SlowFrames || Taken > Limits.Whole)
            break;
        if (now - begin > Limits.Pass)
            return true;
        last = now;
    }
    IsAtEnd = true;
    return true;
}

// No frame is cut short here: a part is small, however large the effect is, and there are as many as there
// are differences and notes.
bool TExportAgreement::RunEnd(uint64_t begin)
{
    TReplayComparison& comparison = Comparison->GetComparison();
    TErrorList errors;
    do {
        if (!comparison.IsEnded()) {
            if (!comparison.RunEnd(errors)) {
                Fail(GetFirstText(errors));
                return false;
            }
        } else if (Search.Get() == nullptr) {
            Search.Reset(new TVerdictSearch(Comparison->GetSchedule(), comparison.GetReport(),
                                            comparison.GetNumFrames()));
        } else {
            Search->RunPart();
        }
        if (Search.Get() != nullptr && Search->IsDone()) {
            Verdict = Search->GetVerdict();
            Known = true;
            return false;
        }
    } while (GetNow() - begin <= Limits.Pass);
    return true;
}

void TExportAgreement::Fail(const char* fault)
{
    Fault = TellNotCompared(fault);
}

void TExportAgreement::GetProgress(TString& text) const
{
    TReplayComparison& comparison = Comparison->GetComparison();
    text.Format("Comparing preview and export: frame %d of %d", comparison.GetReport().NumFrames,
                comparison.GetNumFrames());
}

void TExportAgreement::MakeLines()
{
    Lines.clear();
    if (!OfFile)
        return;
    TVerdictLine line;
    if (Known) {
        Lines = Verdict.GetReasons();
        Lines.insert(Lines.begin(), Verdict.GetSummary());
        return;
    }
    if (IsRunning() && Taken > 0)
        GetProgress(line.Text);
    else
        line.Text = Fault;
    if (!line.Text.IsEmpty())
        Lines.push_back(line);
}

void TExportAgreement::GetText(TString& text) const
{
    text = nullptr;
    if (IsRunning())
        GetProgress(text);
    else if (!Known)
        text = Fault;
    if (!Known)
        return;
    text = Verdict.GetDifferences().empty() ? Verdict.GetSummary().Text : Verdict.GetHeadline().Text;
    text += "\n";
    AddLines(Verdict.GetReasons(), "Known reasons:", text);
    AddLines(Verdict.GetDifferences(), "Differences:", text);
    AddLines(Verdict.GetNotes(), "Notes:", text);
}

bool TExportAgreement::TakeStatus(TString& text)
{
    if (!IsStatusDue || (!Known && Fault.IsEmpty()))
        return false;
    IsStatusDue = false;
    text.Format("%s. %s", Told.Print(), Known ? Verdict.GetHeadline().Text.Print() : Fault.Print());
    return true;
}
