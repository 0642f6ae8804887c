#include "library/system/temporaryfile.h"
#include "library/system/writefaults.h"
#include "particles/cindermill/batch/batchprogram.h"

int main(int argc, char** argv)
{
    TakeClosedStreamsAsErrors();
    TakeFileSizeLimitAsError();
    RemoveTemporaryFilesAtEnd();
    return RunBatchProgram(argc, argv);
}
