#include "particles/cindermill/batch/replaycommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/replaytable.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/main/documentcomparison.h"

#include <climits>
#include <cstdio>

namespace {

// All that the comparison tells beside the differences.
void PrintReport(const TReplayReport& report)
{
    for (const TReplayNote& note : report.GetNotes())
        std::fprintf(stderr, "%s\n", note.Text.Print());
    std::fprintf(stderr, "%s\n", report.GetSummary().Print());
}

} // namespace

TReplayCommand::TReplayCommand() : TBatchCommand("replay", "FILE [--frames N] [--dt S] [--seed K]") {}

const char* TReplayCommand::GetHelp() const
{
    return "Exports the effect in memory, runs the file's bytes as the console would beside the preview, "
           "and\n"
           "prints the first difference of each group, attribute and kind, as comma-separated values. What\n"
           "cannot be replayed is told on the standard error.\n"
           "\n"
           "  --frames N            as many frames; unless told as many as the longest life needs and 50 "
           "more,\n"
           "                        at least 100 and at most 1000\n"
           "  --dt S                seconds of a frame; 0.02 unless told\n"
           "  --seed K              what is drawn at random starts from this number; 0 unless told\n";
}

bool TReplayCommand::ReadOptions(TArguments& arguments, TReplayOptions& options)
{
    while (!arguments.IsEmpty()) {
        if (arguments.TakeIf("--frames")) {
            if (!ParseWhole(arguments.Take(), 0, INT_MAX, options.Frames))
                return ReportUsage("--frames takes a whole number") == StatusDone;
        } else if (arguments.TakeIf("--dt")) {
            if (!ParseReal(arguments.Take(), options.Dt))
                return ReportUsage("--dt takes a number of seconds") == StatusDone;
        } else if (arguments.TakeIf("--seed")) {
            if (!ParseUnsigned(arguments.Take(), options.Seed))
                return ReportUsage("--seed takes an unsigned 32-bit number") == StatusDone;
        } else {
            return ReportUsage("replay does not know \"%s\"", arguments.Take()) == StatusDone;
        }
    }
    return true;
}

int TReplayCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    const char* path = arguments.Take();
    if (path == nullptr)
        return ReportUsage("replay needs a file");
    TReplayOptions options;
    if (!ReadOptions(arguments, options))
        return StatusUsage;
    // For the nodes that the console does not know, so that the preview can be repeated.
    TRandom::SetDefaultSeed(options.Seed);
    TDocument document(session.GetApp());
    if (!session.LoadGraph(document, path))
        return StatusErrors;
    TErrorList errors;
    bool scheduled = false;
    {
        TLogCapture quiet(DropLine, nullptr);
        scheduled = document.CreateSchedule(errors);
    }
    if (!scheduled) {
        PrintErrors(BR_SCHEDULEFAILED, errors);
        return StatusErrors;
    }
    TDocumentComparison comparison(session.GetApp(), document);
    bool replayed = false;
    {
        TLogCapture quiet(DropLine, nullptr);
        replayed = comparison.Run(options, errors);
    }
    if (!errors.empty())
        PrintErrors(BR_EXPORTFAILED, errors);
    if (!replayed)
        return StatusErrors;
    TReplayTable(stdout).Write(comparison.GetReport());
    PrintReport(comparison.GetReport());
    return errors.empty() && comparison.GetReport().GetDifferences().empty() ? StatusDone : StatusErrors;
}
