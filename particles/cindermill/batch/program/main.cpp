#include "particles/cindermill/batch/batchprogram.h"

int main(int argc, char** argv)
{
    TBatchProgram program;
    return program.Run(argc, argv);
}
