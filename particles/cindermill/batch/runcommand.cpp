#include "particles/cindermill/batch/runcommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/runtable.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/main/document.h"

#include <climits>
#include <cstdio>

TRunCommand::TRunCommand() : TBatchCommand("run", "FILE [--frames N] [--dt S] [--seed K]") {}

const char* TRunCommand::GetHelp() const
{
    return "Runs the engine and prints every attribute after every frame, as comma-separated values.\n"
           "\n"
           "  --frames N            as many frames; 100 unless told\n"
           "  --dt S                seconds of a frame; 0.02 unless told\n"
           "  --seed K              every random generator starts from this number\n";
}

int TRunCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    const char* path = arguments.TakeName();
    if (path == nullptr)
        return ReportUsage("run needs a file");
    int frames = 100;
    float dt = 0.02f;
    while (!arguments.IsEmpty()) {
        uint32_t seed = 0;
        if (arguments.TakeIf("--frames")) {
            if (!ParseWhole(arguments.Take(), 0, INT_MAX, frames))
                return ReportUsage("--frames takes a whole number");
        } else if (arguments.TakeIf("--dt")) {
            if (!ParseReal(arguments.Take(), dt))
                return ReportUsage("--dt takes a number of seconds");
        } else if (arguments.TakeIf("--seed")) {
            if (!ParseUnsigned(arguments.Take(), seed))
                return ReportUsage("--seed takes an unsigned 32-bit number");
            TRandom::SetDefaultSeed(seed);
        } else {
            return ReportUsage("run does not know \"%s\"", arguments.Take());
        }
    }
    TDocument document(session.GetApp());
    if (!session.LoadGraph(document, path))
        return StatusErrors;
    TErrorList errors;
    bool inited = false;
    {
        TLogCapture quiet(DropLine, nullptr);
        inited = document.CreateSchedule(errors) && document.InitEngineWithoutRender(errors);
    }
    if (!inited) {
        PrintErrors(BR_SCHEDULEFAILED, errors);
        return StatusErrors;
    }
    TRunTable table(document.GetEngine(), stdout);
    table.WriteHeader();
    for (int frame = 1; frame <= frames; ++frame) {
        document.GetEngine().Update(dt);
        table.WriteFrame(frame);
    }
    return StatusDone;
}
