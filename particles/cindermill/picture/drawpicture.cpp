#include "particles/cindermill/picture/drawpicture.h"

#include "library/system/file.h"
#include "particles/cindermill/batch/batchcommand.h"
#include "particles/cindermill/picture/contactsheet.h"
#include "particles/cindermill/picture/picturedrawer.h"
#include "particles/cindermill/picture/pictureeffect.h"
#include "particles/cindermill/picture/pictureoptions.h"

#include <cstdio>

namespace {

// The preview's own view at its first size, and what many of them have room for.
constexpr int UsualWidth = 800;
constexpr int UsualHeight = 568;
constexpr int UsualCellWidth = 320;
constexpr int UsualCellHeight = 240;

// One effect: at one moment or several, from one side or from all around.
class TPictureRun
{
public:
    TPictureRun(TBatchSession& session, TPictureOptions& options)
        : Options(options), IsSheet(options.GetNumPictures() > 1 || options.Columns > 0),
          Effect(session, options)
    {
        if (options.Width == 0) {
            options.Width = IsSheet ? UsualCellWidth : UsualWidth;
            options.Height = IsSheet ? UsualCellHeight : UsualHeight;
        }
    }

    bool Draw(const char* path, const char* out)
    {
        if (!Drawer.Create(Options.Width, Options.Height) || !Effect.Start(path))
            return false;
        return IsSheet ? DrawAll(out) : DrawOne(out);
    }

private:
    bool DrawOne(const char* out)
    {
        TRgbPicture picture(Options.Width, Options.Height);
        return Effect.RunTo(Options.FirstFrame) && Drawer.Draw(Effect.GetDocument(), Options, 0, picture) &&
               TPictureDrawer::WritePicture(picture, out);
    }

    bool DrawAll(const char* out)
    {
        TContactSheet sheet(Drawer.GetContext(), Options, Options.GetNumPictures());
        if (!sheet.Create())
            return false;
        TRgbPicture whole = sheet.MakePicture();
        int index = 0;
        for (int frame = Options.FirstFrame; frame <= Options.LastFrame; ++frame)
            if (!Effect.RunTo(frame) || !DrawFrame(sheet, whole, frame, index))
                return false;
        return TPictureDrawer::WritePicture(whole, out);
    }

    bool DrawFrame(TContactSheet& sheet, TRgbPicture& whole, int frame, int& index)
    {
        TRgbPicture picture(Options.Width, Options.Height);
        const int views = Options.Turntable > 0 ? Options.Turntable : 1;
        for (int view = 0; view < views; ++view) {
            const float turn = static_cast<float>(view) / static_cast<float>(views);
            if (!Drawer.Draw(Effect.GetDocument(), Options, turn, picture))
                return false;
            TString text;
            text.Format("Frame %d, %.2f s", frame,
                        static_cast<double>(Effect.GetDocument().GetEngine().GetTime()));
            if (views > 1) {
                constexpr double wholeTurn = 360;
                TString angle;
                angle.Format(", %.0f degrees", static_cast<double>(turn) * wholeTurn);
                text += angle;
            }
            sheet.PutCell(whole, index++, picture, text.Print());
        }
        return true;
    }

    TPictureOptions& Options;
    const bool IsSheet;
    TPictureDrawer Drawer;
    TPictureEffect Effect;
};

} // namespace

int DrawPicture(TBatchSession& session, TArguments& arguments)
{
    const char* path = arguments.TakeName();
    const char* out = arguments.TakeName();
    if (out == nullptr)
        return ReportUsage("picture takes a file and the picture to write");
    TPictureOptions options;
    TString fault;
    if (!ReadPictureOptions(arguments, options, fault))
        return ReportUsage("picture: %s", fault.Print());
    if (IsSameFile(path, out)) {
        std::fprintf(stderr, "%s: This is the effect itself, which its picture would replace\n", out);
        return StatusErrors;
    }
    return TPictureRun(session, options).Draw(path, out) ? StatusDone : StatusErrors;
}
