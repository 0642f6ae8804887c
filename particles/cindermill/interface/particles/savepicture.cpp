#include "particles/cindermill/interface/particles/savepicture.h"

#include "library/containers/owner.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "library/wimp/filechooser.h"
#include "library/wimp/gdi/rgbpicture.h"
#include "particles/cindermill/interface/particles/particlerenderwindow.h"
#include "particles/cindermill/interface/particles/picturefile.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

namespace {

// Null, with a message, where there is nothing to be read.
TRgbPicture* ReadPicture(TParticleRenderWindow& window)
{
    int width = 0;
    int height = 0;
    window.GetDotSize(width, height);
    if (width <= 0 || height <= 0)
        return nullptr;
    TOwner<TRgbPicture> picture(new TRgbPicture(width, height));
    if (window.ReadPicture(*picture))
        return picture.Release();
    ShowMessage("There is no picture without OpenGL");
    return nullptr;
}

constexpr const char* Extension = ".png";

// Beside the effect, where that is a person's own place.
void GetFirstFolder(const TDocument& document, TString& folder)
{
    TCindermillApp& app = TCindermillApp::Get();
    if (app.GetSamples().IsProtected(document.GetPath()))
        app.GetSamples().GetOwnFolder(app.GetSettings().GetRecentFiles(), folder);
    else
        folder.SetDirectory(document.GetPath());
}

// Whatever is typed, a picture of this kind is what is written.
void AddExtension(TString& path)
{
    const int length = TString(Extension).Length();
    TString end;
    if (path.Length() >= length)
        end.Right(path, length);
    if (end.Compare(Extension) != 0)
        path += Extension;
}

bool ChoosePicture(const TDocument& document, TString& path)
{
    vector<TFileFilter> filters;
    filters.push_back(TFileFilter{"Picture", "*.png"});
    TString folder;
    if (!HasLastDirectory(filters))
        GetFirstFolder(document, folder);
    path.SetFileName(document.GetPath());
    path.TruncateAtLast('.');
    if (path.IsEmpty())
        path = "effect";
    path += Extension;
    if (!SaveFileChooser("Save picture", filters, folder, path))
        return false;
    AddExtension(path);
    return true;
}

void Write(const TRgbPicture& picture, const char* path)
{
    TString fault;
    if (!TCindermillApp::ConfirmOverwrite(path))
        return;
    if (WritePictureFile(picture, path, fault)) {
        TCindermillApp::Get().TellWritten("Picture saved to", path);
        return;
    }
    ShowMessage("%s could not be written: %s", GetShownPath(path).Print(), fault.Print());
}

} // namespace

// While the chooser waits the effect runs on, so the picture is taken first.
void SavePictureAs(TParticleRenderWindow& window, const TDocument& document)
{
    const TOwner<TRgbPicture> picture(ReadPicture(window));
    TString path;
    if (picture != nullptr && ChoosePicture(document, path))
        Write(*picture, path);
}
