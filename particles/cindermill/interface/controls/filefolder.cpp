#include "particles/cindermill/interface/controls/filefolder.h"

#include "particles/cindermill/main/cindermillapp.h"

void GetFileFolder(const TString& name, const vector<TFileFilter>& filters, const char* sampleFolder,
                   TString& folder)
{
    TCindermillApp& app = TCindermillApp::Get();
    TString path;
    folder = nullptr;
    if (app.GetResourceLocator().FindKnown(name, path))
        folder.SetDirectory(path);
    else if (!HasLastDirectory(filters))
        app.GetSamples().GetFolderBeside(sampleFolder, folder);
}
