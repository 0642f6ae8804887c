#include "library/containers/log.h"
#include "library/system/endsignal.h"
#include "library/system/logfile.h"
#include "library/system/statefolder.h"
#include "library/system/writefaults.h"
#include "library/wimp/endwatch.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/interface/application.h"
#include "particles/cindermill/main/crashreport.h"
#include "particles/cindermill/main/toolversion.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

// What the program says while it runs is for whoever looks into it: it goes to a file, and to the standard
// error only if that is asked for.
static void OpenLog(TLogFile& log)
{
    const char* wish = getenv("CINDERMILL_LOG");
    if (wish != nullptr && strcmp(wish, "stderr") == 0)
        return;
    TString path;
    if (!GetStateFolder(path) || !MakeFolders(path))
        return;
    path += "/log";
    log.Open(path);
}

// While the message loop runs. The display's libraries end the program by themselves when the display goes.
static TApplication* Running = nullptr;

static void SaveAtExit()
{
    if (Running != nullptr)
        Running->OnEnding();
}

// False if the program did not come up. Where the system has ended it, the documents go with the process:
// nobody was asked whether they may.
static bool RunProgram()
{
    const TEndWatch end;
    TLogFile log;
    TApplication* application = new TApplication;
    const bool started = application->Init();
    if (started && !end.IsEnding()) {
        TString version;
        TCindermillApp::GetVersion(version);
        DebugPrintf("%s\n", version.Print());
        OpenLog(log);
        DebugPrintf("Cindermill %s\n", GetToolVersion());
        application->StartAutosave();
        Running = application;
        // Now that all objects that live as long as the process are there: they go after it.
        std::atexit(SaveAtExit);
        TWimp::Get().Run();
        Running = nullptr;
    }
    if (end.IsEnding()) {
        application->EndUnasked();
        if (GetEndSignal() != 0)
            EndBySignal(GetEndSignal());
        return false;
    }
    if (started)
        delete application;
    else
        DebugPrintf("Cindermill failed to initialise\n");
    return started;
}

// No argument is the program's own.
int main(int argc, char** argv)
{
    TakeClosedStreamsAsErrors();
    TCrashReport::Install();
    TakeFileSizeLimitAsError();
    TakeClosedPipeAsError();
    if (!TWimp::Get().Init(argc, argv)) {
        DebugPrintf("Failed to initialise Cindermill\n");
        fprintf(stderr, "There is no display to open windows on.\n");
        return 1;
    }
    if (RunProgram())
        TWimp::Get().Shutdown();
    return 0;
}
