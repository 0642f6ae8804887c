#include "particles/cindermill/interface/particles/savepicture.h"

#include "library/containers/owner.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "library/wimp/filechooser.h"
#include "library/wimp/gdi/rgbpicture.h"
#include "particles/cindermill/interface/particles/particlerenderwindow.h"
#include "particles/cindermill/interface/particles/picturefile.h"
#include "particles/cindermill/main/cindermillapp.h"

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

bool ChoosePicture(TString& path)
{
    vector<TFileFilter> filters;
    filters.push_back(TFileFilter{"Picture", "*.png"});
    if (!SaveFileChooser("Save picture", filters, nullptr, path))
        return false;
    TString name;
    name.SetFileName(path);
    if (name.Find('.') == -1)
        path += ".png";
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
void SavePictureAs(TParticleRenderWindow& window)
{
    const TOwner<TRgbPicture> picture(ReadPicture(window));
    TString path;
    if (picture != nullptr && ChoosePicture(path))
        Write(*picture, path);
}
