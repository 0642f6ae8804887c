#include "particles/cindermill/picture/pictureprogram.h"

#include "particles/cindermill/batch/batchcommand.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/picture/drawpicture.h"

#include <cstdio>
#include <cstring>

int RunPictureProgram(int argc, char** argv)
{
    TArguments arguments(argc - 1, argv + 1);
    TBatchSession session;
    TString fault;
    if (!session.ReadOptions(arguments, fault))
        return ReportUsage("%s", fault.Print());
    const char* word = arguments.Take();
    const bool isSheet = word != nullptr && std::strcmp(word, "sheet") == 0;
    if (word == nullptr || (!isSheet && std::strcmp(word, "picture") != 0))
        return ReportUsage("Pictures are drawn by the commands picture and sheet");
    int status = StatusErrors;
    TString text;
    const bool finished = RunGuarded(
        [&] {
            if (!session.Init())
                return;
            PrintLines(session.GetProjectErrors());
            if (session.HasProject())
                status = isSheet ? DrawSheet(session, arguments) : DrawPicture(session, arguments);
        },
        text);
    if (finished)
        return status;
    std::fprintf(stderr, "%s\n", text.Print());
    return StatusErrors;
}
