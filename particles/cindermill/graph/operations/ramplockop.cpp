#include "particles/cindermill/graph/operations/ramplockop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/operationvalues.h"

TRampLockOp::TRampLockOp(TNodeRampParameter* param, const int* newlocks) : Param(param)
{
    for (int i = 0; i < param->GetDimensions(); ++i) {
        ASSERT_TEXT(newlocks[i] >= -1 && newlocks[i] < 4, "newlocks[i] >= -1 && newlocks[i] < 4");
        New[i] = newlocks[i];
        Old[i] = param->GetLocks()[i];
    }
}

bool TRampLockOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    if (!chunkFile->ReadPointer(Param))
        return false;
    for (int& lock : New)
        if (!chunkFile->File.ReadI32(lock))
            return false;
    for (int& lock : Old)
        if (!chunkFile->File.ReadI32(lock))
            return false;
    return true;
}

bool TRampLockOp::Write(TChunkFile* chunkFile)
{
    if (!chunkFile->WritePointer(Param))
        return false;
    for (int lock : New)
        if (!chunkFile->File.WriteI32(lock))
            return false;
    for (int lock : Old)
        if (!chunkFile->File.WriteI32(lock))
            return false;
    return true;
}

bool TRampLockOp::Check() const
{
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i)
        if ((New[i] != -1 && !IsChannel(New[i])) || (Old[i] != -1 && !IsChannel(Old[i])))
            return false;
    return Param != nullptr;
}

void TRampLockOp::Do(TEditContext& doc)
{
    Param->SetLocks(New);
    doc.RedrawWindows();
}

void TRampLockOp::Undo(TEditContext& doc)
{
    Param->SetLocks(Old);
    doc.RedrawWindows();
}
