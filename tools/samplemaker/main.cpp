#include "library/containers/log.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/effectgraph/error.h"
#include "tools/samplemaker/samplemaker.h"
#include "tools/samplemaker/startsettings.h"

#include <cstdio>
#include <cstring>

int main(int argc, char** argv)
{
    if (argc != 4 || std::strcmp(argv[1], "--node-types") != 0) {
        std::fprintf(stderr, "Usage: samplemaker --node-types DIR OUTDIR\n");
        return 2;
    }
    TCindermillApp app(new TStartSettings);
    TErrorList errors;
    if (!app.InitHeadless())
        return 1;
    app.LoadNodeTypes(argv[2], errors);
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        std::fprintf(stderr, "%s\n", text.Print());
    }
    if (!errors.empty())
        return 1;
    // What the schedules tell of themselves is nobody's to read here.
    const TLogCapture quiet([](const char*, void*) {}, nullptr);
    std::string failed;
    if (MakeSamples(app, argv[3], failed))
        return 0;
    std::fprintf(stderr, "Could not write %s\n", failed.c_str());
    return 1;
}
