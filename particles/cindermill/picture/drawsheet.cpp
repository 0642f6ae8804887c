#include "library/system/file.h"
#include "library/system/path.h"
#include "particles/cindermill/batch/batchcommand.h"
#include "particles/cindermill/picture/contactsheet.h"
#include "particles/cindermill/picture/drawpicture.h"
#include "particles/cindermill/picture/picturedrawer.h"
#include "particles/cindermill/picture/pictureeffect.h"
#include "particles/cindermill/picture/pictureoptions.h"

#include <cstdio>

namespace {

constexpr int CellWidth = 320;
constexpr int CellHeight = 240;
constexpr const char* EffectExtension = "effect";

// An effect below the folder: where it is, and what it is called there.
struct TSheetEntry
{
    TString Path;
    TString Name;
};

TString Join(const TString& folder, const TString& name)
{
    TString path = folder;
    if (!path.IsEmpty())
        path += "/";
    path += name;
    return path;
}

// False, with the folder named, where one cannot be listed.
bool ListEffects(const TString& folder, const TString& inside, vector<TSheetEntry>& effects)
{
    vector<TDirectoryEntry> entries;
    if (!ListDirectory(folder, entries)) {
        std::fprintf(stderr, "%s: The folder cannot be read\n", folder.Print());
        return false;
    }
    for (const TDirectoryEntry& entry : entries) {
        const TString path = Join(folder, entry.Name);
        TString extension;
        extension.SetExtension(entry.Name);
        if (entry.IsDirectory) {
            if (!ListEffects(path, Join(inside, entry.Name), effects))
                return false;
        } else if (entry.Name.Find('.') != -1 && extension.Compare(EffectExtension) == 0) {
            TString name = Join(inside, entry.Name);
            name.TruncateAtLast('.');
            Append(effects, TSheetEntry{path, name});
        }
    }
    return true;
}

// One picture of each effect. False where one has none; its place then stays empty.
bool DrawEffect(TBatchSession& session, TPictureDrawer& drawer, const TPictureOptions& options,
                const char* path, TRgbPicture& picture)
{
    TPictureEffect effect(session, options);
    if (effect.Start(path) && effect.RunTo(options.FirstFrame) &&
        drawer.Draw(effect.GetDocument(), options, 0, picture))
        return true;
    picture.Fill(options.Background);
    return false;
}

bool DrawEffects(TBatchSession& session, const TPictureOptions& options, const vector<TSheetEntry>& effects,
                 const char* out)
{
    TPictureDrawer drawer;
    if (!drawer.Create(options.Width, options.Height))
        return false;
    TContactSheet sheet(drawer.GetContext(), effects.size(),
                        options.Columns > 0 ? options.Columns
                                            : TContactSheet::GetUsualColumns(effects.size()));
    if (!sheet.SetCellSize(options.Width, options.Height, TPictureOptions::MaxSide)) {
        std::fprintf(stderr, "A sheet has no more than %d pixels across and down\n",
                     TPictureOptions::MaxSide);
        return false;
    }
    TRgbPicture whole = sheet.MakePicture();
    sheet.Clear(whole);
    bool all = true;
    TRgbPicture picture(options.Width, options.Height);
    for (int i = 0; i < effects.size(); ++i) {
        const bool drawn = DrawEffect(session, drawer, options, effects[i].Path, picture);
        TString text = effects[i].Name;
        if (!drawn)
            text += " does not run";
        sheet.PutCell(whole, i, picture, text.Print());
        all = all && drawn;
    }
    return TPictureDrawer::WritePicture(whole, out) && all;
}

} // namespace

int DrawSheet(TBatchSession& session, TArguments& arguments)
{
    const char* folder = arguments.Take();
    const char* out = arguments.Take();
    if (out == nullptr)
        return ReportUsage("sheet takes a folder and the picture to write");
    TPictureOptions options;
    options.Width = CellWidth;
    options.Height = CellHeight;
    TString fault;
    if (!ReadPictureOptions(arguments, options, fault))
        return ReportUsage("sheet: %s", fault.Print());
    if (options.GetNumPictures() > 1)
        return ReportUsage("sheet: Each effect has one picture in a sheet");
    vector<TSheetEntry> effects;
    if (!ListEffects(folder, "", effects))
        return StatusErrors;
    if (effects.empty()) {
        std::fprintf(stderr, "%s: There are no effects below this folder\n", folder);
        return StatusErrors;
    }
    for (const TSheetEntry& effect : effects)
        if (IsSameFile(effect.Path, out)) {
            std::fprintf(stderr, "%s: This is one of the effects, which the picture would replace\n", out);
            return StatusErrors;
        }
    return DrawEffects(session, options, effects, out) ? StatusDone : StatusErrors;
}
