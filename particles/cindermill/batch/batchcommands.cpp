#include "library/containers/shortentext.h"
#include "particles/cindermill/batch/batchcommand.h"
#include "particles/cindermill/batch/checkcommand.h"
#include "particles/cindermill/batch/diffcommand.h"
#include "particles/cindermill/batch/dumpcommand.h"
#include "particles/cindermill/batch/efxlistcommand.h"
#include "particles/cindermill/batch/exportcommand.h"
#include "particles/cindermill/batch/hashcommand.h"
#include "particles/cindermill/batch/helpcommand.h"
#include "particles/cindermill/batch/imagecommand.h"
#include "particles/cindermill/batch/lintcommand.h"
#include "particles/cindermill/batch/picturecommand.h"
#include "particles/cindermill/batch/replaycommand.h"
#include "particles/cindermill/batch/reportcommand.h"
#include "particles/cindermill/batch/resavecommand.h"
#include "particles/cindermill/batch/runcommand.h"
#include "particles/cindermill/batch/textcommand.h"
#include "particles/cindermill/batch/translatecommand.h"
#include "particles/cindermill/batch/typescommand.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr const char* SharedOptions = "[--node-types DIR] [--resources DIR] [--project FILE]";

const TTypesCommand Types;
const TCheckCommand Check;
const TLintCommand Lint;
const TReportCommand Report;
const TDumpCommand Dump;
const TExportCommand Export;
const TRunCommand Run;
const TReplayCommand Replay;
const TEfxListCommand Efx;
const TTranslateCommand Translate;
const TImageCommand Image;
const TResaveCommand Resave;
const THashCommand Hash;
const TTextCommand Text;
const TDiffCommand Diff;
const TPictureCommand
    Picture("picture",
            "FILE OUT.png [--frame N | --frames A-B] [--sheet C] [--turntable N] [--seed K] "
            "[--camera X,Y,Z,TX,TY,TZ] [--size WxH] [--background COLOUR] [--plain]",
            true);
const TPictureCommand Sheet("sheet",
                            "DIR OUT.png [--frame N] [--sheet C] [--seed K] [--camera X,Y,Z,TX,TY,TZ] "
                            "[--size WxH] [--background COLOUR] [--plain]",
                            false);
const THelpCommand Help;

const TBatchCommand* const Commands[] = {
    &Types,     &Check, &Lint,   &Report, &Dump, &Export, &Run,     &Replay, &Efx,
    &Translate, &Image, &Resave, &Hash,   &Text, &Diff,   &Picture, &Sheet,  &Help,
};

} // namespace

const TBatchCommand* FindBatchCommand(const char* word)
{
    for (const TBatchCommand* command : Commands)
        if (std::strcmp(command->Name, word) == 0)
            return command;
    return nullptr;
}

void PrintUsage(std::FILE* out)
{
    std::fprintf(out, "usage: cindermill-batch %s COMMAND ARGUMENTS\n", SharedOptions);
    for (const TBatchCommand* command : Commands)
        std::fprintf(out, "    %s %s\n", command->Name, command->Usage);
}

void PrintHelp(const TBatchCommand& command)
{
    std::printf("usage: cindermill-batch %s %s %s\n\n%s", SharedOptions, command.Name, command.Usage,
                command.GetHelp());
}

int ReportUsage(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    vector<char> text;
    text.resize(std::vsnprintf(nullptr, 0, format, args) + 1);
    std::vsnprintf(text.data(), static_cast<size_t>(text.size()), format, again);
    va_end(again);
    va_end(args);
    std::fprintf(stderr, "%s\n", OneLineText(text.data()).Print());
    PrintUsage(stderr);
    return StatusUsage;
}
