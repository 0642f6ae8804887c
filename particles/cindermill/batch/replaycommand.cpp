#include "particles/cindermill/batch/replaycommand.h"

#include "library/containers/shortentext.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/effectfindings.h"
#include "particles/cindermill/batch/findingarguments.h"
#include "particles/cindermill/batch/replayfindings.h"
#include "particles/cindermill/batch/replaytable.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/main/documentcomparison.h"

#include <climits>
#include <cstdio>

namespace {

// The files of one run, one after the other.
class TFileReplay
{
public:
    TFileReplay(TBatchSession& session, const TReplayOptions& options, TFindingReport& report,
                bool isOfSeveral)
        : Session(session), Options(options), Report(report), IsOfSeveral(isOfSeveral),
          Table(stdout, isOfSeveral)
    {
    }
    // False where something differs, or there is nothing to replay.
    bool ReplayFile(const char* path)
    {
        Report.AddFile(path);
        // For the nodes that the console does not know, so that the preview can be repeated.
        TRandom::SetDefaultSeed(Options.Seed);
        TDocument document(Session.GetApp());
        if (!Session.LoadGraph(document, path, Report))
            return false;
        TEffectFindings findings(document, path, Report);
        TErrorList errors;
        bool scheduled = false;
        {
            TLogCapture quiet(DropLine, nullptr);
            scheduled = document.CreateSchedule(errors);
        }
        if (scheduled)
            return Compare(document, path, findings);
        findings.AddErrors("schedule.error", errors);
        TellErrors(path, BR_SCHEDULEFAILED, errors);
        return false;
    }

private:
    bool Compare(TDocument& document, const char* path, TEffectFindings& findings)
    {
        TErrorList errors;
        TDocumentComparison comparison(Session.GetApp(), document);
        bool replayed = false;
        {
            TLogCapture quiet(DropLine, nullptr);
            replayed = comparison.Run(Options, errors);
        }
        findings.AddErrors(replayed ? "export.warning" : "export.error", errors);
        TellErrors(path, replayed ? BR_DONE : BR_EXPORTFAILED, errors);
        if (!replayed)
            return false;
        if (Report.IsText())
            PrintText(path, comparison.GetReport());
        AddReplayFindings(document, path, comparison.GetReport(), Report);
        return errors.empty() && comparison.GetReport().GetDifferences().empty();
    }
    void TellErrors(const char* path, TBatchResult result, const TErrorList& errors) const
    {
        if (!Report.IsText() || errors.empty())
            return;
        if (!IsOfSeveral) {
            PrintErrors(result, errors);
            return;
        }
        PrintErrorsOfFile(path, result, errors);
    }
    void PrintText(const char* path, const TReplayReport& replay)
    {
        Table.Write(replay, path);
        for (const TReplayNote& note : replay.GetNotes())
            PrintNote(path, note.Text);
        PrintNote(path, replay.GetSummary());
    }
    void PrintNote(const char* path, const TString& text) const
    {
        if (IsOfSeveral)
            PrintMessage(path, text);
        else
            std::fprintf(stderr, "%s\n", OneLineText(text).Print());
    }

    TBatchSession& Session;
    const TReplayOptions& Options;
    TFindingReport& Report;
    const bool IsOfSeveral;
    TReplayTable Table;
};

// False with a sentence that tells what is wrong.
bool ReadNumbers(const TString (&words)[3], TReplayOptions& options, TString& fault)
{
    if (!words[0].IsEmpty() && !ParseWhole(words[0], 0, INT_MAX, options.Frames))
        fault = "--frames takes a whole number";
    else if (!words[1].IsEmpty() && !ParseReal(words[1], options.Dt))
        fault = "--dt takes a number of seconds";
    else if (!words[2].IsEmpty() && !ParseUnsigned(words[2], options.Seed))
        fault = "--seed takes an unsigned 32-bit number";
    else
        return true;
    return false;
}

} // namespace

TReplayCommand::TReplayCommand()
    : TBatchCommand("replay", "[--frames N] [--dt S] [--seed K] [--format F] [--fail-on S] FILE...")
{
}

const char* TReplayCommand::GetHelp() const
{
    return "Exports the effect in memory, runs the file's bytes as the console would beside the preview, "
           "and\n"
           "prints the first difference of each group, attribute and kind, as comma-separated values. What\n"
           "cannot be replayed is told on the standard error. A folder stands for all effects below it, and "
           "a\n"
           "pattern for the files that it fits; where there may be several, rows and notes name theirs.\n"
           "\n"
           "  --frames N            as many frames; unless told as many as the longest life needs and 50 "
           "more,\n"
           "                        at least 100 and at most 1000\n"
           "  --dt S                seconds of a frame; 0.02 unless told\n"
           "  --seed K              what is drawn at random starts from this number; 0 unless told\n"
           "  --format F            text, json, junit or sarif; text unless told\n"
           "  --fail-on S           status 1 from this severity on: warning or error. Unless told, text has\n"
           "                        status 1 for every difference, the others from warning on\n";
}

int TReplayCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    TReplayOptions options;
    TString numbers[3];
    TFindingArguments words(Name);
    words.AddValue("--frames", numbers[0]);
    words.AddValue("--dt", numbers[1]);
    words.AddValue("--seed", numbers[2]);
    TString fault;
    if (!words.Read(arguments, fault) || !ReadNumbers(numbers, options, fault))
        return ReportUsage("%s", fault.Print());
    if (words.GetNames().empty())
        return ReportUsage("replay needs a file");
    if (!words.CheckSetup(session))
        return StatusErrors;
    TFindingReport report(Name, session.GetProject());
    words.Prepare(report, session);
    vector<TString> files;
    words.GetFiles(files);
    TFileReplay replay(session, options, report, words.IsOfSeveral(files));
    bool isEqual = true;
    for (const TString& file : files)
        isEqual = replay.ReplayFile(file) && isEqual;
    report.Write(stdout);
    const bool byFindings = !words.IsText() || words.HasFailOn();
    return (byFindings ? !report.HasFailed() : isEqual) ? StatusDone : StatusErrors;
}
