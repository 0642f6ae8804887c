#include "particles/cindermill/batch/textcommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/graph/text/effecttext.h"

#include <cstdio>

TTextCommand::TTextCommand() : TBatchCommand("text", "FILE") {}

const char* TTextCommand::GetHelp() const
{
    return "An effect as stable text, one line a value: for version control.\n";
}

int TTextCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    const char* path = arguments.TakeName();
    if (path == nullptr || !arguments.IsEmpty())
        return ReportUsage("text takes one file");
    TDocument document(session.GetApp());
    if (!session.LoadFile(document, path))
        return StatusErrors;
    TTextBuffer text;
    TEffectText(*document.GetGraph()).Write(text);
    std::fputs(text.Print(), stdout);
    return StatusDone;
}
