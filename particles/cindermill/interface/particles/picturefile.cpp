#include "particles/cindermill/interface/particles/picturefile.h"

#include "library/system/file.h"
#include "library/wimp/gdi/rgbpicture.h"

bool WritePictureFile(const TRgbPicture& picture, const char* path, TString& fault)
{
    vector<uint8_t> bytes;
    if (!picture.EncodePng(bytes)) {
        fault = "The picture cannot be encoded";
        return false;
    }
    TFile file;
    if (file.OpenWrite(path) && file.Write(bytes.data(), bytes.size()) && file.Close())
        return true;
    fault = file.GetFault();
    file.Abandon();
    return false;
}
