#include "particles/cindermill/interface/resourcedialog.h"

#include "library/system/path.h"
#include "library/wimp/filechooser.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

static constexpr int DialogId = 109;

TResourceDialog::TResourceDialog() : Dialog(DialogId, "Find Resource", "Searching for:", "Locate...") {}

void TResourceDialog::BeginSearch()
{
    Dialog.Begin();
}

void TResourceDialog::EndSearch()
{
    Dialog.End();
}

void TResourceDialog::ShowSearch(const char* name)
{
    Dialog.Show(GetShownPath(name).Print());
}

void TResourceDialog::ListDirectories(const vector<TString>& directories)
{
    vector<TString> lines;
    for (const TString& directory : directories)
        lines.push_back(GetShownPath(directory.IsEmpty() ? "\\" : directory.c_str()));
    Dialog.SetList(lines);
}

TSearchAnswer TResourceDialog::Step()
{
    switch (Dialog.Step()) {
    case WA_BUTTON:
        return SA_LOCATE;
    case WA_CLOSED:
        return SA_STOP;
    default:
        return SA_NONE;
    }
}

bool TResourceDialog::ChooseResource(const char* title, const vector<TPathFilter>& filters, TString& path)
{
    vector<TFileFilter> fileFilters;
    for (const TPathFilter& filter : filters)
        fileFilters.push_back(TFileFilter{filter.Description, filter.Pattern});
    TString folder;
    GetFirstFolder(folder);
    if (!OpenFileChooser(title, fileFilters, folder, path))
        return false;
    LastFolder.SetDirectory(path);
    return true;
}

// What belongs to an effect lies mostly beside it, or where the last file was.
void TResourceDialog::GetFirstFolder(TString& folder) const
{
    folder = LastFolder;
    const TDocument* document = TCindermillApp::Get().GetActiveDocument();
    if (folder.IsEmpty() && document != nullptr)
        folder.SetDirectory(document->GetPath());
}
