#include "library/system/writefaults.h"
#include "particles/cindermill/batch/batchprogram.h"

int main(int argc, char** argv)
{
    TakeFileSizeLimitAsError();
    return RunBatchProgram(argc, argv);
}
