#include "particles/cindermill/batch/imagecommand.h"

#include "library/containers/image/image.h"
#include "library/system/file.h"
#include "particles/cindermill/batch/batchsession.h"

TImageCommand::TImageCommand() : TBatchCommand("image", "IN OUT --format N") {}

const char* TImageCommand::GetHelp() const
{
    return "Converts a DDS or HVT picture.\n"
           "\n"
           "  --format N            0 TGA, 1 DDS raw, 2 DDS DXT3, 3 DDS DXT5, 4 HVT raw, 5 HVT DXT3, 6 HVT "
           "DXT5\n";
}

int TImageCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    (void)session;
    const char* in = arguments.TakeName();
    const char* out = in != nullptr ? arguments.TakeName() : nullptr;
    int format = 0;
    if (out == nullptr || !arguments.TakeIf("--format") ||
        !ParseWhole(arguments.Take(), 0, IF_NUMFORMATS - 1, format) || !arguments.IsEmpty())
        return ReportUsage(
            "image takes a picture, the file to write, and --format with a number from 0 to %d",
            IF_NUMFORMATS - 1);
    TImage image;
    TString reason;
    bool loaded = false;
    {
        TLogCapture capture(KeepFirstLine, &reason);
        loaded = image.Load(in);
    }
    if (!loaded) {
        if (reason.IsEmpty())
            GetReadFault(in, reason);
        if (reason.IsEmpty())
            reason = "This is no sound DDS or HVT picture";
        PrintMessage(in, reason);
        return StatusErrors;
    }
    if (image.Save(out, format, reason))
        return StatusDone;
    TString text("The picture cannot be written: ");
    text += reason.Print();
    PrintMessage(out, text);
    return StatusErrors;
}
