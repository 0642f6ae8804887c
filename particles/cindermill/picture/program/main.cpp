#include "library/system/writefaults.h"
#include "particles/cindermill/picture/pictureprogram.h"

int main(int argc, char** argv)
{
    TakeFileSizeLimitAsError();
    return RunPictureProgram(argc, argv);
}
