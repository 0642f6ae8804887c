#include "particles/cindermill/interface/startpage.h"

#include "library/system/path.h"
#include "library/wimp/gdi/gdibitmap.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/toolversion.h"

namespace {

// Behind the ids of the menus, which the other entries share.
constexpr int FirstSample = 70000;
// As many as stand beside the samples without scrolling.
constexpr int MaxShownFiles = 8;

TEntryPage::TEntry MakeEntry(int id, const char* text, const char* detail, const char* help)
{
    TEntryPage::TEntry entry;
    entry.Id = id;
    entry.Text = text;
    entry.Detail = detail;
    entry.Help = help;
    return entry;
}

TString GetShownFolder(const TString& path)
{
    constexpr int MostCharacters = 44;
    TString folder;
    TString fitting;
    folder.SetDirectory(path);
    GetShownPath(folder).ShortenPath(fitting, MostCharacters);
    return fitting;
}

// "campfire" of ".../campfire.effect".
TString GetTitle(const TString& path)
{
    TString title;
    title.SetFileName(path);
    title.TruncateAtLast('.');
    return title;
}

} // namespace

bool TStartPage::Create(TWindow* owner)
{
    return TEntryPage::Create(owner, "startpage");
}

void TStartPage::Fill()
{
    AddBeginnings();
    AddRecentFiles();
    TString version;
    version.Format("Cindermill %s", GetToolVersion());
    AddNote(version);
    AddSamples();
}

void TStartPage::AddBeginnings()
{
    AddHeading("Begin");
    TEntry fresh =
        MakeEntry(MI_NEW, "New effect", "An empty graph. Drag nodes into it from the palette.", "Ctrl+N");
    fresh.Icon = PI_NEW;
    AddLine(fresh);
    TEntry saved = MakeEntry(MI_OPEN, "Open...", "An effect that was saved before.", "Ctrl+O");
    saved.Icon = PI_OPEN;
    AddLine(saved);
}

// The newest on top.
void TStartPage::AddRecentFiles()
{
    const vector<TString>& files = App.GetSettings().GetRecentFiles();
    if (files.empty())
        return;
    AddHeading("Recent effects");
    const int last = files.size() - 1;
    for (int i = last; i >= 0 && last - i < MaxShownFiles && i < MaxRecentEntries; --i) {
        TString name;
        name.SetFileName(files[i]);
        AddLine(MakeEntry(MI_RECENTFILE + i, name, GetShownFolder(files[i]), GetShownPath(files[i])));
    }
}

void TStartPage::AddSamples()
{
    vector<TString> effects;
    App.GetSamples().List(effects);
    if (effects.empty())
        return;
    SetTileHeading("Samples");
    for (int i = 0; i < effects.size(); ++i) {
        TEntry entry = MakeEntry(FirstSample + i, GetTitle(effects[i]), nullptr, GetShownPath(effects[i]));
        TSampleEffects::GetPicture(effects[i], entry.Picture);
        AddTile(entry);
    }
}

bool TStartPage::OnEntry(int id)
{
    if (id < FirstSample)
        return App.OnMenu(id);
    vector<TString> effects;
    App.GetSamples().List(effects);
    if (id - FirstSample >= effects.size())
        return false;
    const TString path = effects[id - FirstSample];
    App.OpenDocument(path);
    return true;
}
