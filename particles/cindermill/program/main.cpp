#include "library/containers/log.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/interface/application.h"
#include "particles/cindermill/main/crashreport.h"

#include <cstdio>

// No argument is the program's own.
int main(int argc, char** argv)
{
    TCrashReport::Install();
    if (!TWimp::Get().Init(argc, argv)) {
        DebugPrintf("Failed to initialise Cindermill\n");
        fprintf(stderr, "There is no display to open windows on.\n");
        return 1;
    }
    TApplication* application = new TApplication;
    if (!application->Init()) {
        DebugPrintf("Cindermill failed to initialise\n");
        return 0;
    }
    TString version;
    TCindermillApp::GetVersion(version);
    DebugPrintf("%s\n", version.Print());
    TWimp::Get().Run();
    delete application;
    TWimp::Get().Shutdown();
    return 0;
}
