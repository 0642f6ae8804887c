#include "library/system/temporaryfile.h"
#include "library/system/writefaults.h"
#include "particles/cindermill/picture/pictureprogram.h"

int main(int argc, char** argv)
{
    TakeClosedStreamsAsErrors();
    TakeFileSizeLimitAsError();
    RemoveTemporaryFilesAtEnd();
    return RunPictureProgram(argc, argv);
}
