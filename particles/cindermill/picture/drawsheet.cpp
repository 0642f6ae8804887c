#include "library/system/file.h"
#include "particles/cindermill/batch/batchcommand.h"
#include "particles/cindermill/batch/effectpaths.h"
#include "particles/cindermill/picture/contactsheet.h"
#include "particles/cindermill/picture/drawpicture.h"
#include "particles/cindermill/picture/picturedrawer.h"
#include "particles/cindermill/picture/pictureeffect.h"
#include "particles/cindermill/picture/pictureoptions.h"

#include <cstdio>

namespace {

constexpr int CellWidth = 320;
constexpr int CellHeight = 240;
// What an effect is called in the folder.
TString GetName(const TString& folder, const TString& path)
{
    const char* inside = path.Print() + folder.Length();
    TString name = *inside == '/' ? inside + 1 : inside;
    name.TruncateAtLast('.');
    return name;
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

bool DrawEffects(TBatchSession& session, const TPictureOptions& options, const TString& folder,
                 const vector<TString>& effects, const char* out)
{
    TPictureDrawer drawer;
    if (!drawer.Create(options.Width, options.Height))
        return false;
    TContactSheet sheet(drawer.GetContext(), options, effects.size());
    if (!sheet.Create())
        return false;
    TRgbPicture whole = sheet.MakePicture();
    bool all = true;
    TRgbPicture picture(options.Width, options.Height);
    for (int i = 0; i < effects.size(); ++i) {
        const bool drawn = DrawEffect(session, drawer, options, effects[i], picture);
        TString text = GetName(folder, effects[i]);
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
    const char* folder = arguments.TakeName();
    const char* out = arguments.TakeName();
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
    vector<TString> effects;
    if (IsDirectory(folder))
        ListEffectsBelow(folder, effects);
    if (effects.empty()) {
        std::fprintf(stderr, "%s: There are no effects below this folder\n", folder);
        return StatusErrors;
    }
    for (const TString& effect : effects)
        if (IsSameFile(effect, out)) {
            std::fprintf(stderr, "%s: This is one of the effects, which the picture would replace\n", out);
            return StatusErrors;
        }
    return DrawEffects(session, options, folder, effects, out) ? StatusDone : StatusErrors;
}
