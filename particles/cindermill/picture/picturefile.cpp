#include "particles/cindermill/picture/picturefile.h"

#include "library/system/file.h"
#include "library/wimp/gdi/rgbpicture.h"

#include <cstdio>

bool WritePictureFile(const TRgbPicture& picture, const char* path)
{
    vector<uint8_t> bytes;
    TFile file;
    if (!picture.EncodePng(bytes)) {
        std::fprintf(stderr, "%s: The picture cannot be encoded\n", path);
        return false;
    }
    if (file.OpenWrite(path) && file.Write(bytes.data(), bytes.size()) && file.Close())
        return true;
    std::fprintf(stderr, "%s: The file cannot be written: %s\n", path, file.GetFault().Print());
    file.Abandon();
    return false;
}
